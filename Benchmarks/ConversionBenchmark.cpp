#include "AudioConversion.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <benchmark/benchmark.h>

#include <stdexcept>

// How long the conversion of a ten-minute recording (24 bits, 96 kHz, stereo) takes, beside programs that
// make the same 16-bit WAV file of it. Run in turn: --benchmark_repetitions=5
// --benchmark_enable_random_interleaving=true --benchmark_report_aggregates_only=true

namespace {

constexpr const char* kSeconds = "600";

void RunProgram(const QString& zProgram, const QStringList& zArguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(zProgram, zArguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(-1) || process.exitCode() != 0) {
        throw std::runtime_error("it takes " + zProgram.toStdString() + ", which did not run");
    }
}

/// The recording in both kinds of file.
class Recording {
public:
    Recording() {
        RunProgram(QStringLiteral("sox"), {"-n", "-r", "96000", "-c", "2", "-b", "24", Path("wav"), "synth",
                                           kSeconds, "pinknoise", "vol", "0.5"});
        RunProgram(QStringLiteral("sndfile-convert"), {"-pcm24", Path("wav"), Path("aif")});
    }

    QString Path(const char* zExtension) const {
        return mFolder.filePath(QStringLiteral("recording.") + QLatin1String(zExtension));
    }

    QString OutputFolder() const { return mFolder.filePath(QStringLiteral("out")); }

private:
    QTemporaryDir mFolder;
};

const Recording& TheRecording() {
    static const Recording recording;
    return recording;
}

const char* Extension(const benchmark::State& zrState) {
    return zrState.range(0) == 0 ? "wav" : "aif";
}

QString FreshOutput() {
    QDir(TheRecording().OutputFolder()).removeRecursively();
    QDir().mkpath(TheRecording().OutputFolder());
    return TheRecording().OutputFolder() + QStringLiteral("/recording.wav");
}

void Quillbox(benchmark::State& zrState) {
    const std::string source = TheRecording().Path(Extension(zrState)).toStdString();
    const std::string folder = TheRecording().OutputFolder().toStdString();
    for ([[maybe_unused]] auto round : zrState) {
        FreshOutput();
        cAudioConversion conversion(source);
        conversion.ConvertForUpload(&folder);
        if (!conversion.message.empty()) {
            zrState.SkipWithError(conversion.message.c_str());
        }
    }
}

void SndfileConvert(benchmark::State& zrState) {
    for ([[maybe_unused]] auto round : zrState) {
        RunProgram(QStringLiteral("sndfile-convert"),
                   {"-pcm16", TheRecording().Path(Extension(zrState)), FreshOutput()});
    }
}

void Ffmpeg(benchmark::State& zrState) {
    for ([[maybe_unused]] auto round : zrState) {
        RunProgram(QStringLiteral("ffmpeg"),
                   {"-v", "error", "-y", "-i", TheRecording().Path(Extension(zrState)), "-c:a", "pcm_s16le",
                    FreshOutput()});
    }
}

BENCHMARK(Quillbox)->ArgName("aiff")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(SndfileConvert)->ArgName("aiff")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(Ffmpeg)->ArgName("aiff")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const QCoreApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
