#include "PrivateMounts.h"
#include "SpecialFiles.h"
#include "UploadFixture.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// What this computer does to an upload.
class UploadFault : public UploadFixture {
protected:
    void SetUp() override {
        UploadFixture::SetUp();
        if (!EnterPrivateMounts()) {
            GTEST_SKIP() << "no private mounts here";
        }
    }
};

struct sChange {
    const char* name;
    void (*change)(const fs::path&);
};

void PrintTo(const sChange& zChange, std::ostream* zpStream) {
    *zpStream << zChange.name;
}

class UploadChanges : public UploadFault, public ::testing::WithParamInterface<sChange> {};

TEST_P(UploadChanges, AFileThatIsOnItsWayArrivesAsItWas) {
    StallAt("a.dat");
    Connect();
    Meanwhile meanwhile;
    meanwhile.When(
        "the middle of the file", [this] { return IsInTheMiddleOf("a.dat"); },
        [this] {
            GetParam().change(mFolder / "a.dat");
            mDevice.ListenAgain();
        });
    Upload({"a.dat"});
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_TRUE(Received("a.dat") == std::string(kLong, '\0'));
    ExpectUploads();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UploadChanges,
    ::testing::Values(
        sChange{"Grows", [](const fs::path& zPath) { fs::resize_file(zPath, 2 * fs::file_size(zPath)); }},
        sChange{"Shrinks", [](const fs::path& zPath) { fs::resize_file(zPath, 10); }},
        sChange{"Vanishes", [](const fs::path& zPath) { fs::remove(zPath); }},
        sChange{"BecomesAPipe",
                [](const fs::path& zPath) {
                    fs::remove(zPath);
                    MakePipe(zPath);
                }}),
    [](const auto& zInfo) { return std::string(zInfo.param.name); });

TEST_F(UploadFault, AFileThatChangesBeforeItsTurnGoesAsItIsThen) {
    for (const char* name : {"1 grows.txt", "2 shrinks.txt", "3 vanishes.txt", "4 pipe.txt", "5 last.txt"}) {
        mFolder.Write(name, "before");
    }
    mDevice.AddFile("5 last.txt", "old");
    Connect();
    Meanwhile meanwhile;
    meanwhile.WhenShown(kPrompt, [this](QWidget& zrPrompt) {
        mFolder.Write("1 grows.txt", std::string(10000, 'g'));
        mFolder.Write("2 shrinks.txt", "s");
        fs::remove(mFolder / "3 vanishes.txt");
        fs::remove(mFolder / "4 pipe.txt");
        MakePipe(mFolder / "4 pipe.txt");
        Click<QPushButton>(zrPrompt, "Yes");
    });
    Upload({"1 grows.txt", "2 shrinks.txt", "3 vanishes.txt", "4 pipe.txt", "5 last.txt"});
    EXPECT_THAT(Sent(), ElementsAre("1 grows.txt", "2 shrinks.txt", "5 last.txt"));
    EXPECT_EQ(Received("1 grows.txt"), std::string(10000, 'g'));
    EXPECT_EQ(Received("2 shrinks.txt"), "s");
    EXPECT_THAT(mAlerts, IsEmpty());
    ExpectUploads();
}

// Sounds go through the conversion, other files do not.
TEST_F(UploadFault, WhatIsNoFileIsNotOpened) {
    for (const char* ending : {".txt", ".wav"}) {
        MakePipe(mFolder.Write(std::string("f/1") + ending, "") + ".pipe" + ending);
        MakeSocket(mFolder / ("f/2 socket" + std::string(ending)));
    }
    const OpenWatch text(mFolder / "f/1.txt.pipe.txt");
    const OpenWatch sound(mFolder / "f/1.wav.pipe.wav");
    const Mount zeros = Mount::Device(mFolder / "f/3 device.txt", "/dev/zero");
    const Mount zeroSound = Mount::Device(mFolder / "f/3 device.wav", "/dev/zero");
    mFolder.Write("f/4.txt", "full");
    Connect();
    EXPECT_EQ(Drop({"f"}), "");
    EXPECT_THAT(Sent(), ElementsAre("f/4.txt"));
    Upload({"f/1.txt.pipe.txt", "f/1.wav.pipe.wav", "f/2 socket.txt", "f/2 socket.wav", "f/3 device.txt",
            "f/3 device.wav", "f/4.txt"});
    EXPECT_THAT(Sent(), ElementsAre("f/4.txt", "4.txt"));
    EXPECT_FALSE(text.WasOpened());
    EXPECT_FALSE(sound.WasOpened());
    EXPECT_THAT(mAlerts, IsEmpty());
    ExpectUploads();
}

TEST_F(UploadFault, LinksThatLoopEndInADroppedFolder) {
    mFolder.Write("f/g/a.txt", "full");
    fs::create_directory_symlink("..", mFolder / "f/g/parent");
    fs::create_directory_symlink(".", mFolder / "f/g/self");
    fs::create_symlink("second.wav", mFolder / "f/first.wav");
    fs::create_symlink("first.wav", mFolder / "f/second.wav");
    fs::create_directory_symlink("f", mFolder / "f/f");
    Connect();
    EXPECT_EQ(Drop({"f"}), "");
    EXPECT_THAT(Sent(), ElementsAre("f/g/a.txt"));
    EXPECT_EQ(Drop({"f/first.wav"}), "");
    EXPECT_THAT(Sent(), ElementsAre("f/g/a.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
    ExpectUploads();
}

TEST_F(UploadFault, WhatMayNotBeReadIsPassedOver) {
    for (const char* name : {"f/1.txt", "f/1.wav", "f/closed/2.txt", "f/3.txt"}) {
        mFolder.Write(name, "full");
    }
    for (const char* name : {"f/1.txt", "f/1.wav", "f/closed"}) {
        fs::permissions(mFolder / name, fs::perms::none);
    }
    Connect();
    {
        const OrdinaryUser user;
        EXPECT_EQ(Drop({"f"}), "");
    }
    EXPECT_THAT(Sent(), ElementsAre("f/3.txt"));
    EXPECT_THAT(mAlerts, IsEmpty());
    ExpectUploads();
}

} // namespace
