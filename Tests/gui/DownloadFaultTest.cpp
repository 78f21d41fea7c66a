#include "DownloadFixture.h"
#include "PrivateMounts.h"
#include "SpecialFiles.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t kPage = 4096;

/// What this computer does to a download. Whatever it is, the old file stays, nothing else is left, and the
/// program goes on.
class DownloadFault : public DownloadFixture {
protected:
    void SetUp() override {
        DownloadFixture::SetUp();
        if (!EnterPrivateMounts()) {
            GTEST_SKIP() << "no private mounts here";
        }
    }

    /// Downloads into a folder below the usual one; people let what exists go.
    void DownloadInto(const std::string& zFolder, const Names& zNames, int zQuestions = 0) {
        mPanel.mAnswer = {mFolder / zFolder};
        Meanwhile meanwhile;
        for (int question = 0; question < zQuestions; ++question) {
            meanwhile.Answer("Copy File", "Yes");
        }
        Download(zNames);
    }

    void ExpectFailed(const std::string& zMessage) {
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, zMessage}));
        EXPECT_FALSE(ProgressWindow().isVisible());
        mPanel.mAnswer = {Destination()};
        ExpectUsable();
        fs::remove(mFolder / "afterwards.txt");
        mDevice.Remove("afterwards.txt");
        mAlerts.clear();
    }

    std::string NotWritten(const std::string& zName) const {
        return mFolder / zName + " - failed to write file";
    }

    /// Lets something happen in the middle of the download of "a.wav", and the device go on then.
    void InTheMiddle(Meanwhile& zrMeanwhile, const std::function<void()>& zAction) {
        AnswerPartly("a.wav", std::string(10000, 'n'), 5000);
        zrMeanwhile.When(
            "half of the file", [this] { return CurrentItem() == "a.wav" && Position() > 400; },
            [this, zAction] {
                zAction();
                SendRest("a.wav");
            });
    }
};

TEST_F(DownloadFault, ADiskThatIsFullAtAnyPointKeepsTheOldFile) {
    constexpr std::size_t kPages = 16;
    constexpr std::size_t kNeeded = 6;
    mDevice.AddFile("a.wav", std::string(kNeeded * kPage, 'n'));
    const Mount disk = Mount::Disk(mFolder / "disk", std::to_string(kPages * kPage));
    mFolder.Write("disk/a.wav", "old");
    Connect();
    for (std::size_t room = 0; room < kNeeded; ++room) {
        SCOPED_TRACE(room);
        mFolder.Write("disk/ballast", std::string((kPages - 1 - room) * kPage, 'b'));
        DownloadInto("disk", {"a.wav"}, 1);
        ExpectFailed(NotWritten("disk/a.wav"));
        EXPECT_EQ(mFolder.Read("disk/a.wav"), "old");
        EXPECT_THAT(LocalTree(), ElementsAre("disk/", "disk/a.wav", "disk/ballast"));
    }
    mFolder.Write("disk/ballast", std::string((kPages - 1 - kNeeded) * kPage, 'b'));
    DownloadInto("disk", {"a.wav"}, 1);
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mFolder.Read("disk/a.wav"), std::string(kNeeded * kPage, 'n'));
}

TEST_F(DownloadFault, AReadOnlyDestinationIsSaid) {
    mDevice.AddFile("a.wav", "new");
    mDevice.AddFolder("f");
    mDevice.AddFile("f/b.wav", "new");
    const Mount disk = Mount::Disk(mFolder / "disk", "64k");
    mFolder.Write("disk/a.wav", "old");
    disk.MakeReadOnly();
    Connect();
    DownloadInto("disk", {"a.wav"}, 1);
    ExpectFailed("a.wav - Could not open file");
    DownloadInto("disk", {"f"});
    ExpectFailed("b.wav - Could not open file");
    EXPECT_EQ(mFolder.Read("disk/a.wav"), "old");
    EXPECT_THAT(LocalTree(), ElementsAre("disk/", "disk/a.wav"));
}

TEST_F(DownloadFault, AFolderWithoutPermissionIsSaid) {
    mDevice.AddFile("a.wav", "new");
    mFolder.Write("closed/a.wav", "old");
    Connect();
    for (const unsigned mode : {0500U, 0000U}) {
        SCOPED_TRACE(mode);
        ASSERT_EQ(::chmod((mFolder / "closed").c_str(), mode), 0);
        {
            const OrdinaryUser user;
            DownloadInto("closed", {"a.wav"}, mode == 0 ? 0 : 1);
        }
        ASSERT_EQ(::chmod((mFolder / "closed").c_str(), 0700), 0);
        ExpectFailed("a.wav - Could not open file");
        EXPECT_EQ(mFolder.Read("closed/a.wav"), "old");
        EXPECT_THAT(LocalTree(), ElementsAre("closed/", "closed/a.wav"));
    }
}

