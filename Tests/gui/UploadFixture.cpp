#include "UploadFixture.h"

#include "CommonUtils_OSX.h"
#include "RiffBytes.h"

#include <filesystem>
#include <fstream>

void UploadFixture::TearDown() {
    EXPECT_EQ(TemporaryFiles(), Names());
    EXPECT_FALSE(ProgressWindow().isVisible());
    DownloadFixture::TearDown();
}

void UploadFixture::Upload(const Names& zNames) {
    mPanel.mAnswer.clear();
    for (const std::string& name : zNames) {
        mPanel.mAnswer.push_back(mFolder / name);
    }
    ASSERT_TRUE(IsEnabled("Upload"));
    Press("Upload");
}

std::string UploadFixture::Drop(const Names& zNames, const std::string& zDevicePath) {
    Names paths;
    for (const std::string& name : zNames) {
        paths.push_back(mFolder / name);
    }
    std::string error = mController.UploadFiles(paths, zDevicePath);
    Key(Qt::Key_F5); // when that is listed, the device has everything
    return error;
}

std::string UploadFixture::WriteSparse(const std::string& zName, std::uintmax_t zSize,
                                       const std::string& zBegin) {
    std::string path = mFolder.Write(zName, zBegin);
    std::filesystem::resize_file(path, zSize);
    return path;
}

std::string UploadFixture::WriteLongSound(const std::string& zName) {
    constexpr std::uint32_t kSamples = 240'000'000; // bytes; an upload takes no more than 268435455
    const std::string header = "RIFF" + Little32(kSamples + 36) + "WAVE" + Chunk("fmt ", FormatBytes({})) +
                               ChunkOfSize("data", kSamples);
    return WriteSparse(zName, header.size() + kSamples, header);
}

void UploadFixture::ConnectWithoutFullRights() {
    Connect();
    Press("Disconnect");
    ASSERT_TRUE(mController.ConnectDevice());
    mDevice.ForgetCommands();
}

void UploadFixture::StallAt(const std::string& zName) {
    WriteSparse(zName, kLong);
    mDevice.mOnCommand = [this, zName, answer = mDevice.mOnCommand](const std::string& zCommand) {
        if (zCommand == ScriptedDevice::UploadCommand(zName, kLong)) {
            mDevice.StopListening();
        }
        return answer(zCommand);
    };
}

bool UploadFixture::IsInTheMiddleOf(const std::string& zName) {
    return CurrentItem() == zName && Position() > 0 && WindowInFront(kUploading) != nullptr;
}

UploadFixture::Names UploadFixture::Sent() const {
    const std::string begin = R"(<cmd upload>Name = "User/)";
    Names paths;
    for (const std::string& command : mDevice.Commands()) {
        if (command.starts_with(begin)) {
            paths.push_back(command.substr(begin.size(), command.find('"', begin.size()) - begin.size()));
        }
    }
    return paths;
}

std::string UploadFixture::Received(const std::string& zPath) const {
    return mDevice.Content(zPath).value_or("(none)");
}

UploadFixture::Names UploadFixture::TemporaryFiles() {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(GetTempFolder())) {
        names.push_back(entry.path().filename().string());
    }
    return names;
}

void UploadFixture::ExpectUploads() {
    mAlerts.clear();
    mFolder.Write("afterwards.txt", "as usual");
    // A failure text of the protocol client ends one attempt, and that one only.
    ASSERT_TRUE(mController.IsConnected() || ConnectTo(mDevice) || ConnectTo(mDevice));
    if (Directory() != "/") {
        Press("Back");
    }
    mDevice.Remove("afterwards.txt");
    ASSERT_TRUE(WaitFor([this] {
        Key(Qt::Key_F5);
        return Status() == "Connected to 'Scripted'";
    }));
    Upload({"afterwards.txt"});
    EXPECT_EQ(Received("afterwards.txt"), "as usual");
    EXPECT_EQ(mAlerts, std::vector<sAlert>());
}
