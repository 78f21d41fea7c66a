#include "DownloadFixture.h"

#include <QtWidgets/QHeaderView>
#include <gmock/gmock.h>

#include <filesystem>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Names = std::vector<std::string>;

/// Walking a device's folders, and what may stand in their listings.
class DownloadTree : public DownloadFixture {};

// --- Order ---

TEST_F(DownloadTree, AFolderIsFetchedWholeBeforeWhatFollowsIt) {
    mDevice.AddFolder("f");
    mDevice.AddFile("f/1.wav", "one");
    mDevice.AddFolder("f/deep");
    mDevice.AddFile("f/deep/2.wav", "two");
    mDevice.AddFolder("f/deep/empty");
    mDevice.AddFile("f/3.wav", "three");
    mDevice.AddFile("z.wav", "last");
    Connect();
    Download({"z.wav", "f"});
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(DirRecurseCommand("f"), mDevice.DirCommand("f"),
                            mDevice.DownloadCommand("f/1.wav"), mDevice.DirCommand("f/deep"),
                            mDevice.DownloadCommand("f/deep/2.wav"), mDevice.DirCommand("f/deep/empty"),
                            mDevice.DownloadCommand("f/3.wav"), mDevice.DownloadCommand("z.wav"),
                            mDevice.DirCommand("")));
    EXPECT_THAT(LocalTree(),
                ElementsAre("f/", "f/1.wav", "f/3.wav", "f/deep/", "f/deep/2.wav", "f/deep/empty/", "z.wav"));
    EXPECT_EQ(mFolder.Read("f/deep/2.wav"), "two");
    EXPECT_EQ(mFolder.Read("z.wav"), "last");
    EXPECT_THAT(mAlerts, IsEmpty());
    EXPECT_FALSE(ProgressWindow().isVisible());
}

TEST_F(DownloadTree, TheSelectionIsFetchedFromTopToBottom) {
    for (const char* name : {"a.wav", "b.wav", "c.wav"}) {
        mDevice.AddFile(name);
    }
    Connect();
    Table().horizontalHeader()->setSortIndicator(0, Qt::DescendingOrder);
    ASSERT_THAT(RowNames(), ElementsAre("c.wav", "b.wav", "a.wav"));
    Download({"a.wav", "c.wav", "b.wav"});
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(mDevice.DownloadCommand("c.wav"), mDevice.DownloadCommand("b.wav"),
                            mDevice.DownloadCommand("a.wav"), mDevice.DirCommand("")));
}

TEST_F(DownloadTree, ADeviceBelow110IsNotAskedForSizes) {
    mDevice.mWelcome = R"(<welcome>Name = "Old" Version = "1.09" ID = "1"</welcome>)";
    mDevice.AddFolder("f");
    mDevice.AddFile("f/1.wav");
    Connect();
    Download({"f"});
    EXPECT_EQ(mDevice.CountOf("dir_recurse"), 0);
    EXPECT_THAT(LocalTree(), ElementsAre("f/", "f/1.wav"));
}

TEST_F(DownloadTree, PathsBeginInTheFolderShown) {
    mDevice.AddFolder("f");
    mDevice.AddFolder("f/g");
    mDevice.AddFile("f/g/1.wav", "one");
    Connect();
    DoubleClickRow("f");
    mDevice.ForgetCommands();
    Download({"g"});
    EXPECT_THAT(mDevice.Commands(),
                ElementsAre(DirRecurseCommand("f/g"), mDevice.DirCommand("f/g"),
                            mDevice.DownloadCommand("f/g/1.wav"), mDevice.DirCommand("f")));
    EXPECT_THAT(LocalTree(), ElementsAre("g/", "g/1.wav"));
    EXPECT_EQ(Directory(), "/f");
}

TEST_F(DownloadTree, AFolderIsMergedIntoAnExistingOneWithoutAPrompt) {
    mFolder.Write("f/mine.wav", "mine");
    mDevice.AddFolder("f");
    mDevice.AddFile("f/theirs.wav", "theirs");
    Connect();
    Download({"f"});
    EXPECT_EQ(mFolder.Read("f/mine.wav"), "mine");
    EXPECT_EQ(mFolder.Read("f/theirs.wav"), "theirs");
}

TEST_F(DownloadTree, AFileInPlaceOfAFolderFailsWithWhatWouldGoInside) {
    mFolder.Write("f", "a file");
    mDevice.AddFolder("f");
    mDevice.AddFile("f/1.wav");
    Connect();
    Download({"f"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "1.wav - Could not open file"}));
    EXPECT_EQ(mFolder.Read("f"), "a file");
}

