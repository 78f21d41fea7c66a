#include "BenchmarkWindow.h"
#include "DatagramPeer.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <stdexcept>
#include <thread>

// How long a person waits for a folder of 4,000 entries, with the reference device on this machine. The
// figures contain the device's own work and the way over the network: upper bounds for the window's share.

namespace {

constexpr int kEntries = 4000;
constexpr int kNameColumn = 0;
constexpr std::array<const char*, 3> kExtensions = {".wav", ".txt", ".aif"};

class LargeFolder {
public:
    LargeFolder() {
        for (int number = 0; number < kEntries; ++number) {
            const std::string name = "Harbour recordings, night, " +
                                     std::to_string(100'000 + number * 7919 % kEntries) +
                                     kExtensions[static_cast<std::size_t>(number) % kExtensions.size()];
            std::ofstream(mFolder.filePath(QString::fromStdString(name)).toStdString()) << number;
        }
        mDevice.start(QUILLBOX_DEVICE, {"--root", mFolder.path(), "--address", "127.0.0.1"});
        if (!mDevice.waitForReadyRead()) {
            throw std::runtime_error("the device does not start; is port 10240 of 127.0.0.1 taken?");
        }
    }

    ~LargeFolder() {
        mDevice.terminate();
        mDevice.waitForFinished();
    }

    /// Adds a file of zSize bytes, which takes no room on the disk, and returns its name.
    std::string AddFile(std::int32_t zSize) {
        QFile file(mFolder.filePath(QStringLiteral("one large file.wav")));
        if (!file.open(QIODevice::WriteOnly) || !file.resize(zSize)) {
            throw std::runtime_error("the large file cannot be made");
        }
        return "one large file.wav";
    }

    LargeFolder(const LargeFolder&) = delete;
    LargeFolder& operator=(const LargeFolder&) = delete;

private:
    QTemporaryDir mFolder;
    QProcess mDevice;
};

/// The real window, connected to a device whose folder is large.
class LargeListing {
public:
    LargeListing() {
        if (mWindow.GetController().numberOfRowsInTableView() != kEntries) {
            throw std::runtime_error("the folder is not listed");
        }
    }

    Controller& GetController() { return mWindow.GetController(); }

    BenchmarkWindow& Window() { return mWindow; }

    std::string AddFile(std::int32_t zSize) { return mFolder.AddFile(zSize); }

private:
    LargeFolder mFolder;
    BenchmarkWindow mWindow;
};

void ListAndPaint(benchmark::State& zrState) {
    LargeListing listing;
    for ([[maybe_unused]] auto round : zrState) {
        listing.GetController().OnRefresh();
        listing.Window().Paint();
    }
}

/// A click on a header, until the rows stand in their new order.
void ClickAndPaint(benchmark::State& zrState) {
    LargeListing listing;
    for ([[maybe_unused]] auto round : zrState) {
        listing.Window().ClickHeader(kNameColumn); // every other time it turns the order round
        listing.Window().Paint();
    }
}

/// The longest time for which the event loop did not come round, in milliseconds.
class StallMeter {
public:
    StallMeter() {
        mSince.start();
        QObject::connect(&mBeat, &QTimer::timeout, &mBeat,
                         [this] { mLongest = std::max(mLongest, mSince.restart()); });
        mBeat.start(1);
    }

    double Longest() const { return static_cast<double>(std::max(mLongest, mSince.elapsed())); }

private:
    QTimer mBeat;
    QElapsedTimer mSince;
    qint64 mLongest = 0;
};

void StallOfAListing(benchmark::State& zrState) {
    LargeListing listing;
    const StallMeter meter;
    for ([[maybe_unused]] auto round : zrState) {
        listing.GetController().OnRefresh();
        listing.Window().Paint();
    }
    zrState.counters["longest_stall_ms"] = meter.Longest();
}

void StallOfADownload(benchmark::State& zrState) {
    LargeListing listing;
    const QTemporaryDir target;
    const auto size = static_cast<std::int32_t>(zrState.range(0));
    const cDeviceDirList list{"", {{listing.AddFile(size), "", false, size, 0}}};
    const StallMeter meter;
    for ([[maybe_unused]] auto round : zrState) {
        if (!listing.GetController().DownloadFiles(target.path().toStdString(), list).empty()) {
            zrState.SkipWithError("the download failed");
        }
        QFile::remove(target.filePath(QString::fromStdString(list.mFile.front().mName)));
    }
    zrState.counters["longest_stall_ms"] = meter.Longest();
}

/// Seconds of work that the calling thread has done.
double WorkedSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Somebody sends zPerSecond announcements in each of five seconds.
void StallOfAFlood(benchmark::State& zrState) {
    MainWindow window;
    NoPanel panel;
    Controller controller(window, panel);
    controller.applicationDidFinishLaunching();
    window.show();
    const StallMeter meter;
    const double workedBefore = WorkedSeconds();
    for ([[maybe_unused]] auto round : zrState) {
        std::atomic<bool> over = false;
        std::thread flood([&] {
            DatagramPeer sender("127.0.1.1");
            const auto start = std::chrono::steady_clock::now();
            for (std::int64_t sent = 0; sent < zrState.range(0) * 5; ++sent) {
                std::this_thread::sleep_until(start + std::chrono::seconds(1) * sent / zrState.range(0));
                sender.Send("Phone:FileServer:10240;", 10245);
            }
            over = true;
        });
        while (!over) {
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        flood.join();
    }
    zrState.counters["longest_stall_ms"] = meter.Longest();
    zrState.counters["worked_s"] = WorkedSeconds() - workedBefore;
}

BENCHMARK(ListAndPaint)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ClickAndPaint)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StallOfAListing)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StallOfADownload)->Arg(1 << 30)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(StallOfAFlood)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    const QTemporaryDir home;
    PrepareOffscreen(home.path().toStdString());
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
