#pragma once

#include "Hermetic.h"
#include "ReadAIFF.h"

#include <string>

/// The text that a piece of work throws; "" when it throws none.
template <class Work>
std::string ThrownText(Work work) {
    try {
        work();
    } catch (const char* message) {
        return message;
    }
    return "";
}

/// A file of this content, open.
class OpenAiff {
public:
    explicit OpenAiff(const std::string& content) : reader(mFolder.Write("a.aif", content).c_str()) {}

private:
    const TestFolder mFolder;

public:
    cReadAIFF reader;
};

/// What opening a file of this content throws.
inline std::string OpenError(const std::string& content) {
    return ThrownText([&] { const OpenAiff file(content); });
}
