#include "ReadAIFF.h"

#include "AiffHeader.h"
#include "AiffState.h"

#include <ostream>
#include <utility>

namespace {

constexpr const char* kDashes = "-----------------------------------------\n";
constexpr int kBytesBesidesSamples = 46;

void PrintDuration(std::ostream& zrOut, double zSeconds) {
    constexpr double kMinute = 60;
    constexpr double kHour = 3600;
    if (zSeconds >= kHour) {
        zrOut << zSeconds / kHour << " hours";
    } else if (zSeconds >= kMinute) {
        zrOut << zSeconds / kMinute << " minutes";
    } else if (zSeconds >= 1) {
        zrOut << zSeconds << " seconds";
    } else {
        zrOut << zSeconds * 1000 << " milliseconds";
    }
}

} // namespace

cReadAIFF::cReadAIFF() : mpState(std::make_unique<sAiffState>()) {}

cReadAIFF::cReadAIFF(const char* zpPath) : cReadAIFF() {
    Open(zpPath);
}

cReadAIFF::~cReadAIFF() = default;

bool cReadAIFF::Open(const char* zpPath) {
    if (zpPath == nullptr || *zpPath == '\0' || IsOpen()) {
        return false;
    }
    std::ifstream stream(zpPath, std::ios::in | std::ios::binary);
    if (!stream.is_open() || !stream.good()) {
        return false;
    }
    *mpState = {};
    mpState->stream = std::move(stream);
    ReadAiffHeader(*mpState);
    return true;
}

bool cReadAIFF::IsOpen() const {
    return mpState->stream.is_open();
}

void cReadAIFF::Close() {
    RequireOpen("cReadAIFF: File already closed or never opened!");
    mpState->stream.close();
}

std::uint32_t cReadAIFF::GetFrames() const {
    RequireOpen("cReadAIFF: No number of frames, file closed!");
    return mpState->frames;
}

std::int16_t cReadAIFF::GetBits() const {
    RequireOpen("cReadAIFF: No number of bits, file closed!");
    return mpState->bits;
}

std::int16_t cReadAIFF::GetChannels() const {
    RequireOpen("cReadAIFF: No number of channels, file closed!");
    return mpState->channels;
}

double cReadAIFF::GetSampleRate() const {
    RequireOpen("cReadAIFF: No samplerate, file closed!");
    return mpState->sampleRate;
}

std::uint32_t cReadAIFF::GetFramesToGo() const {
    RequireOpen("cReadAIFF: No number of frames to go, file closed!");
    return mpState->framesToGo;
}

void cReadAIFF::Rewind() {
    RequireOpen("cReadAIFF: Cannot rewind a closed file!");
    if (!mpState->stream.seekg(mpState->dataStart)) {
        FailAiff("cReadAIFF: Failed to rewind!");
    }
    mpState->framesToGo = mpState->frames;
}

std::ostream& cReadAIFF::PrintInfo(std::ostream& zrOut) const {
    RequireOpen("cReadAIFF: No file currently open!");
    const auto bytesPerFrame = std::int64_t{mpState->channels} * mpState->bytesPerSample;
    zrOut << kDashes << "     channels: " << mpState->channels << "\n"
          << "       frames: " << mpState->frames << "\n"
          << " bits/channel: " << mpState->bits << "\n"
          << "    framerate: " << mpState->sampleRate << "/second\n"
          << "  bytes/frame: " << bytesPerFrame << "\n"
          << "     filesize: >" << bytesPerFrame * mpState->frames + kBytesBesidesSamples << " bytes\n"
          << "     duration: ";
    PrintDuration(zrOut, mpState->frames / mpState->sampleRate);
    return zrOut << std::endl << kDashes;
}

void cReadAIFF::RequireOpen(const char* zpMessage) const {
    if (!IsOpen()) {
        FailAiff(zpMessage);
    }
}
