#include "SndfileStream.h"

#include "TrialProcess.h"

#include <sndfile.h>

#include <algorithm>

namespace {

std::FILE* Stream(void* zpUser) {
    return static_cast<std::FILE*>(zpUser);
}

/// Decoders of coded blocks ask for the length after they have gone to the first block, and go on reading as
/// if the question had left them there; so it does.
sf_count_t GetLength(void* zpUser) {
    const long place = std::ftell(Stream(zpUser));
    static_cast<void>(std::fseek(Stream(zpUser), 0, SEEK_END));
    const long length = std::ftell(Stream(zpUser));
    static_cast<void>(std::fseek(Stream(zpUser), place, SEEK_SET));
    return length;
}

/// Moves by the low 32 bits of the offset: of a position they are a number without a sign, of a distance one
/// with a sign. The result is that of the stream, 0 or -1, and not the new position.
sf_count_t Seek(sf_count_t zOffset, int zWhence, void* zpUser) {
    const long offset = zWhence == SEEK_SET ? static_cast<long>(static_cast<std::uint32_t>(zOffset))
                                            : static_cast<long>(static_cast<std::int32_t>(zOffset));
    return std::fseek(Stream(zpUser), offset, zWhence);
}

/// A coded block is decoded whole, also where the file ends within it. What is missing then is filled with
/// zeros, which fade away, instead of what the block before left there.
sf_count_t Read(void* zpBuffer, sf_count_t zCount, void* zpUser) {
    const auto wanted = static_cast<std::size_t>(std::max<sf_count_t>(zCount, 0));
    const std::size_t count = std::fread(zpBuffer, 1, wanted, Stream(zpUser));
    std::fill_n(static_cast<char*>(zpBuffer) + count, wanted - count, '\0');
    return static_cast<sf_count_t>(count);
}

sf_count_t Write(const void* zpBuffer, sf_count_t zCount, void* zpUser) {
    return static_cast<sf_count_t>(
        std::fwrite(zpBuffer, 1, static_cast<std::size_t>(zCount), Stream(zpUser)));
}

sf_count_t Tell(void* zpUser) {
    return std::ftell(Stream(zpUser));
}

SF_VIRTUAL_IO kTable{GetLength, Seek, Read, Write, Tell};

struct sSndfileCloser {
    void operator()(SNDFILE* zpFile) const { sf_close(zpFile); }
};

} // namespace

struct cSndfileStream::sHandle {
    bool Open(std::FILE* zpFile, int zMode) {
        file.reset(sf_open_virtual(&kTable, zMode, &info, zpFile));
        return file != nullptr;
    }

    SF_INFO info{};
    std::unique_ptr<SNDFILE, sSndfileCloser> file;
};

cSndfileStream::cSndfileStream() : mpHandle(std::make_unique<sHandle>()) {}

cSndfileStream::~cSndfileStream() = default;

std::string cSndfileStream::LibraryVersion() {
    return sf_version_string();
}

bool cSndfileStream::OpenRead(std::FILE* zpFile, const std::function<bool()>& zMayGoOn) {
    const auto open = [&] { return mpHandle->Open(zpFile, SFM_READ); };
    if (!SucceedsInTrial(open, zMayGoOn)) {
        return false;
    }
    std::rewind(zpFile);
    return open();
}

bool cSndfileStream::OpenWrite(std::FILE* zpFile, int zSampleRate, int zChannels) {
    mpHandle->info = {0, zSampleRate, zChannels, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 1, 1};
    return mpHandle->Open(zpFile, SFM_WRITE);
}

int cSndfileStream::GetSampleRate() const {
    return mpHandle->info.samplerate;
}

int cSndfileStream::GetChannels() const {
    return mpHandle->info.channels;
}

std::size_t cSndfileStream::ReadSamples(double* zpSamples, std::size_t zCount) {
    const sf_count_t count = sf_read_double(mpHandle->file.get(), zpSamples, static_cast<sf_count_t>(zCount));
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

bool cSndfileStream::WriteSamples(const std::int16_t* zpSamples, std::size_t zCount) {
    const auto count = static_cast<sf_count_t>(zCount);
    return sf_write_short(mpHandle->file.get(), zpSamples, count) == count;
}
