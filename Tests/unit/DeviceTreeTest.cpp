#include "FileTree.h"
#include "Hermetic.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <array>

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

/// A served folder with neighbours that must stay out of reach.
class DeviceTree : public ::testing::Test {
protected:
    DeviceTree() {
        mFolder.Write("root/Music/a.wav", "four");
        mFolder.Write("root/note.txt", "12345");
        mFolder.Write("outside/secret.txt", "secret");
        mFolder.Write("rooted/secret.txt", "secret");
    }

    fs::path Root() const { return fs::canonical(mFolder.Path() / "root"); }

    void Link(const std::string& name, const fs::path& target) const {
        fs::create_symlink(target, mFolder.Path() / "root" / name);
    }

    std::vector<std::string> Names(const std::string& devicePath) {
        mPassedOver.clear();
        std::vector<std::string> names;
        const auto remember = [this](const std::string& name) { mPassedOver.push_back(name); };
        for (const TreeEntry& entry : mTree.List(mTree.Locate(devicePath).value(), remember)) {
            names.push_back(entry.name + (entry.isFolder ? "/" : ""));
        }
        return names;
    }

    bool Exists(const std::string& name) const {
        return fs::exists(fs::symlink_status(mFolder.Path() / name));
    }

    TestFolder mFolder;
    FileTree mTree{(fs::create_directories(mFolder.Path() / "root"), mFolder.Path() / "root")};
    std::vector<std::string> mPassedOver;
};

TEST_F(DeviceTree, LocatesWhatIsBelowTheRoot) {
    EXPECT_EQ(mTree.Root(), Root());
    EXPECT_EQ(mTree.Locate("User"), Root());
    EXPECT_EQ(mTree.Locate("User/"), Root());
    EXPECT_EQ(mTree.Locate("User/Music"), Root() / "Music");
    EXPECT_EQ(mTree.Locate("User/Music/"), Root() / "Music");
    EXPECT_EQ(mTree.Locate("User/Music/a.wav"), Root() / "Music/a.wav");
    EXPECT_EQ(mTree.Locate("User//Music///a.wav"), Root() / "Music/a.wav");
    EXPECT_EQ(mTree.Locate("User/not/there"), Root() / "not/there");
    EXPECT_EQ(mTree.Locate("User//etc/passwd"), Root() / "etc/passwd");
    EXPECT_EQ(mTree.Locate("User/...hidden"), Root() / "...hidden");
}

class RefusedPath : public DeviceTree, public ::testing::WithParamInterface<std::string> {};

TEST_P(RefusedPath, IsNotLocated) {
    EXPECT_EQ(mTree.Locate(GetParam()), std::nullopt);
    EXPECT_EQ(mTree.LocateEntry(GetParam()), std::nullopt);
    EXPECT_EQ(mTree.MakeFolder(GetParam()), kPathRefused);
    EXPECT_EQ(mTree.Remove(GetParam()), kPathRefused);
    EXPECT_EQ(mTree.Rename(GetParam(), "User/new"), kPathRefused);
    EXPECT_EQ(mTree.Rename("User/note.txt", GetParam()), kPathRefused);
    EXPECT_TRUE(Exists("root/note.txt"));
    EXPECT_TRUE(Exists("outside/secret.txt"));
}

INSTANTIATE_TEST_SUITE_P(Paths, RefusedPath,
                         ::testing::Values("", "/", "user/a", "Users/a", "User\\a", "/etc/passwd",
                                           "../outside", "User/..", "User/../outside/secret.txt",
                                           "User/Music/../../outside", "User/Music/../note.txt", "User/.",
                                           "User/./note.txt", "User/a\"b", "User/a<b", "User/a>b",
                                           std::string("User/note.txt\0x", 15), "User/.quillbox-upload-1-1",
                                           "User/.quillbox-upload-x/a"));