TEST_F(DownloadTree, ADestinationMayHaveAnyName) {
    for (const char* name : {"Größe", "100%s", "odd\\", "a b"}) {
        const std::string destination = mFolder / name;
        std::filesystem::create_directory(destination);
        mPanel.mAnswer = {destination};
        mDevice.Remove("1.wav");
        mDevice.AddFile("1.wav", name);
        if (!mController.IsConnected()) {
            Connect();
        }
        Download({"1.wav"});
        EXPECT_EQ(mFolder.Read(std::string(name) + "/1.wav"), name);
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

// --- The table afterwards ---

TEST_F(DownloadTree, RowsComeFromTheListingFetchedAtTheEnd) {
    mDevice.AddFile("a.wav", "first");
    mDevice.AddFile("old.wav", "old");
    Connect();
    mDevice.mOnCommand = [this](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand == mDevice.DownloadCommand("a.wav")) {
            mDevice.Remove("old.wav");
            mDevice.AddFile("0.wav", "fresh");
        }
        return std::nullopt;
    };
    Download({"a.wav"});
    EXPECT_THAT(RowNames(), ElementsAre("a.wav", "0.wav"));
    EXPECT_THAT(SelectedNames(), IsEmpty());
    EXPECT_FALSE(IsEnabled("Download"));
    Download({"0.wav"});
    EXPECT_EQ(mFolder.Read("0.wav"), "fresh");
}

// --- Lengths ---

TEST_F(DownloadTree, EveryCutOfTheAnswerGivesTheSameFile) {
    using namespace std::string_literals;
    const std::string content = "0123456789\0\xff<dir></dir>"s;
    mDevice.AddFile("a.wav", content);
    mDevice.AddFile("b.wav", "second");
    Connect();
    for (int size = 1; size <= 6; ++size) {
        mDevice.mPieceSize = size;
        Download({"a.wav", "b.wav"});
        EXPECT_EQ(mFolder.Read("a.wav"), content) << size;
        EXPECT_EQ(mFolder.Read("b.wav"), "second") << size;
        for (const char* name : {"a.wav", "b.wav"}) {
            std::filesystem::remove(mFolder / name);
        }
    }
}

TEST_F(DownloadTree, AFileOfLengthZeroMakesNoFile) {
    mDevice.AddFile("a.wav", "", "cd-", 5);
    mDevice.AddFile("b.wav", "second");
    Connect();
    EXPECT_THAT(SkippedBy({"a.wav", "b.wav"}), ElementsAre("Skipped 'a.wav': the device sent nothing"));
    EXPECT_THAT(LocalTree(), ElementsAre("b.wav"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadTree, AFileOfLengthZeroLeavesTheOldOne) {
    mFolder.Write("a.wav", "old");
    mDevice.AddFile("a.wav", "", "cd-", 5);
    Connect();
    Meanwhile meanwhile;
    meanwhile.Answer("Copy File", "Yes");
    EXPECT_THAT(SkippedBy({"a.wav"}), ElementsAre("Skipped 'a.wav': the device sent nothing"));
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav"));
    EXPECT_EQ(mFolder.Read("a.wav"), "old");
}

TEST_F(DownloadTree, WhatFollowsALengthOfZeroIsDropped) {
    mDevice.AddFile("a.wav", "content");
    mDevice.AddFile("b.wav", "second");
    AnswerTo(mDevice.DownloadCommand("a.wav"), ScriptedDevice::LengthPrefix(0) + "nobody wants this");
    Connect();
    Download({"a.wav", "b.wav"});
    EXPECT_THAT(LocalTree(), ElementsAre("b.wav"));
    EXPECT_EQ(mFolder.Read("b.wav"), "second");
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadTree, AListingOfHalfAMegabyteIsRead) {
    constexpr std::size_t kDate = 99900;
    Names items;
    Names expected = {"f/"};
    for (int number = 1; number <= 5; ++number) {
        const std::string name = std::to_string(number) + ".wav";
        items.push_back(R"(Name = ")" + name + R"(" Type = "File" Date = ")" + std::string(kDate, '7') +
                        R"(" Size = "5" Rights = "cd-")");
        AnswerTo(mDevice.DownloadCommand("f/" + name), mDevice.LengthPrefix(5) + name);
        expected.push_back("f/" + name);
    }
    AnswerListing("f", items);
    mDevice.AddFolder("f");
    Connect();
    for (const int size : {0, 4095, 65536}) {
        mDevice.mPieceSize = size;
        std::filesystem::remove_all(mFolder / "f");
        Download({"f"});
        EXPECT_EQ(LocalTree(), expected) << size;
    }
    EXPECT_THAT(mAlerts, IsEmpty());
}

// --- Names ---

TEST_F(DownloadTree, NamesThatAreNoFileNamesArePassedOverWithALineEach) {
    using namespace std::string_literals;
    mDevice.AddFolder("f");
    AnswerListing("f", {Item("", "File", 5), Item(".", "File", 5), Item("..", "Dir", 5),
                        Item("../out.wav", "File", 5), Item("/tmp/out.wav", "File", 5), Item("a/b", "Dir", 5),
                        Item("a\0b"s, "File", 5), Item("good.wav", "File", 4)});
    AnswerTo(mDevice.DownloadCommand("f/good.wav"), mDevice.LengthPrefix(4) + "good");
    Connect();
    EXPECT_THAT(SkippedBy({"f"}),
                ElementsAre("Skipped '': not a file name", "Skipped '.': not a file name",
                            "Skipped '..': not a file name", "Skipped '../out.wav': not a file name",
                            "Skipped '/tmp/out.wav': not a file name", "Skipped 'a/b': not a file name",
                            "Skipped 'a?b': not a file name"));
    EXPECT_THAT(LocalTree(), ElementsAre("f/", "f/good.wav"));
    EXPECT_EQ(mDevice.CountOf("download"), 1);
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadTree, ALineAboutALongOrUnprintableNameIsOneLine) {
    mDevice.AddFolder("f");
    AnswerListing("f", {Item("a/\n\x1b" + std::string(3000, 'x'), "File", 5), Item("..", "File", 5)});
    Connect();
    const Names lines = SkippedBy({"f"});
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_TRUE(lines[0].starts_with("Skipped 'a/??xxx")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with(": not a file name")) << lines[0];
    EXPECT_EQ(lines[1], "Skipped '..': not a file name");
}

TEST_F(DownloadTree, ABackslashLeadsNowhere) {
    // On the device "\" may part folders; here it is a letter, also at the end of a name.
    const std::string inside = mFolder / "inside";
    std::filesystem::create_directory(inside);
    mPanel.mAnswer = {inside};
    for (const char* name : {R"(..\)", R"(\)", R"(..\..\a)"}) {
        mDevice.AddFolder(name);
        AnswerListing(name, {Item("out.wav", "File", 3)});
    }
    mDevice.mOnCommand = [answer = mDevice.mOnCommand](const std::string& zCommand) {
        const bool fetches = zCommand.starts_with("<cmd download>");
        return fetches ? ScriptedDevice::LengthPrefix(3) + "out" : answer(zCommand);
    };
    Connect();
    Download({R"(..\)", R"(\)", R"(..\..\a)"});
    EXPECT_THAT(LocalTree(),
                ElementsAre("inside/", R"(inside/..\..\a/)", R"(inside/..\..\a/out.wav)", R"(inside/..\/)",
                            R"(inside/..\/out.wav)", R"(inside/\/)", R"(inside/\/out.wav)"));
    EXPECT_THAT(mAlerts, IsEmpty());
}

TEST_F(DownloadTree, AFileOfATooLongPathIsNotAskedFor) {
    const std::string name = std::string(250, 'n') + ".wav";
    mDevice.AddFile("a.wav", "first");
    mDevice.AddFile(name);
    mFolder.Write(name, "old");
    Connect();
    Download({"a.wav", name});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, name + " - Path too long"}));
    EXPECT_EQ(mDevice.CountOf("download"), 1);
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav", name)) << "what came before stays";
    EXPECT_EQ(mFolder.Read(name), "old");
}

