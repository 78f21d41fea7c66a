#include "ReceiveAdmission.h"
#include "Hermetic.h"
#include "RecordingClient.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* kMoreThanAnnounced = "Device sent more data than announced";

class Admission : public testing::Test {
protected:
    void Receive(std::string_view bytes) { mAdmission.Receive(bytes.data(), static_cast<int>(bytes.size())); }

    void ReceiveInPieces(std::string_view bytes, std::size_t piece) {
        FeedInPieces(bytes, piece, [this](std::string_view part) { Receive(part); });
    }

    void StartDownload() {
        mFolder.Write("a.wav", "old");
        ASSERT_EQ(mClient.Download(mFolder / "a.wav", "", "a.wav"), "");
        ASSERT_EQ(mClient.GetState(), FTS_DOWNLOADING);
    }

    /// The download's file is as expected and no temporary is left.
    void ExpectFile(const std::string& content) const {
        EXPECT_EQ(mFolder.Read("a.wav"), content);
        EXPECT_FALSE(fs::exists(mFolder / "a.wav.tmp"));
    }

    void ExpectSurplusRefused() {
        EXPECT_EQ(mClient.GetState(), FTS_ERROR);
        EXPECT_EQ(mClient.GetErrorStr(), kMoreThanAnnounced);
        ExpectFile("old");
    }

    TestFolder mFolder;
    RecordingClient mClient;
    cReceiveAdmission mAdmission{mClient};
    cDeviceDirList mList;
};

TEST_F(Admission, NothingIsNothing) {
    StartDownload();
    mAdmission.Receive("x", 0);
    mAdmission.Receive("x", -1);
    mAdmission.Receive(nullptr, 0);
    EXPECT_TRUE(mClient.IsAwaitingLength());
}

TEST_F(Admission, RepliesPassHoweverTheyAreCut) {
    const std::string welcome = R"(<welcome>Name = "R" Version = "1.10" ID = "1"</welcome>)";
    const std::string dir = R"(<dir>Rights = "c--" <f Name = "a" Type = "Dir"></dir>)";
    const std::string tree = R"(<dir_recurse>Size = "5" NumFiles = "6"</dir_recurse>)";
    for (std::size_t piece = 1; piece <= welcome.size(); ++piece) {
        mClient.Connect();
        ReceiveInPieces(welcome, piece);
        ASSERT_EQ(mClient.GetState(), FTS_IDLE) << piece;
        EXPECT_EQ(mClient.GetVersion(), 110);
        mClient.GetDir("p", &mList);
        ReceiveInPieces(dir, piece);
        ASSERT_EQ(mClient.GetState(), FTS_IDLE) << piece;
        EXPECT_EQ(Describe(mList), "a|a|dir|0|0\n");
        ASSERT_TRUE(mClient.GetDirRecurse("p"));
        ReceiveInPieces(tree, piece);
        ASSERT_EQ(mClient.GetState(), FTS_IDLE) << piece;
        EXPECT_EQ(mClient.GetDirRecurseNumFiles(), 6);
    }
}

/// A "dir" reply of about zLength bytes and how many entries it has.
std::pair<std::string, std::size_t> LongListing(std::size_t zLength) {
    std::string reply = "<dir>Rights = \"cd-\"\n";
    std::size_t count = 0;
    while (reply.size() < zLength - 100) {
        reply += "<f Name = \"file" + std::to_string(count++) + ".wav\" Type = \"File\" Size = \"1\">\n";
    }
    return {reply + "</dir>", count};
}

TEST_F(Admission, LongListingPassesHoweverItIsCut) {
    const auto [reply, count] = LongListing(500000);
    ASSERT_GT(reply.size(), 499800U);
    for (const std::size_t piece : {1U, 1000U, 4096U, 4097U, 65536U, 499999U, 500000U}) {
        mClient.GetDir("", &mList);
        ReceiveInPieces(reply, piece);
        ASSERT_EQ(mClient.GetState(), FTS_IDLE) << piece;
        ASSERT_EQ(mList.mFile.size(), count) << piece;
        EXPECT_EQ(mList.mFile.back().mName, "file" + std::to_string(count - 1) + ".wav");
    }
}

TEST_F(Admission, EndlessTextIsRefused) {
    const std::string text(1000000, 'x');
    for (const std::size_t piece : {100U, 4096U, 1000000U}) {
        mClient.GetDir("", &mList);
        ReceiveInPieces(text, piece);
        EXPECT_EQ(mClient.GetState(), FTS_ERROR);
        EXPECT_EQ(mClient.GetErrorStr(), "Receive buffer overflow");
        mClient.Reset();
    }
    Receive(text);
    EXPECT_EQ(mClient.GetState(), FTS_ERROR) << "also when nothing was asked";
}