TEST_F(DeviceTree, LinksThatLeadOutsideAreRefused) {
    Link("out", mFolder.Path() / "outside");
    Link("up", "../outside");
    Link("file", "../outside/secret.txt");
    Link("nowhere", "../outside/new.txt");
    Link("sibling", "../rooted");
    Link("circle", "circle");
    Link("Music/deep", "../../outside");
    for (const char* path : {"User/out", "User/out/secret.txt", "User/out/new", "User/up/secret.txt",
                             "User/file", "User/nowhere", "User/sibling/secret.txt", "User/circle",
                             "User/circle/a", "User/Music/deep/secret.txt"}) {
        EXPECT_EQ(mTree.Locate(path), std::nullopt) << path;
        EXPECT_EQ(mTree.Remove(path), kPathRefused) << path;
        EXPECT_EQ(mTree.Rename(path, "User/got"), kPathRefused) << path;
        EXPECT_EQ(mTree.MakeFolder(path), kPathRefused) << path;
    }
    EXPECT_EQ(mTree.Rename("User/note.txt", "User/out/note.txt"), kPathRefused);
    EXPECT_THAT(Names("User"), ElementsAre("Music/", "note.txt"));
    EXPECT_EQ(mTree.Total(Root()).files, 2U);
}

TEST_F(DeviceTree, LinksThatStayInsideAreFollowed) {
    Link("short", "Music");
    Link("absolute", Root() / "Music");
    Link("tune.wav", "Music/a.wav");
    Link("second", "short");
    EXPECT_EQ(mTree.Locate("User/short/a.wav"), Root() / "Music/a.wav");
    EXPECT_EQ(mTree.Locate("User/absolute/new"), Root() / "Music/new");
    EXPECT_EQ(mTree.Locate("User/second"), Root() / "Music");
    EXPECT_EQ(mTree.Locate("User/tune.wav"), Root() / "Music/a.wav");
    EXPECT_THAT(Names("User"),
                ElementsAre("Music/", "absolute/", "note.txt", "second/", "short/", "tune.wav"));
}

TEST_F(DeviceTree, RemovesALinkAndNotItsTarget) {
    Link("short", "Music");
    EXPECT_EQ(mTree.Remove("User/short/"), "");
    EXPECT_FALSE(Exists("root/short"));
    EXPECT_TRUE(Exists("root/Music/a.wav"));
}

TEST_F(DeviceTree, RemovingAFolderDoesNotFollowItsLinks) {
    Link("Music/out", mFolder.Path() / "outside");
    EXPECT_EQ(mTree.Remove("User/Music"), "");
    EXPECT_FALSE(Exists("root/Music"));
    EXPECT_TRUE(Exists("outside/secret.txt"));
}

TEST_F(DeviceTree, RemoveTellsWhatIsMissing) {
    EXPECT_EQ(mTree.Remove("User/none"), "no such file or folder");
    EXPECT_EQ(mTree.Remove("User/note.txt"), "");
    EXPECT_FALSE(Exists("root/note.txt"));
}

TEST_F(DeviceTree, TheRootIsNeitherRemovedNorMoved) {
    for (const char* path : {"User", "User/", "User//"}) {
        EXPECT_EQ(mTree.Remove(path), kPathRefused);
        EXPECT_EQ(mTree.Rename(path, "User/x"), kPathRefused);
        EXPECT_EQ(mTree.Rename("User/note.txt", path), kPathRefused);
    }
    EXPECT_TRUE(Exists("root/note.txt"));
}

TEST_F(DeviceTree, MakesFoldersWithThoseAbove) {
    EXPECT_EQ(mTree.MakeFolder("User/x/y/z/"), "");
    EXPECT_TRUE(fs::is_directory(Root() / "x/y/z"));
    EXPECT_EQ(mTree.MakeFolder("User/x"), "");
    EXPECT_NE(mTree.MakeFolder("User/note.txt"), "");
    EXPECT_NE(mTree.MakeFolder("User/note.txt/below"), "");
    EXPECT_NE(mTree.MakeFolder("User/" + std::string(300, 'x')), "");
}

TEST_F(DeviceTree, RenamesToFreeNamesOnly) {
    EXPECT_EQ(mTree.Rename("User/note.txt", "User/Music/n.txt"), "");
    EXPECT_EQ(mFolder.Read("root/Music/n.txt"), "12345");
    EXPECT_EQ(mTree.Rename("User/Music/n.txt", "User/Music/a.wav"), "the new name is taken");
    EXPECT_EQ(mFolder.Read("root/Music/a.wav"), "four");
    EXPECT_EQ(mTree.Rename("User/Music", "User/Sound/"), "");
    EXPECT_TRUE(Exists("root/Sound/a.wav"));
    EXPECT_NE(mTree.Rename("User/Sound", "User/Sound/inner"), "");
    EXPECT_NE(mTree.Rename("User/none", "User/some"), "");
    EXPECT_NE(mTree.Rename("User/Sound/a.wav", "User/none/a.wav"), "");
}

