#pragma once

#include "DownloadFixture.h"

#include <optional>
#include <string>

/// Uploads from a fresh folder to a scripted device. Alerts are answered with OK and noted, and no test may
/// leave anything in the program's temporary folder.
class UploadFixture : public DownloadFixture {
protected:
    static constexpr const char* kUploadFailed = "Upload failed";
    static constexpr const char* kUploading = "Uploading files";
    static constexpr const char* kPrompt = "Copy File";
    static constexpr const char* kFolderPrompt = "Copy Folder";

    /// More bytes than can be on their way between the program and a device that does not take them.
    static constexpr std::size_t kLong = 40'000'000;

    void TearDown() override;

    /// Lets people choose these files of the local folder and presses Upload; returns when that has ended.
    void Upload(const Names& zNames);

    /// What dropping does, which brings folders too; lists the folder and returns the error text.
    std::string Drop(const Names& zNames, const std::string& zDevicePath = {});

    /// Makes a local file of a size, all zeros, that takes no room on the disk.
    std::string WriteSparse(const std::string& zName, std::uintmax_t zSize, const std::string& zBegin = {});

    /// A long local sound file, which takes a while to convert.
    std::string WriteLongSound(const std::string& zName);

    /// Takes the full rights away, which only the dialog of Connect gives.
    void ConnectWithoutFullRights();

    /// The device stops taking bytes in the middle of a local file of this name, which is made, until it
    /// listens again or is connected to anew.
    void StallAt(const std::string& zName);

    /// The upload of the stalled file is under way, and people see it.
    bool IsInTheMiddleOf(const std::string& zName);

    /// The paths that were uploaded to, in order.
    Names Sent() const;

    /// What the device holds under a path; "(none)" for nothing.
    std::string Received(const std::string& zPath) const;

    /// What is in the program's temporary folder.
    static Names TemporaryFiles();

    /// Asserts that the program, connected again, uploads a file that is made for the purpose.
    void ExpectUploads();
};