TEST_F(DownloadFault, AnOldFileThatCannotBeWrittenIsReplacedWhole) {
    mDevice.AddFile("a.wav", "new");
    ASSERT_EQ(::chmod(mFolder.Write("a.wav", "old").c_str(), 0000), 0);
    Connect();
    {
        const OrdinaryUser user;
        DownloadInto(".", {"a.wav"}, 1);
    }
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_EQ(mFolder.Read("a.wav"), "new");
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav"));
}

TEST_F(DownloadFault, ADestinationThatIsRemovedMeanwhileIsSaid) {
    mDevice.AddFile("a.wav", std::string(10000, 'n'));
    fs::create_directory(mFolder / "gone");
    Connect();
    Meanwhile meanwhile;
    InTheMiddle(meanwhile, [this] { fs::remove_all(mFolder / "gone"); });
    DownloadInto("gone", {"a.wav"});
    ExpectFailed(NotWritten("gone/a.wav"));
    EXPECT_THAT(LocalTree(), IsEmpty());
}

// A name that no disk here takes is longer than any command for it.
TEST_F(DownloadFault, ANameTooLongForTheDiskIsSaid) {
    const std::string longName(300, 'n');
    mDevice.AddFile(longName, "new");
    mDevice.AddFolder("f" + longName);
    Connect();
    for (const std::string& name : {longName, "f" + longName}) {
        DownloadInto(".", {name});
        ExpectFailed(name + " - Path too long");
    }
    EXPECT_THAT(LocalTree(), IsEmpty());
}

TEST_F(DownloadFault, APathTooLongToBeOpenedIsSaid) {
    std::string folder;
    while ((mFolder / folder).size() < 1000) {
        folder += std::string(50, 'n') + '/';
    }
    fs::create_directories(mFolder / folder);
    mDevice.AddFile(std::string(50, 'a') + ".wav", "new");
    Connect();
    const Names before = LocalTree();
    DownloadInto(folder, {std::string(50, 'a') + ".wav"});
    ExpectFailed(std::string(50, 'a') + ".wav - Could not open file");
    EXPECT_EQ(LocalTree(), before);
}

TEST_F(DownloadFault, APipeOrASocketGivesWayUnopened) {
    mDevice.AddFile("a.wav", "new");
    Connect();
    for (const auto& make : {MakePipe, MakeSocket}) {
        make(mFolder / "a.wav");
        const OpenWatch watch(mFolder / "a.wav");
        DownloadInto(".", {"a.wav"}, 1);
        EXPECT_FALSE(watch.WasOpened());
        EXPECT_THAT(mAlerts, IsEmpty());
        EXPECT_EQ(mFolder.Read("a.wav"), "new");
        EXPECT_THAT(LocalTree(), ElementsAre("a.wav"));
        fs::remove(mFolder / "a.wav");
    }
}

TEST_F(DownloadFault, ADeviceFileStays) {
    mDevice.AddFile("a.wav", "new");
    const Mount device = Mount::Device(mFolder / "a.wav", "/dev/null");
    Connect();
    DownloadInto(".", {"a.wav"}, 1);
    ExpectFailed(NotWritten("./a.wav"));
    EXPECT_TRUE(fs::is_character_file(mFolder / "a.wav"));
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav"));
}

TEST_F(DownloadFault, WhatIsNoFileIsNotOpenedWhereTheFileArrives) {
    mDevice.AddFile("a.wav", "new");
    mFolder.Write("a.wav", "old");
    Connect();
    for (const auto& make : {MakePipe, MakeSocket}) {
        make(mFolder / "a.wav.tmp");
        const OpenWatch watch(mFolder / "a.wav.tmp");
        DownloadInto(".", {"a.wav"}, 2);
        EXPECT_FALSE(watch.WasOpened());
        ExpectFailed("a.wav - Could not open file");
        EXPECT_EQ(mFolder.Read("a.wav"), "old");
        EXPECT_TRUE(fs::remove(mFolder / "a.wav.tmp"));
    }
}

TEST_F(DownloadFault, WhatIsNoFolderIsNotOpenedAsOne) {
    mDevice.AddFile("a.wav", "new");
    mDevice.AddFolder("f");
    mDevice.AddFile("f/b.wav", "new");
    Connect();
    for (const auto& make : {MakePipe, MakeSocket}) {
        make(mFolder / "f");
        const OpenWatch watch(mFolder / "f");
        DownloadInto(".", {"f"});
        ExpectFailed("b.wav - Could not open file");
        DownloadInto("f", {"a.wav"});
        ExpectFailed("a.wav - Could not open file");
        EXPECT_FALSE(watch.WasOpened());
        EXPECT_THAT(LocalTree(), ElementsAre("f"));
        fs::remove(mFolder / "f");
    }
}

} // namespace
