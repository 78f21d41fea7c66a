#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <vector>

struct sStdioCloser {
    void operator()(std::FILE* zpFile) const { static_cast<void>(std::fclose(zpFile)); }
};

/// A C stream with one owner, closed with it.
using tStdioStream = std::unique_ptr<std::FILE, sStdioCloser>;

/// A larger buffer for a stream that a whole file goes through in small steps; it has to outlive the stream.
class cStdioBuffer {
public:
    /// Before anything else is done with the stream. Where there is none, nothing happens.
    void GiveTo(std::FILE* zpFile) {
        if (zpFile != nullptr) {
            static_cast<void>(std::setvbuf(zpFile, mBytes.data(), _IOFBF, mBytes.size()));
        }
    }

private:
    /// A seek out of it reads as much again, and a header may seek a thousand times.
    std::vector<char> mBytes = std::vector<char>(std::size_t{16} * 1024);
};
