#include "ReadAIFF.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

// The input is an AIFF file.

namespace {

constexpr std::uint32_t kMostFrames = 20000;

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// A nameless file in memory, and the path by which it can be opened.
class MemoryFile {
public:
    MemoryFile() : mDescriptor(::memfd_create("aiff", 0)) { Check(mDescriptor >= 0); }

    std::string Hold(const std::uint8_t* data, std::size_t size) const {
        Check(::ftruncate(mDescriptor, 0) == 0);
        Check(::pwrite(mDescriptor, data, size, 0) == static_cast<ssize_t>(size));
        return "/proc/self/fd/" + std::to_string(mDescriptor);
    }

private:
    int mDescriptor;
};

/// Reads as much as it asks for, which may be more than there is, and no whole frame is lost.
template <class Element>
void ReadAs(cReadAIFF& reader, std::int32_t frames) {
    const auto count = static_cast<std::size_t>(frames) * static_cast<std::size_t>(reader.GetChannels());
    // Exactly as large as promised to be enough, so that the sanitizer sees what goes beyond.
    std::vector<Element> samples(count);
    const std::uint32_t before = reader.GetFramesToGo();
    try {
        reader.Read(samples.data(), frames);
        Check(reader.GetFramesToGo() == before - static_cast<std::uint32_t>(frames));
    } catch (const char* message) {
        Check(std::string(message).rfind("cReadAIFF: ", 0) == 0);
        Check(before - reader.GetFramesToGo() <= static_cast<std::uint32_t>(frames));
    }
}

template <class Element>
void ReadFromTheStart(cReadAIFF& reader) {
    try {
        reader.Rewind();
        Check(reader.GetFramesToGo() == reader.GetFrames());
    } catch (const char*) {
        // A stream that came to its end stays there; reading must refuse.
    }
    const auto channels = static_cast<std::uint32_t>(reader.GetChannels());
    const auto most = static_cast<std::int32_t>(std::min(reader.GetFramesToGo(), kMostFrames / channels));
    ReadAs<Element>(reader, most / 3);
    ReadAs<Element>(reader, most);
}

void CheckHeader(const cReadAIFF& reader) {
    Check(reader.GetChannels() >= 1 && reader.GetChannels() <= 1000);
    Check(reader.GetBits() >= 1 && reader.GetBits() <= 56);
    Check(reader.GetSampleRate() > 0 && reader.GetSampleRate() <= 1000000);
    std::ostringstream out;
    reader.PrintInfo(out);
    Check(!out.str().empty());
}

template <class... Elements>
void ReadAsEach(const std::string& path) {
    // An object for each type, so that one that fails does not spoil the others.
    (
        [&path] {
            cReadAIFF reader(path.c_str());
            CheckHeader(reader);
            ReadFromTheStart<Elements>(reader);
            ReadFromTheStart<Elements>(reader);
        }(),
        ...);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const MemoryFile file;
    const std::string path = file.Hold(data, size);
    try {
        ReadAsEach<std::int64_t, std::int32_t, std::uint32_t, std::int16_t, std::int8_t, double, float>(path);
    } catch (const char* message) {
        Check(std::string(message).rfind("cReadAIFF: ", 0) == 0);
    }
    return 0;
}