TEST_F(Admission, DownloadPassesHoweverItIsCut) {
    const std::string body = "0123456789";
    const std::string stream = LengthPrefix(10) + body;
    for (std::size_t cut = 1; cut < stream.size(); ++cut) {
        StartDownload();
        Receive(std::string_view(stream).substr(0, cut));
        EXPECT_EQ(mClient.GetState(), FTS_DOWNLOADING);
        EXPECT_EQ(mFolder.Read("a.wav"), "old");
        Receive(std::string_view(stream).substr(cut));
        EXPECT_EQ(mClient.GetState(), FTS_IDLE);
        ExpectFile(body);
    }
    for (std::size_t piece = 1; piece <= stream.size(); ++piece) {
        StartDownload();
        ReceiveInPieces(stream, piece);
        EXPECT_EQ(mClient.GetState(), FTS_IDLE);
        ExpectFile(body);
    }
}

TEST_F(Admission, LargeBodyPassesAsItComes) {
    const std::string body(3000000, 'b');
    StartDownload();
    Receive(LengthPrefix(3000000));
    ReceiveInPieces(body, 262144);
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_TRUE(mFolder.Read("a.wav") == body);
}

TEST_F(Admission, MoreThanAnnouncedKeepsTheOldFile) {
    const std::string stream = LengthPrefix(3) + "abcd";
    for (std::size_t cut = 0; cut < stream.size() - 1; ++cut) {
        StartDownload();
        Receive(std::string_view(stream).substr(0, cut));
        Receive(std::string_view(stream).substr(cut));
        ExpectSurplusRefused();
        mClient.Reset();
    }
}

TEST_F(Admission, FloodAfterTheFailureDoesNotHideIt) {
    StartDownload();
    Receive(LengthPrefix(3) + "abcd");
    ReceiveInPieces(std::string(1000000, 'x'), 10000);
    ExpectSurplusRefused();
}

TEST_F(Admission, FloodAfterTooLargeALengthDoesNotHideIt) {
    StartDownload();
    Receive(LengthPrefix(1073741825) + "body");
    ReceiveInPieces(std::string(1000000, 'x'), 10000);
    EXPECT_EQ(mClient.GetState(), FTS_ERROR);
    EXPECT_EQ(mClient.GetErrorStr(), (mFolder / "a.wav") + " too large to download");
    ExpectFile("old");
}

TEST_F(Admission, WhatFollowsLengthZeroIsDropped) {
    const std::string stream = LengthPrefix(0) + std::string(1000000, 'x');
    for (const std::size_t piece : {1U, 2U, 3U, 4U, 5U, 1000U, 1000004U}) {
        StartDownload();
        ReceiveInPieces(stream, piece);
        EXPECT_EQ(mClient.GetState(), FTS_IDLE) << piece;
        EXPECT_EQ(mClient.GetErrorStr(), "");
        ExpectFile("old");
    }
}

TEST_F(Admission, NextOperationIsHeardAgain) {
    StartDownload();
    Receive(LengthPrefix(0) + "surplus");
    mClient.GetDir("", &mList);
    Receive("<dir> <f Name=\"a\"></dir>");
    EXPECT_EQ(mList.mFile.size(), 1U);

    StartDownload();
    Receive(LengthPrefix(0) + "surplus");
    StartDownload();
    ReceiveInPieces(LengthPrefix(3) + "abc", 1);
    ExpectFile("abc");

    mClient.Connect();
    Receive("<welcome>Name = \"again\"</welcome>");
    EXPECT_EQ(mClient.GetDeviceName(), "again");
}

TEST_F(Admission, NewConnectionForgetsAHalfLength) {
    StartDownload();
    Receive(LengthPrefix(7).substr(0, 2));
    mClient.Reset();
    mAdmission.Clear();
    StartDownload();
    Receive(LengthPrefix(3) + "abc");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    ExpectFile("abc");
}

TEST_F(Admission, NewConnectionIsHeardAtOnce) {
    StartDownload();
    Receive(LengthPrefix(0));
    mAdmission.Clear();
    Receive(std::string(1000000, 'x'));
    EXPECT_EQ(mClient.GetErrorStr(), "Receive buffer overflow");
}

TEST_F(Admission, ListingNobodyWantsEndsLikeAnyOther) {
    mClient.GetDir("Music", &mList);
    Receive("<dir> <f Name=");
    mClient.SetDirList(nullptr);
    Receive("\"a\"></dir>");
    EXPECT_EQ(mClient.GetState(), FTS_IDLE);
    EXPECT_TRUE(mList.mFile.empty());
    EXPECT_EQ(mList.mDir, "");
}

} // namespace
