#include "WaveFile.h"

#include "LittleEndian.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace {

constexpr std::uint16_t kPcm = 1;
constexpr std::size_t kHeaderSize = 44;
constexpr std::uint32_t kFormatSize = 16;
constexpr std::uint32_t kDataHeaderOffset = 36;

void StoreTag(std::uint8_t* zpBytes, std::string_view zTag) {
    std::copy(zTag.begin(), zTag.end(), zpBytes);
}

void StoreFormat(std::uint8_t* zpBytes, const cWaveFile& zFile) {
    StoreLittle16(zpBytes, zFile.formatTag);
    StoreLittle16(zpBytes + 2, zFile.channels);
    StoreLittle32(zpBytes + 4, zFile.sampleRate);
    StoreLittle32(zpBytes + 8, zFile.byteRate);
    StoreLittle16(zpBytes + 12, zFile.blockAlign);
    StoreLittle16(zpBytes + 14, zFile.bitsPerSample);
}

void LoadFormat(const std::uint8_t* zpBytes, cWaveFile& zrFile) {
    zrFile.formatTag = LoadLittle16(zpBytes);
    zrFile.channels = LoadLittle16(zpBytes + 2);
    zrFile.sampleRate = LoadLittle32(zpBytes + 4);
    zrFile.byteRate = LoadLittle32(zpBytes + 8);
    zrFile.blockAlign = LoadLittle16(zpBytes + 12);
    zrFile.bitsPerSample = LoadLittle16(zpBytes + 14);
}

std::array<std::uint8_t, kHeaderSize> MakeHeader(const cWaveFile& zFile) {
    std::array<std::uint8_t, kHeaderSize> header{};
    StoreTag(&header[0], "RIFF");
    StoreLittle32(&header[4], zFile.dataLength + kDataHeaderOffset);
    StoreTag(&header[8], "WAVE");
    StoreTag(&header[12], "fmt ");
    StoreLittle32(&header[16], kFormatSize);
    StoreFormat(&header[20], zFile);
    StoreTag(&header[kDataHeaderOffset], "data");
    StoreLittle32(&header[40], zFile.dataLength);
    return header;
}

bool IsWave(const cRiffReader& zReader) {
    const char* const type = zReader.CurrentType();
    return type != nullptr && type == std::string_view("WAVE");
}

/// Reads over bytes, so that no more of them are believed in than are there.
bool ReadOver(std::FILE* zpFile, std::uint32_t zBytes) {
    std::array<char, 4096> buffer{};
    while (zBytes > 0) {
        const std::size_t count = std::min<std::size_t>(zBytes, buffer.size());
        if (std::fread(buffer.data(), 1, count, zpFile) != count) {
            return false;
        }
        zBytes -= static_cast<std::uint32_t>(count);
    }
    return true;
}

} // namespace

cWaveFile::~cWaveFile() {
    Close();
}

bool cWaveFile::OpenRead(const std::string& zPath) {
    Close();
    return StartReading(std::make_unique<cRiffReader>(zPath));
}

bool cWaveFile::OpenRead(std::FILE* zpFile) {
    Close();
    return StartReading(std::make_unique<cRiffReader>(zpFile));
}

bool cWaveFile::OpenWrite(const std::string& zPath) {
    Close();
    return OpenWrite(std::fopen(zPath.c_str(), "wb"));
}

bool cWaveFile::OpenWrite(std::FILE* zpFile) {
    Close();
    if (zpFile == nullptr) {
        return Fail("Couldn't open output file");
    }
    out.reset(zpFile);
    dataLength = 0;
    return WriteHeader(out.get());
}

void cWaveFile::SetFormat(std::uint32_t zSampleRate, std::uint16_t zBitsPerSample, std::uint16_t zChannels) {
    formatTag = kPcm;
    channels = zChannels;
    sampleRate = zSampleRate;
    blockAlign = static_cast<std::uint16_t>(zBitsPerSample / 8 * zChannels);
    byteRate = blockAlign * sampleRate;
    bitsPerSample = zBitsPerSample;
    dataLength = 0;
    headerDirty = true;
}

bool cWaveFile::SameFormat(const cWaveFile& zOther) const {
    return formatTag == zOther.formatTag && channels == zOther.channels && sampleRate == zOther.sampleRate &&
           byteRate == zOther.byteRate && blockAlign == zOther.blockAlign &&
           bitsPerSample == zOther.bitsPerSample;
}

