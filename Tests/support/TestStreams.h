#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

/// A stream over a nameless file of this content, to be read and written; it stands at its start.
inline std::FILE* FileHolding(const std::string& content) {
    std::FILE* const stream = std::tmpfile();
    if (stream == nullptr || std::fwrite(content.data(), 1, content.size(), stream) != content.size()) {
        throw std::runtime_error("no temporary file");
    }
    std::rewind(stream);
    return stream;
}

/// A stream over a piece of memory, which must outlive it and not be empty. It can be read only, and cannot
/// be moved beyond its end.
inline std::FILE* MemoryHolding(const std::string& content) {
    std::FILE* const stream = ::fmemopen(const_cast<char*>(content.data()), content.size(), "rb");
    if (stream == nullptr) {
        throw std::runtime_error("no memory stream");
    }
    return stream;
}

/// All that a stream over a file holds; its place is kept.
inline std::string ContentOf(std::FILE* stream) {
    const long place = std::ftell(stream);
    std::fseek(stream, 0, SEEK_SET);
    std::string content;
    for (int byte = std::getc(stream); byte != EOF; byte = std::getc(stream)) {
        content += static_cast<char>(byte);
    }
    std::fseek(stream, place, SEEK_SET);
    return content;
}
