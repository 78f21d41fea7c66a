#include "AsyncSocketPackets.h"

#include <gtest/gtest.h>

#include <string>

namespace {

/// A terminator read that has come as far as zDone.
AsyncReadPacket TerminatorRead(const std::string& zDone, const std::string& zTerminator,
                               qsizetype zMaxLength = -1) {
    AsyncReadPacket packet =
        AsyncReadPacket::ToTerminator(QByteArray::fromStdString(zTerminator), 1.5, zMaxLength, 9);
    packet.mBuffer = QByteArray::fromStdString(zDone);
    packet.mBytesDone = packet.mBuffer.size();
    packet.mBuffer.append("\r\n\r\nrubbish of an earlier step");
    return packet;
}

TEST(AsyncReadPacketTest, KnowsItsKind) {
    const AsyncReadPacket all = AsyncReadPacket::AllAvailable(-1.0, 3);
    EXPECT_TRUE(all.mReadAllAvailable);
    EXPECT_FALSE(all.IsLengthRead());
    EXPECT_FALSE(all.IsTerminatorRead());
    EXPECT_EQ(all.mTag, 3);

    const AsyncReadPacket length = AsyncReadPacket::ToLength(70, 2.0, 4);
    EXPECT_TRUE(length.IsLengthRead());
    EXPECT_EQ(length.FreeLength(), 70);
    EXPECT_EQ(length.mTimeout, 2.0);
    EXPECT_EQ(length.mTag, 4);

    const AsyncReadPacket terminator = AsyncReadPacket::ToTerminator("\n", 1.5, 10, 5);
    EXPECT_TRUE(terminator.IsTerminatorRead());
    EXPECT_FALSE(terminator.IsLengthRead());
    EXPECT_EQ(terminator.mMaxLength, 10);
}

TEST(AsyncReadPacketTest, GrowsToAnExactFreeLength) {
    AsyncReadPacket packet = AsyncReadPacket::AllAvailable(-1.0, 0);
    packet.SetFreeLength(256);
    EXPECT_EQ(packet.FreeLength(), 256);
    packet.mBytesDone = 100;
    packet.SetFreeLength(256);
    EXPECT_EQ(packet.mBuffer.size(), 356);
}

TEST(AsyncReadPacketTest, ReadsAheadBy256BytesWithinItsLimit) {
    EXPECT_EQ(TerminatorRead("", "\n").PreBufferLength(), 256);
    EXPECT_EQ(TerminatorRead("abc", "\n").PreBufferLength(), 256);
    EXPECT_EQ(TerminatorRead("abc", "\n", 1000).PreBufferLength(), 256);
    EXPECT_EQ(TerminatorRead("abc", "\n", 100).PreBufferLength(), 97);
}

struct SafeLengthCase {
    const char* done;
    const char* terminator;
    qsizetype maxLength;
    qsizetype expected;
};

void PrintTo(const SafeLengthCase& c, std::ostream* stream) {
    *stream << "at most " << c.maxLength << ", safe " << c.expected;
}

class SafeLengthTest : public ::testing::TestWithParam<SafeLengthCase> {};

TEST_P(SafeLengthTest, CannotRunPastTheTerminator) {
    const SafeLengthCase& c = GetParam();
    EXPECT_EQ(TerminatorRead(c.done, c.terminator, c.maxLength).SafeLength(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, SafeLengthTest,
    ::testing::Values(SafeLengthCase{"", "\n", -1, 1}, SafeLengthCase{"abc", "\n", -1, 1},
                      SafeLengthCase{"", "\r\n", -1, 2}, SafeLengthCase{"abc", "\r\n", -1, 2},
                      SafeLengthCase{"abc\r", "\r\n", -1, 1}, SafeLengthCase{"x\r\n\r", "\r\n\r\n", -1, 1},
                      SafeLengthCase{"x\r\n", "\r\n\r\n", -1, 2}, SafeLengthCase{"x\r\nx", "\r\n\r\n", -1, 4},
                      SafeLengthCase{"aab", "aabaaa", -1, 3}, SafeLengthCase{"aabaa", "aabaaa", -1, 1},
                      SafeLengthCase{"aa", "aaaa", -1, 2}, SafeLengthCase{"abc", "wxyz", 5, 2},
                      SafeLengthCase{"abc", "wxyz", 100, 4}));

struct SearchCase {
    const char* done;
    qsizetype newCount;
    const char* terminator;
    bool endsWith;
    qsizetype past;
};

void PrintTo(const SearchCase& c, std::ostream* stream) {
    *stream << "new " << c.newCount << ", past " << c.past;
}

class TerminatorSearchTest : public ::testing::TestWithParam<SearchCase> {};

TEST_P(TerminatorSearchTest, FindsTheTerminator) {
    const AsyncReadPacket packet = TerminatorRead(GetParam().done, GetParam().terminator);
    EXPECT_EQ(packet.EndsWithTerminator(), GetParam().endsWith);
    EXPECT_EQ(packet.CountPastTerminator(GetParam().newCount), GetParam().past);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TerminatorSearchTest,
    ::testing::Values(SearchCase{"", 0, "\n", false, -1}, SearchCase{"abc", 3, "\n", false, -1},
                      SearchCase{"abc\n", 1, "\n", true, 0}, SearchCase{"abc\nde", 3, "\n", false, 2},
                      SearchCase{"abc\nde\n", 7, "\n", true, 3}, SearchCase{"abc\r\nd", 2, "\r\n", false, 1},
                      SearchCase{"ab\r\n", 1, "\r\n", true, 0}, SearchCase{"ab\r", 3, "\r\n", false, -1}));

TEST(AsyncReadPacketTest, HasReachedItsLimit) {
    EXPECT_FALSE(TerminatorRead("abcd", "\n").HasReachedMaxLength());
    EXPECT_FALSE(TerminatorRead("abcd", "\n", 5).HasReachedMaxLength());
    EXPECT_TRUE(TerminatorRead("abcde", "\n", 5).HasReachedMaxLength());
}

TEST(AsyncReadPacketDeathTest, SearchesOnlyForATerminator) {
    const AsyncReadPacket packet = AsyncReadPacket::AllAvailable(-1.0, 0);
    const char* kReport =
        "Mac/AsyncSocket:[0-9]+: failed assertion `Searching for term in data when there is no "
        "term.'";
    EXPECT_DEATH(packet.SafeLength(), kReport);
    EXPECT_DEATH(packet.EndsWithTerminator(), kReport);
    EXPECT_DEATH(packet.CountPastTerminator(0), kReport);
}

TEST(AsyncWritePacketTest, SharesItsBytes) {
    const QByteArray data("0123456789");
    AsyncWritePacket packet{data, 0, -1.0, 7};
    EXPECT_EQ(static_cast<const void*>(packet.LeftPart()), data.constData());
    packet.mBytesDone = 4;
    EXPECT_EQ(packet.LeftLength(), 6);
    EXPECT_EQ(*packet.LeftPart(), '4');
}

} // namespace
