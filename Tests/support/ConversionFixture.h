#pragma once

#include "AudioConversion.h"
#include "CommonUtils_OSX.h"
#include "Hermetic.h"
#include "RiffBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// What tests of conversions have in common: bytes of samples, and a look at the folder for temporary files.

/// The bytes of numbers as this machine, a little-endian one, keeps them.
template <class tNumber>
std::string BytesOf(const std::vector<tNumber>& numbers) {
    const auto* const first = reinterpret_cast<const char*>(numbers.data());
    return {first, first + numbers.size() * sizeof(tNumber)};
}

inline std::string FileBytes(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The whole file that a conversion should have made of these samples.
inline std::string ConvertedFile(std::uint32_t sampleRate, unsigned channels,
                                 const std::vector<std::int16_t>& samples) {
    return WaveBytes({1, channels, sampleRate, 16}, BytesOf(samples));
}

/// Long enough to be reported on several times.
inline std::string LongSound() {
    return WaveBytes({1, 2, 44100, 16}, std::string(1'000'000, '\x11'));
}

/// Names in a folder, sorted.
inline std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

/// A folder for sources, and an empty folder for temporary files.
class ConversionTest : public ::testing::Test {
protected:
    using tNames = std::vector<std::string>;

    ConversionTest() { EmptyTempFolder(); }

    ~ConversionTest() override { EmptyTempFolder(); }

    static std::string InTempFolder(const std::string& name) { return GetTempFolder() + '/' + name; }

    static tNames TempNames() { return NamesIn(GetTempFolder()); }

    /// The source goes as it is, under this name and for this reason.
    static void ExpectSentAsItIs(const cAudioConversion& conversion, const std::string& deviceName,
                                 const std::string& message) {
        EXPECT_FALSE(conversion.converted);
        EXPECT_EQ(conversion.outputPath, conversion.sourcePath);
        EXPECT_EQ(conversion.deviceName, deviceName);
        EXPECT_EQ(conversion.message, message);
        EXPECT_EQ(conversion.outputSize, GetFileSize(conversion.sourcePath));
    }

    /// A temporary file goes, under this name and with this content.
    static void ExpectConverted(const cAudioConversion& conversion, const std::string& deviceName,
                                const std::string& content) {
        EXPECT_TRUE(conversion.converted);
        EXPECT_EQ(GetParentPath(conversion.outputPath), GetTempFolder());
        EXPECT_EQ(conversion.deviceName, deviceName);
        EXPECT_EQ(conversion.message, "");
        EXPECT_EQ(conversion.outputSize, content.size());
        EXPECT_TRUE(FileBytes(conversion.outputPath) == content) << "not the expected bytes";
    }

    TestFolder mFolder;

private:
    static void EmptyTempFolder() {
        for (const std::string& name : TempNames()) {
            std::filesystem::remove_all(InTempFolder(name));
        }
    }
};
