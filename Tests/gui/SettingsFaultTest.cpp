#include "Hermetic.h"
#include "PrivateMounts.h"
#include "Settings.h"
#include "SpecialFiles.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr const char* kName = "place/Settings.xml";

/// What this computer does to the settings file.
class SettingsFault : public ::testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(mFolder / "place");
        mSettings.FilePath = mFolder / kName;
        mSettings.RecentDeviceName = "kept";
        if (!EnterPrivateMounts()) {
            GTEST_SKIP() << "no private mounts here";
        }
    }

    std::ptrdiff_t EntriesInPlace() const {
        return std::distance(fs::directory_iterator(mFolder / "place"), fs::directory_iterator());
    }

    TestFolder mFolder;
    cSettings mSettings;
};

TEST_F(SettingsFault, WhatIsNoFileIsNotOpened) {
    for (const auto& make : {MakePipe, MakeSocket}) {
        make(mSettings.FilePath);
        const OpenWatch watch(mSettings.FilePath);
        EXPECT_FALSE(mSettings.Load());
        EXPECT_FALSE(mSettings.Save());
        EXPECT_FALSE(watch.WasOpened());
        EXPECT_EQ(EntriesInPlace(), 1);
        EXPECT_TRUE(fs::remove(mSettings.FilePath));
    }
    const Mount device = Mount::Device(mSettings.FilePath, "/dev/zero");
    EXPECT_FALSE(mSettings.Load());
    EXPECT_FALSE(mSettings.Save());
    EXPECT_EQ(mSettings.RecentDeviceName, "kept");
    EXPECT_EQ(EntriesInPlace(), 1);
}

TEST_F(SettingsFault, WhatIsNoFolderIsNotOpened) {
    for (const auto& make : {MakePipe, MakeSocket}) {
        fs::remove(mFolder / "place");
        make(mFolder / "place");
        const OpenWatch watch(mFolder / "place");
        EXPECT_FALSE(mSettings.Load());
        EXPECT_FALSE(mSettings.Save());
        EXPECT_FALSE(watch.WasOpened());
    }
}

TEST_F(SettingsFault, AFullDiskKeepsTheOldFile) {
    const Mount disk = Mount::Disk(mFolder / "place", "16k");
    ASSERT_TRUE(mSettings.Save());
    const std::string before = mFolder.Read(kName);
    mFolder.Write("place/ballast", std::string(12288, 'b'));
    mSettings.RecentDeviceName = "new";
    EXPECT_FALSE(mSettings.Save());
    EXPECT_EQ(mFolder.Read(kName), before);
    EXPECT_EQ(EntriesInPlace(), 2);
}

TEST_F(SettingsFault, AReadOnlyFolderKeepsTheOldFile) {
    const Mount disk = Mount::Disk(mFolder / "place", "16k");
    ASSERT_TRUE(mSettings.Save());
    const std::string before = mFolder.Read(kName);
    disk.MakeReadOnly();
    mSettings.RecentDeviceName = "new";
    EXPECT_FALSE(mSettings.Save());
    EXPECT_EQ(mFolder.Read(kName), before);
    EXPECT_TRUE(mSettings.Load());
    EXPECT_EQ(mSettings.RecentDeviceName, "kept");
}

TEST_F(SettingsFault, AFileThatMayNotBeReadGivesDefaults) {
    ASSERT_TRUE(mSettings.Save());
    fs::permissions(mSettings.FilePath, fs::perms::none);
    cSettings fresh;
    fresh.FilePath = mSettings.FilePath;
    const OrdinaryUser user;
    EXPECT_FALSE(fresh.Load());
    EXPECT_EQ(fresh.RecentDeviceName, "");
}

TEST_F(SettingsFault, LinksThatLoopGiveDefaults) {
    fs::create_symlink("other", mSettings.FilePath);
    fs::create_symlink("Settings.xml", mFolder / "place/other");
    cSettings fresh;
    fresh.FilePath = mSettings.FilePath;
    EXPECT_FALSE(fresh.Load());
    EXPECT_EQ(fresh.RecentDeviceName, "");
}

TEST_F(SettingsFault, AFileOf100MegabytesGivesDefaults) {
    ASSERT_TRUE(mSettings.Save());
    fs::resize_file(mSettings.FilePath, 100'000'000);
    cSettings fresh;
    fresh.FilePath = mSettings.FilePath;
    EXPECT_TRUE(fresh.Load());
    EXPECT_EQ(fresh.RecentDeviceName, "");
}

} // namespace