TEST_F(DownloadTree, FoldersThatHoldThemselvesEndByTheLengthOfTheirPath) {
    mDevice.AddFolder("loop");
    mDevice.mOnCommand = [](const std::string& zCommand) -> std::optional<std::string> {
        if (zCommand.find("loop") == std::string::npos || !zCommand.starts_with("<cmd dir>")) {
            return std::nullopt;
        }
        return "<dir> Rights = \"cd-\" <item " + Item("loop", "Dir", 1) + "></dir>";
    };
    Connect();
    Download({"loop"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "loop - Path too long"}));
    // 255 bytes hold the command's own 24, "User", and then "/loop" as often as it fits.
    EXPECT_EQ(LocalTree().size(), 45U);
    EXPECT_EQ(mDevice.CountOf("<cmd dir>"), 45 + 1);
    EXPECT_THAT(RowNames(), ElementsAre("loop"));
}

TEST_F(DownloadTree, FullListingsInOneAnotherDoNotFillTheMemory) {
    mDevice.AddFolder("f");
    std::string entries = "<" + Item("f", "Dir", 1) + ">";
    while (entries.size() < 510'000) {
        entries += "<>";
    }
    mDevice.mOnCommand = [&entries](const std::string& zCommand) -> std::optional<std::string> {
        const bool isInside = zCommand.starts_with("<cmd dir>") && zCommand.find("/f") != std::string::npos;
        return isInside ? std::optional("<dir> Rights = \"cd-\" " + entries + "</dir>") : std::nullopt;
    };
    Connect();
    Download({"f"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "f - Too many files"}));
    EXPECT_LE(mDevice.CountOf("<cmd dir>"), 6);
    EXPECT_THAT(RowNames(), ElementsAre("f"));
}

