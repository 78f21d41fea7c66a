#pragma once

#include <cstdio>
#include <memory>

struct sStdioCloser {
    void operator()(std::FILE* zpFile) const { static_cast<void>(std::fclose(zpFile)); }
};

/// A C stream with one owner, closed with it.
using tStdioStream = std::unique_ptr<std::FILE, sStdioCloser>;
