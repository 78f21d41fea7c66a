#include "AudioConversion.h"

#include "ClientProtocol.h"
#include "CommonUtils.h"
#include "CommonUtils_OSX.h"
#include "ReadAIFF.h"
#include "SampleValue.h"
#include "SndfileStream.h"
#include "SoundOutput.h"
#include "WaveFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

constexpr auto kSoundExtensions = std::to_array<const char*>({"wav", "aif", "aiff", "aifc", "wav"});
constexpr int kLongestTitle = 24;
constexpr int kHighestRate = 48000;
constexpr int kMostChannels = 2;
constexpr std::size_t kBlock = 1024;         ///< samples converted at a time
constexpr std::size_t kBlocksPerReport = 64; ///< a few milliseconds of work
constexpr std::uint16_t kPcm = 1;

std::string ToLower(std::string zText) {
    std::ranges::transform(zText, zText.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return zText;
}

/// Bytes in a stream, which then stands at its start; -1 when that cannot be told.
long Measure(std::FILE* zpFile) {
    const bool atEnd = std::fseek(zpFile, 0, SEEK_END) == 0;
    const long size = atEnd ? std::ftell(zpFile) : -1;
    return std::fseek(zpFile, 0, SEEK_SET) == 0 ? size : -1;
}

std::int16_t ToSample16(double zValue) {
    return static_cast<std::int16_t>(static_cast<std::uint64_t>(TruncatedSample(zValue * 32767.0)));
}

/// The rest of a file that nobody can send is not worth the time and the disk.
bool IsTooLargeToSend(std::size_t zSamples) {
    return zSamples * sizeof(std::int16_t) > static_cast<std::size_t>(kMaxUploadSize);
}

/// A file that is cut off may end within a frame.
std::size_t WholeFrames(std::size_t zSamples, std::size_t zChannels) {
    return zSamples - zSamples % zChannels;
}

/// What speaks against a file, for behind its path; "" where nothing does.
std::string Objection(const cWaveFile& zFile) {
    if (zFile.formatTag != kPcm) {
        return " - Couldn't read file. Check that it is uncompressed PCM";
    }
    if (zFile.channels != 1 && zFile.channels != kMostChannels) {
        return " - Only mono and stereo files are supported";
    }
    if (zFile.sampleRate > kHighestRate) {
        return " - Only sample rates up to 48000 are supported";
    }
    if (zFile.bitsPerSample != 8 && zFile.bitsPerSample != 16) {
        return " - Only 8 or 16 bit samples are supported";
    }
    return "";
}

std::string Objection(const cReadAIFF& zFile) {
    if (zFile.GetChannels() != 1 && zFile.GetChannels() != kMostChannels) {
        return " - Only mono and stereo files are supported";
    }
    if (zFile.GetSampleRate() > kHighestRate) {
        return " - Only sample rates up to 48000 are supported";
    }
    if (zFile.GetBits() != 8 && zFile.GetBits() != 16) {
        return " - Only 8 or 16 bit samples are supported";
    }
    return "";
}

/// Samples of a WAV file as 16 bits; of 8 bits they have no sign there.
std::size_t ReadSamples(cWaveFile& zrFile, std::int16_t* zpSamples, std::size_t zCount) {
    std::FILE* const pStream = zrFile.reader->file.get();
    if (zrFile.bitsPerSample == 16) {
        return std::fread(zpSamples, sizeof *zpSamples, zCount, pStream);
    }
    std::array<std::uint8_t, kBlock> bytes{};
    const std::size_t count = std::fread(bytes.data(), 1, std::min(zCount, bytes.size()), pStream);
    std::transform(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count), zpSamples,
                   [](std::uint8_t byte) { return static_cast<std::int16_t>((byte * 256) ^ 0x8000); });
    return count;
}

/// Samples of an AIFF file as 16 bits; of 8 bits they have a sign already.
std::size_t ReadSamples(cReadAIFF& zrFile, std::int16_t* zpSamples, std::size_t zCount) {
    const auto frames = static_cast<std::int32_t>(zCount / static_cast<std::size_t>(zrFile.GetChannels()));
    if (zrFile.GetBits() == 16) {
        zrFile.Read(zpSamples, frames);
        return zCount;
    }
    std::array<std::int8_t, kBlock> bytes{};
    zrFile.Read(bytes.data(), frames);
    std::transform(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(zCount), zpSamples,
                   [](std::int8_t byte) { return static_cast<std::int16_t>(byte * 256); });
    return zCount;
}

} // namespace

cAudioConversion::cAudioConversion(std::string zSourcePath, bool zUseOwnReaders)
    : sourcePath(std::move(zSourcePath)), useOwnReaders(zUseOwnReaders) {}

