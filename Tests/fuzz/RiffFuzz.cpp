#include "TestStreams.h"
#include "WaveFile.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

// The input is a file. It is read once as a piece of memory, in which a stream cannot be moved beyond the
// end, and once as a real file, in which it can.

namespace {

void Check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

std::FILE* RealFile(const std::string& content) {
    const int descriptor = ::memfd_create("input", 0);
    Check(::write(descriptor, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
    std::FILE* const stream = ::fdopen(descriptor, "rb");
    std::rewind(stream);
    return stream;
}

/// A walk that takes more steps than the file has room for headers goes round in circles.
void WalkAll(std::FILE* stream, std::size_t limit) {
    cRiffReader reader(stream);
    std::size_t steps = 0;
    while (reader.Descend(nullptr)) {
        // Only a list without room for its form type ends before its data.
        Check(std::uint64_t{reader.stack.back().end} + 4 >= reader.stack.back().start);
        Check(++steps <= limit);
    }
    Check(reader.stack.size() <= limit + 1);
    while (reader.Ascend()) {
        reader.Descend("data");
        reader.Ascend();
        Check(++steps <= 4 * limit);
    }
    while (reader.Descend(nullptr) && reader.Ascend()) {
        Check(++steps <= 8 * limit);
    }
}

void ListInfo(cWaveFile& file, std::size_t limit) {
    std::string description;
    std::string value;
    std::size_t texts = 0;
    while (file.GetNextInfo(description, value)) {
        Check(value.size() <= limit * 8 && ++texts <= limit);
    }
    texts = 0;
    for (bool isOne = file.GetFirstInfo(description, value); isOne;
         isOne = file.GetNextInfo(description, value)) {
        Check(!description.empty() && value.size() <= limit * 8 && ++texts <= limit);
    }
}

void ReadSamples(cWaveFile& file) {
    constexpr std::size_t kMost = 0xFFFF;
    static std::array<std::int16_t, kMost> wide;
    static std::array<std::uint8_t, kMost> narrow;
    double number = 0;
    float coarse = 0;
    file.ReadSample(number);
    file.ReadSample(coarse);
    file.ReadFrames16(wide.data(), 1);
    file.ReadFrames8(narrow.data(), 1);
    file.ReadSample16(wide[0]);
    file.ReadSample8(narrow[0]);
}

void Copy(cWaveFile& source, std::size_t limit) {
    static std::array<char, 1 << 16> memory;
    cWaveFile target;
    Check(target.OpenWrite(::fmemopen(memory.data(), memory.size(), "w+b")));
    target.CopyFormat(source);
    const bool isCopied = target.CopyFrom(source);
    Check(target.SameFormat(source) && target.dataLength <= source.dataLength);
    Check(isCopied ? target.dataLength == source.dataLength : target.error != nullptr);
    Check(target.dataLength <= limit * 8);
    target.WriteSample(0.5);
    target.Close();
}

void Use(cWaveFile& file, std::size_t limit) {
    ReadSamples(file);
    ListInfo(file, limit);
    Copy(file, limit);
    file.Reset();
    ReadSamples(file);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string content(reinterpret_cast<const char*>(data), size);
    const std::size_t limit = size / 8 + 1;
    for (const auto open : {RealFile, MemoryHolding}) {
        if (size == 0 && open == MemoryHolding) {
            continue;
        }
        WalkAll(open(content), limit);
        cWaveFile file;
        if (file.OpenRead(open(content))) {
            Use(file, limit);
        } else {
            Check(file.error != nullptr && file.reader == nullptr);
        }
    }
    return 0;
}
