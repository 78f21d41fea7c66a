#include "RiffReader.h"

#include "InfoTags.h"
#include "LittleEndian.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>

namespace {

constexpr std::uint32_t kTypeSize = 4;
constexpr std::uint64_t kLastOffset = std::numeric_limits<std::uint32_t>::max();

bool ReadTag(std::FILE* zpFile, char (&zrTag)[5]) {
    return std::fread(zrTag, 1, 4, zpFile) == 4;
}

bool HasType(const cRiffChunk& zChunk) {
    const std::string_view id = zChunk.id;
    return id == "RIFF" || id == "LIST";
}

/// Reads the four characters and the stored size.
bool ReadIdAndSize(std::FILE* zpFile, cRiffChunk& zrChunk) {
    std::array<std::uint8_t, 4> size{};
    if (!ReadTag(zpFile, zrChunk.id) || std::fread(size.data(), 1, size.size(), zpFile) != size.size()) {
        return false;
    }
    zrChunk.size = LoadLittle32(size.data());
    return true;
}

std::string ReadText(std::FILE* zpFile) {
    std::string text;
    for (int byte = std::getc(zpFile); byte != EOF && byte != 0; byte = std::getc(zpFile)) {
        text += static_cast<char>(byte);
    }
    return text;
}

} // namespace

cRiffReader::cRiffReader(const std::string& zPath) : cRiffReader(std::fopen(zPath.c_str(), "rb")) {}

cRiffReader::cRiffReader(std::FILE* zpFile) : file(zpFile) {
    if (!Rewind()) {
        file.reset();
    }
}

bool cRiffReader::Rewind() {
    stack.clear();
    cRiffChunk chunk;
    if (file == nullptr || !Seek(0) || !ReadHeader(chunk) || std::strcmp(chunk.id, "RIFF") != 0) {
        return false;
    }
    riffSize = chunk.size;
    stack.push_back(chunk);
    return true;
}

bool cRiffReader::Descend(const char* zpName) {
    if (stack.empty() || (zpName != nullptr && !Seek(stack.back().start))) {
        return false;
    }
    cRiffChunk chunk;
    while (ReadChild(chunk)) {
        if (zpName == nullptr || std::strcmp(chunk.id, zpName) == 0) {
            stack.push_back(chunk);
            return true;
        }
        if (!Seek(chunk.end)) {
            return false;
        }
    }
    Seek(stack.back().start);
    return false;
}

bool cRiffReader::Ascend() {
    if (stack.size() < 2) {
        return false;
    }
    const bool isBehind = Seek(stack.back().end);
    stack.pop_back();
    return isBehind;
}

const char* cRiffReader::CurrentId() const {
    return stack.empty() ? nullptr : stack.back().id;
}

const char* cRiffReader::CurrentType() const {
    return stack.empty() || stack.back().type[0] == 0 ? nullptr : stack.back().type;
}

std::uint32_t cRiffReader::CurrentSize() const {
    return stack.empty() ? 0 : stack.back().size;
}

bool cRiffReader::NextInfo(std::string& zrDescription, std::string& zrValue) {
    for (;;) {
        if (IsInInfoList()) {
            if (!Descend(nullptr)) {
                if (!Ascend()) {
                    return false;
                }
            } else if (ReadItem(zrDescription, zrValue)) {
                return true;
            }
            continue;
        }
        Descend(nullptr);
        if (!stack.empty() && std::strcmp(stack.back().id, "DISP") == 0) {
            return ReadItem(zrDescription, zrValue);
        }
        if (!IsInInfoList() && !Ascend()) {
            return false;
        }
    }
}

bool cRiffReader::Seek(std::uint32_t zPosition) {
    return fseeko(file.get(), static_cast<off_t>(zPosition), SEEK_SET) == 0;
}

/// Reads the header at which the stream stands; false when it is not all there.
bool cRiffReader::ReadHeader(cRiffChunk& zrChunk) {
    zrChunk = {};
    if (!ReadIdAndSize(file.get(), zrChunk)) {
        return false;
    }
    const std::uint32_t typeSize = HasType(zrChunk) ? kTypeSize : 0;
    if (typeSize != 0 && !ReadTag(file.get(), zrChunk.type)) {
        return false;
    }
    const auto start = static_cast<std::uint64_t>(ftello(file.get()));
    if (start > kLastOffset) {
        return false;
    }
    // Reckoned from the stored size, which may be too small for the form type, and never wrapping, so that
    // the end lies behind the id and size in any case and a walk always gets on.
    const std::uint64_t end = start - typeSize + zrChunk.size;
    zrChunk.start = static_cast<std::uint32_t>(start);
    zrChunk.end = static_cast<std::uint32_t>(std::min(end + end % 2, kLastOffset));
    zrChunk.size -= std::min(zrChunk.size, typeSize);
    return true;
}

/// Reads the header at which the stream stands if it is one of a child of the innermost chunk.
bool cRiffReader::ReadChild(cRiffChunk& zrChunk) {
    const auto position = static_cast<std::uint64_t>(ftello(file.get()));
    return position < stack.back().end && ReadHeader(zrChunk);
}

/// Reads the innermost chunk as an item and leaves it; false when it is none that is known.
bool cRiffReader::ReadItem(std::string& zrDescription, std::string& zrValue) {
    constexpr std::size_t kClipboardFormatSize = 4;
    const std::string_view id = stack.back().id;
    const char* const description = GetInfoDescription(id);
    if (description != nullptr) {
        std::array<char, kClipboardFormatSize> format{};
        const bool hasText = id != "DISP" || std::fread(format.data(), format.size(), 1, file.get()) == 1;
        zrDescription = description;
        zrValue = hasText ? ReadText(file.get()) : std::string();
    }
    Ascend();
    return description != nullptr;
}

bool cRiffReader::IsInInfoList() const {
    return !stack.empty() && std::strcmp(stack.back().id, "LIST") == 0 &&
           std::strcmp(stack.back().type, "INFO") == 0;
}