TEST_F(DeviceTree, ListsSortedWithDatesAndSizes) {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
    const timespec time{1714584600, 0}; // 2024-05-01 17:30:00 UTC
    const std::array times{time, time};
    ASSERT_EQ(::utimensat(AT_FDCWD, (Root() / "note.txt").c_str(), times.data(), 0), 0);
    mFolder.Write("root/\xc3\x89t\xc3\xa9.wav", "");
    const std::vector<TreeEntry> entries = mTree.List(Root(), [](const std::string&) {});
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].name, "Music");
    EXPECT_TRUE(entries[0].isFolder);
    EXPECT_EQ(entries[1].name, "note.txt");
    EXPECT_FALSE(entries[1].isFolder);
    EXPECT_EQ(entries[1].size, 5U);
    EXPECT_EQ(entries[1].date, "2024-05-01 17:30");
    EXPECT_EQ(entries[2].name, "\xc3\x89t\xc3\xa9.wav");
    EXPECT_EQ(entries[2].size, 0U);
}

TEST_F(DeviceTree, NamesThatNoListingCanCarryAreReported) {
    for (const char* name : {"a\"b", "a<b", "a>b", ".quillbox-upload-7-1"}) {
        mFolder.Write(std::string("root/") + name, "x");
    }
    mFolder.Write("root/.hidden", "x");
    mFolder.Write("root/a'b&c=d\ne", "x");
    EXPECT_THAT(Names("User"), ElementsAre(".hidden", "Music/", "a'b&c=d\ne", "note.txt"));
    EXPECT_THAT(mPassedOver, UnorderedElementsAre("a\"b", "a<b", "a>b", ".quillbox-upload-7-1"));
}

TEST_F(DeviceTree, PipesAreNoEntries) {
    ASSERT_EQ(::mkfifo((Root() / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(Names("User"), ElementsAre("Music/", "note.txt"));
    EXPECT_EQ(mTree.Total(Root()).files, 2U);
}

TEST_F(DeviceTree, WhatIsNoFolderListsNothing) {
    EXPECT_THAT(Names("User/note.txt"), IsEmpty());
    EXPECT_THAT(Names("User/none"), IsEmpty());
}

TEST_F(DeviceTree, TotalsCountTheWholeTree) {
    mFolder.Write("root/Music/deep/er/b.wav", std::string(1000, 'b'));
    mFolder.Write("root/Music/empty", "");
    mFolder.Write("root/Music/a<b", "not shown, so not counted");
    Link("Music/again", ".");
    Link("Music/deep/up", "../..");
    EXPECT_EQ(mTree.Total(Root()).size, 5U + 4U + 1000U);
    EXPECT_EQ(mTree.Total(Root()).files, 4U);
    EXPECT_EQ(mTree.Total(Root() / "note.txt").size, 5U);
    EXPECT_EQ(mTree.Total(Root() / "note.txt").files, 1U);
    EXPECT_EQ(mTree.Total(Root() / "none").files, 0U);
}

TEST_F(DeviceTree, TotalsGoBeyondFourGibibytes) {
    fs::resize_file(mFolder.Write("root/huge", ""), 5000000000);
    EXPECT_EQ(mTree.Total(Root()).size, 5000000009U);
}

TEST_F(DeviceTree, TheRootItselfMayBeALink) {
    fs::create_symlink(mFolder.Path() / "root", mFolder.Path() / "alias");
    const FileTree tree(mFolder.Path() / "alias");
    EXPECT_EQ(tree.Locate("User/note.txt"), Root() / "note.txt");
}

TEST_F(DeviceTree, NeedsAFolder) {
    EXPECT_THROW(FileTree(mFolder.Path() / "none"), fs::filesystem_error);
    EXPECT_THROW(FileTree(mFolder.Path() / "root/note.txt"), fs::filesystem_error);
}

} // namespace