TEST_F(DownloadTree, ALinkInTheDestinationIsNotFollowed) {
    mFolder.Write("elsewhere/kept.txt", "mine");
    std::filesystem::create_directory(mFolder / "chosen");
    std::filesystem::create_directory_symlink(mFolder / "elsewhere", mFolder / "chosen/f");
    mDevice.AddFolder("f");
    mDevice.AddFile("f/new.wav");
    Connect();
    mPanel.mAnswer = {mFolder / "chosen"};
    Download({"f"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "f - Could not open file"}));
    EXPECT_FALSE(std::filesystem::exists(mFolder / "elsewhere/new.wav"));
    EXPECT_TRUE(std::filesystem::is_symlink(mFolder / "chosen/f"));
    EXPECT_EQ(mDevice.CountOf("download"), 0);
}

TEST_F(DownloadTree, TheWindowLivesWhileEntriesAreSkipped) {
    mDevice.AddFolder("f");
    std::string entries;
    for (int number = 0; number < 250'000; ++number) {
        entries += "<>";
    }
    AnswerTo(ScriptedDevice::DirCommand("f"), "<dir> Rights = \"cd-\" " + entries + "</dir>");
    Connect();
    int turns = 0;
    QTimer turn;
    QObject::connect(&turn, &QTimer::timeout, &turn, [&turns] { ++turns; });
    turn.start(0);
    EXPECT_GT(SkippedBy({"f"}).size(), 200'000U);
    EXPECT_GT(turns, 2);
}

// --- What cannot be fetched ---

TEST_F(DownloadTree, NothingIsFetchedWhereAFolderHasTheName) {
    mDevice.AddFile("a.wav");
    std::filesystem::create_directory(mFolder / "a.wav");
    Connect();
    Download({"a.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "a.wav - Could not open file"}));
    EXPECT_EQ(mDevice.CountOf("download"), 0);
    EXPECT_THAT(LocalTree(), ElementsAre("a.wav/"));
}

TEST_F(DownloadTree, NothingIsFetchedThatCannotBeStored) {
    mDevice.AddFile("a.wav");
    mDevice.AddFile("b.wav", "second");
    std::filesystem::create_directory(mFolder / "a.wav.tmp");
    Connect();
    Download({"b.wav", "a.wav"});
    EXPECT_THAT(mAlerts, ElementsAre(sAlert{kFailed, "a.wav - Could not open file"}));
    EXPECT_EQ(mDevice.CountOf("download"), 0) << "rows go from top to bottom, and nothing after a failure";
    EXPECT_TRUE(mController.IsConnected());
    ExpectUsable();
}

TEST_F(DownloadTree, WhileTheDeviceOwesAnAnswerNothingStarts) {
    mDevice.AddFolder("f");
    mDevice.AddFile("a.wav");
    AnswerTo(DirRecurseCommand("f"), "");
    Connect();
    {
        Meanwhile meanwhile;
        meanwhile.Answer(kReading, "Cancel");
        Download({"f"});
    }
    ASSERT_EQ(Status(), "Waiting for operation to finish");
    mDevice.ForgetCommands();
    for (const char* name : {"f", "a.wav"}) {
        mAlerts.clear();
        EXPECT_THAT(SkippedBy({name}), IsEmpty());
        EXPECT_THAT(mAlerts, ElementsAre(sAlert{"Download failed", "Waiting for operation to finish"}));
    }
    EXPECT_THAT(mDevice.Commands(), IsEmpty());
    EXPECT_THAT(RowNames(), ElementsAre("f", "a.wav"));
    EXPECT_THAT(LocalTree(), IsEmpty());
    EXPECT_EQ(Directory(), "/");
    mDevice.Send(R"(<dir_recurse>Size = "1" NumFiles = "1"</dir_recurse>)");
    ExpectUsable();
}

} // namespace