void cWaveFile::CopyFormat(const cWaveFile& zOther) {
    formatTag = zOther.formatTag;
    channels = zOther.channels;
    sampleRate = zOther.sampleRate;
    byteRate = zOther.byteRate;
    blockAlign = zOther.blockAlign;
    bitsPerSample = zOther.bitsPerSample;
}

bool cWaveFile::WriteHeader(std::FILE* zpFile) {
    if (zpFile == nullptr || fseeko(zpFile, 0, SEEK_SET) != 0) {
        return false;
    }
    const auto header = MakeHeader(*this);
    // A full disk shows itself only when the stream's buffer is emptied.
    if (std::fwrite(header.data(), 1, header.size(), zpFile) != header.size() || std::fflush(zpFile) != 0) {
        return Fail("Error writing header");
    }
    headerDirty = headerDirty && zpFile != out.get();
    return true;
}

bool cWaveFile::Close() {
    reader.reset();
    if (out == nullptr) {
        return true;
    }
    const bool isWritten = FinishWriting();
    // A file system on the network may fail only now.
    return (std::fclose(out.release()) == 0 || Fail("Couldn't write samples")) && isWritten;
}

bool cWaveFile::Reset() {
    if (reader != nullptr) {
        return (reader->Rewind() && reader->Descend("data")) || Fail("Couldn't find data chunk on reset");
    }
    return out != nullptr && fseeko(out.get(), kDataHeaderOffset, SEEK_SET) == 0;
}

bool cWaveFile::ReadRaw(void* zpBuffer, std::size_t zBytes) {
    std::FILE* const file = reader != nullptr ? reader->file.get() : out.get();
    const bool isRead = file != nullptr && std::fread(zpBuffer, 1, zBytes, file) == zBytes;
    return isRead || Fail("Couldn't read samples");
}

bool cWaveFile::WriteRaw(const void* zpBuffer, std::size_t zBytes) {
    if (out == nullptr || std::fwrite(zpBuffer, 1, zBytes, out.get()) != zBytes) {
        return Fail("Couldn't write samples");
    }
    dataLength += static_cast<std::uint32_t>(zBytes);
    headerDirty = true;
    return true;
}

bool cWaveFile::GetFirstInfo(std::string& zrDescription, std::string& zrValue) {
    return reader != nullptr && reader->Rewind() && reader->NextInfo(zrDescription, zrValue);
}

bool cWaveFile::GetNextInfo(std::string& zrDescription, std::string& zrValue) {
    return reader != nullptr && reader->NextInfo(zrDescription, zrValue);
}

bool cWaveFile::Fail(const char* zpMessage) {
    error = zpMessage;
    return false;
}

/// Brings the samples that wait in the stream's buffer, and the header, into the file.
bool cWaveFile::FinishWriting() {
    const bool isFlushed = std::fflush(out.get()) == 0 || Fail("Couldn't write samples");
    if (!headerDirty) {
        return isFlushed;
    }
    const off_t position = ftello(out.get());
    const bool isHeaderWritten = WriteHeader(out.get());
    fseeko(out.get(), position, SEEK_SET);
    return isFlushed && isHeaderWritten;
}

bool cWaveFile::StartReading(std::unique_ptr<cRiffReader> zpReader) {
    reader = std::move(zpReader);
    const bool isFound = FindSamples();
    if (!isFound) {
        Close();
    }
    return isFound;
}

bool cWaveFile::FindSamples() {
    if (reader->file == nullptr) {
        return Fail("Couldn't open file");
    }
    if (!IsWave(*reader) || !reader->Descend("fmt ")) {
        return Fail("Couldn't find RIFF, WAVE, or fmt");
    }
    if (!ReadFormat()) {
        return Fail("Error reading format chunk");
    }
    reader->Ascend();
    if (!reader->Descend("data")) {
        return Fail("Couldn't find data chunk");
    }
    dataLength = reader->CurrentSize();
    return true;
}

/// Reads the whole format chunk, whose first bytes are the fields; one that is too short for them is refused.
bool cWaveFile::ReadFormat() {
    std::array<std::uint8_t, kFormatSize> fields{};
    const std::uint32_t size = reader->CurrentSize();
    std::FILE* const file = reader->file.get();
    if (size < fields.size() || std::fread(fields.data(), fields.size(), 1, file) != 1 ||
        !ReadOver(file, size - kFormatSize)) {
        return false;
    }
    LoadFormat(fields.data(), *this);
    return true;
}
