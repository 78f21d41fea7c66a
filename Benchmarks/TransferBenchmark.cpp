#include "BenchmarkWindow.h"
#include "JobReport.h"

#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <chrono>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

// One job with the program's own window, controller, client, socket and files, against the device at
// 127.0.0.1. The clock runs from the moment people have answered everything to the moment they see the
// result.

namespace {

constexpr char kUsage[] =
    "benchmark_transfers download-file NAME SIZE FOLDER | download-folder NAME FOLDER |\n"
    "                    upload DEVICE_FOLDER PATH... | idle SECONDS";
constexpr std::int32_t kFolderSize = 4096; // what has no size is not downloaded

using tWords = std::vector<std::string>;

void Require(const std::string& zErrorText) {
    if (!zErrorText.empty()) {
        throw std::runtime_error(zErrorText);
    }
}

void Download(const cClientProtocol::cDeviceFileInfo& zInfo, const std::string& zFolder) {
    BenchmarkWindow window;
    const cDeviceDirList list{"", {zInfo}};
    const JobReport report;
    Require(window.GetController().DownloadFiles(zFolder, list));
    report.Print();
}

void DownloadFile(const tWords& zWords) {
    Download({zWords.at(1), "", false, std::stoi(zWords.at(2)), 0}, zWords.at(3));
}

void DownloadFolder(const tWords& zWords) {
    Download({zWords.at(1), "", true, kFolderSize, 0}, zWords.at(2));
}

/// Nothing tells that a device has the whole of an upload but the answer to the listing that follows, which
/// therefore belongs to the job.
void Upload(const tWords& zWords) {
    BenchmarkWindow window;
    window.GetController().SetCurrentDirectory(zWords.at(1));
    const JobReport report;
    Require(window.GetController().UploadFiles({zWords.begin() + 2, zWords.end()}, zWords.at(1)));
    window.GetController().SetCurrentDirectory(zWords.at(1));
    report.Print();
}

/// The script looks from outside at what this process does meanwhile.
void Idle(const tWords& zWords) {
    const BenchmarkWindow window;
    std::puts("idle");
    std::fflush(stdout);
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, &QApplication::quit);
    end.start(std::chrono::seconds(std::stoi(zWords.at(1))));
    QApplication::exec();
}

void RunJob(const tWords& zWords) {
    struct sJob {
        const char* name;
        void (*run)(const tWords&);
    };

    for (const sJob& job : {sJob{"download-file", DownloadFile}, sJob{"download-folder", DownloadFolder},
                            sJob{"upload", Upload}, sJob{"idle", Idle}}) {
        if (zWords.at(0) == job.name) {
            job.run(zWords);
            return;
        }
    }
    throw std::runtime_error(kUsage);
}

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    PrepareOffscreen(home.path().toStdString());
    const QApplication application(argc, argv);
    try {
        RunJob({argv + 1, argv + argc});
    } catch (const std::out_of_range&) {
        std::fprintf(stderr, "%s\n", kUsage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