cAudioConversion::~cAudioConversion() {
    DeleteTempFile();
}

bool cAudioConversion::IsConvertibleAudio(const std::string& zExtension) {
    return std::ranges::find(kSoundExtensions, zExtension) != kSoundExtensions.end();
}

bool cAudioConversion::ConvertForUpload(const std::string* zpOutputFolder) {
    DeleteTempFile(); // of a call before, lest the source takes its place in the record
    cancelled = false;
    message.clear();
    const std::string extension = GetExtension(sourcePath);
    if (!Convert(ToLower(extension), zpOutputFolder)) {
        outputPath = sourcePath;
        MakeDeviceName(outputPath, extension);
    }
    outputSize = GetFileSize(outputPath);
    return true;
}

bool cAudioConversion::Convert(const std::string& zExtension, const std::string* zpOutputFolder) {
    if (useOwnReaders) {
        return (zExtension == "wav" && ConvertWavToWav()) || (zExtension == "aif" && ConvertAiffToWav());
    }
    return IsConvertibleAudio(zExtension) && ConvertWithSndfile(zpOutputFolder);
}

void cAudioConversion::DeleteTempFile() {
    if (!converted || outputPath.empty()) {
        return;
    }
    DebugPrintf("Deleting temp file %s\n", OneLogLine(outputPath, outputPath.size()).c_str());
    DeleteLocalFile(outputPath);
    outputPath.clear();
    converted = false;
}

// --- With libsndfile ---

bool cAudioConversion::ConvertWithSndfile(const std::string* zpOutputFolder) {
    cStdioBuffer buffer;
    const tStdioStream pSource = OpenSource();
    buffer.GiveTo(pSource.get());
    if (!pSource) {
        return Refuse("Couldn't open file '" + sourcePath + "'");
    }
    if (Measure(pSource.get()) <= 0) {
        return Refuse("'" + sourcePath + "' is empty");
    }
    return CopyWithSndfile(pSource.get(), zpOutputFolder);
}

bool cAudioConversion::CopyWithSndfile(std::FILE* zpSource, const std::string* zpOutputFolder) {
    cSndfileStream decoder;
    if (!decoder.OpenRead(zpSource, [this] { return MayGoOn(0.0); })) {
        return !cancelled && Refuse("'" + sourcePath + "' - couldn't open as an audio file.");
    }
    if (decoder.GetChannels() > kMostChannels) {
        return Refuse("'" + sourcePath + "' - too many channels.");
    }
    const std::string path = MakeTempOutputPath(zpOutputFolder);
    cSoundOutput output(path);
    if (!output.IsOpen()) {
        return Refuse(path + " - Couldn't open wav file for writing");
    }
    if (!Encode(zpSource, decoder, output)) {
        return false;
    }
    Deliver(output, path);
    converted = zpOutputFolder == nullptr;
    return true;
}

bool cAudioConversion::Encode(std::FILE* zpSource, cSndfileStream& zrDecoder, cSoundOutput& zrOutput) {
    bool written = false;
    {
        cSndfileStream encoder;
        // A higher rate is only labelled anew: the sound then plays slower, with every sample in it.
        const int rate = std::min(zrDecoder.GetSampleRate(), kHighestRate);
        if (!encoder.OpenWrite(zrOutput.GetFile(), rate, zrDecoder.GetChannels())) {
            return Refuse(zrOutput.GetPath() + " - Couldn't open audio file for output");
        }
        written = CopySamples(zpSource, zrDecoder, encoder);
    }
    if (cancelled) {
        return false;
    }
    if (std::ferror(zpSource) != 0) { // which looks like the end of the file to a decoder
        return Refuse("Couldn't read file '" + sourcePath + "'");
    }
    return (zrOutput.Close() && written) || Refuse(zrOutput.GetPath() + " - Couldn't write wav file");
}

bool cAudioConversion::CopySamples(std::FILE* zpSource, cSndfileStream& zrDecoder,
                                   cSndfileStream& zrEncoder) {
    const auto channels = static_cast<std::size_t>(zrDecoder.GetChannels());
    const auto size = static_cast<double>(GetFileSize(sourcePath));
    std::array<double, kBlock> decoded{};
    std::array<std::int16_t, kBlock> samples{};
    std::size_t done = 0;
    for (std::size_t block = 0; !IsTooLargeToSend(done); ++block) {
        const std::size_t count =
            WholeFrames(zrDecoder.ReadSamples(decoded.data(), decoded.size()), channels);
        if (count == 0) {
            return true;
        }
        done += count;
        std::transform(decoded.begin(), decoded.begin() + static_cast<std::ptrdiff_t>(count), samples.begin(),
                       ToSample16);
        if (!zrEncoder.WriteSamples(samples.data(), count)) {
            return false;
        }
        if (block % kBlocksPerReport == 0 && !MayGoOn(static_cast<double>(std::ftell(zpSource)) / size)) {
            return false;
        }
    }
    return true;
}

