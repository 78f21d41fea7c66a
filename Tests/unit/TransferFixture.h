#pragma once

#include "Hermetic.h"
#include "RecordingClient.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

/// A body in which a piece that is lost or comes twice is seen.
inline std::string Bytes(std::size_t length) {
    std::string bytes(length, '\0');
    for (std::size_t index = 0; index < length; ++index) {
        bytes[index] = static_cast<char>(index * 31 + index / 251);
    }
    return bytes;
}

/// A client with a folder to load from and into.
class Transfer : public testing::Test {
protected:
    void StartDownload(const std::string& name = "a.wav") {
        ASSERT_EQ(mClient.Download(mFolder / name, "Music", name), "");
        ASSERT_EQ(mClient.GetState(), FTS_DOWNLOADING);
    }

    bool Exists(const std::string& name) const {
        return std::filesystem::exists(std::filesystem::symlink_status(mFolder / name));
    }

    std::string MakeSparse(const std::string& name, std::uintmax_t size) const {
        std::string path = mFolder.Write(name, "");
        std::filesystem::resize_file(path, size);
        return path;
    }

    /// Only this entry is in the folder.
    void ExpectOnly(const std::string& name, const std::string& content) const {
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(mFolder.Path()), {}), 1);
        EXPECT_EQ(mFolder.Read(name), content);
    }

    void ExpectFailed(const std::string& text) {
        EXPECT_EQ(mClient.GetState(), FTS_ERROR);
        EXPECT_EQ(mClient.GetErrorStr(), text);
    }

    TestFolder mFolder;
    RecordingClient mClient;
};