// --- With the program's own readers ---

bool cAudioConversion::ConvertWavToWav() {
    tStdioStream pSource = OpenSource();
    if (!pSource) {
        return Refuse("Couldn't open file '" + sourcePath + "'");
    }
    cWaveFile file;
    const std::string objection =
        file.OpenRead(pSource.release()) ? Objection(file) : " - Couldn't open file";
    if (!objection.empty()) {
        return Refuse(sourcePath + objection);
    }
    file.Reset();
    const std::uint64_t frames = file.blockAlign == 0 ? 0 : file.dataLength / file.blockAlign;
    return WriteWav(
        file.sampleRate, file.channels, frames * file.channels,
        [&](std::int16_t* samples, std::size_t count) { return ReadSamples(file, samples, count); });
}

bool cAudioConversion::ConvertAiffToWav() {
    if (!OpenSource()) {
        return Refuse("Couldn't open file '" + sourcePath + "'");
    }
    cReadAIFF file;
    const std::string objection = file.Open(sourcePath.c_str()) ? Objection(file) : " - Couldn't open file";
    if (!objection.empty()) {
        return Refuse(sourcePath + objection);
    }
    const auto channels = static_cast<std::uint16_t>(file.GetChannels());
    return WriteWav(
        static_cast<std::uint32_t>(std::floor(file.GetSampleRate() + 0.5)), channels,
        std::uint64_t{file.GetFrames()} * channels,
        [&](std::int16_t* samples, std::size_t count) { return ReadSamples(file, samples, count); });
}

bool cAudioConversion::WriteWav(std::uint32_t zSampleRate, std::uint16_t zChannels, std::uint64_t zSamples,
                                const tSampleSource& zRead) {
    const std::string path = MakeTempOutputPath(nullptr);
    cSoundOutput output(path);
    cWaveFile writer;
    if (!output.IsOpen() || !writer.OpenWrite(output.ReleaseFile())) {
        return Refuse(path + " - Couldn't open wav file for writing");
    }
    writer.SetFormat(zSampleRate, 16, zChannels);
    const bool written = CopySamples(writer, zSamples, zRead);
    const bool closed = writer.Close();
    if (cancelled) {
        return false;
    }
    if (!written || !closed) {
        return Refuse(output.GetPath() + " - Couldn't write wav file");
    }
    Deliver(output, path);
    converted = true;
    return true;
}

bool cAudioConversion::CopySamples(cWaveFile& zrWriter, std::uint64_t zSamples, const tSampleSource& zRead) {
    std::array<std::int16_t, kBlock> samples{};
    for (std::uint64_t done = 0; done < zSamples;) {
        const auto wanted =
            static_cast<std::size_t>(std::min<std::uint64_t>(zSamples - done, samples.size()));
        const std::size_t count = WholeFrames(zRead(samples.data(), wanted), zrWriter.channels);
        if (count == 0) {
            return true; // the file ends before its header says so
        }
        if (!zrWriter.WriteRaw(samples.data(), count * sizeof samples[0])) {
            return false;
        }
        done += count;
        if (!MayGoOn(static_cast<double>(done) / static_cast<double>(zSamples))) {
            return false;
        }
    }
    return true;
}

// --- Names and outcomes ---

/// Anything but an ordinary file could keep the program waiting for ever.
tStdioStream cAudioConversion::OpenSource() const {
    return tStdioStream(OpenRegularFile(sourcePath));
}

std::string cAudioConversion::MakeTempOutputPath(const std::string* zpOutputFolder) const {
    std::string path = zpOutputFolder != nullptr ? *zpOutputFolder : GetTempFolder();
    AddTrailingSeparator(path);
    return path + GetFileTitle(sourcePath) + ".wav";
}

void cAudioConversion::MakeDeviceName(const std::string& zPath, const std::string& zExtension) {
    ConvertNameForDevice(GetFileTitle(zPath), deviceName);
    TruncateText(deviceName, kLongestTitle);
    std::string extension;
    ConvertNameForDevice(zExtension, extension);
    deviceName += '.' + extension;
}

void cAudioConversion::Deliver(cSoundOutput& zrOutput, const std::string& zPath) {
    zrOutput.Keep();
    outputPath = zrOutput.GetPath();
    MakeDeviceName(zPath, "wav");
    message.clear();
}

bool cAudioConversion::Refuse(const std::string& zMessage) {
    message = zMessage;
    return false;
}

bool cAudioConversion::MayGoOn(double zDone) {
    cancelled = cancelled || (progress && !progress(std::min(zDone, 1.0)));
    return !cancelled;
}
