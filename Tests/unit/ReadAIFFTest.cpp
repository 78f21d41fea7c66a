#include "ReadAIFF.h"

#include "AiffBytes.h"
#include "AiffFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <sstream>
#include <vector>

namespace {

const std::string kFile = AiffBytes({2, 3, 16, 44100}, "aAbBcCdDeEfF");

std::string Info(const AiffFormat& format) {
    // Without its samples, which the header's checks do not miss.
    const std::string file =
        AiffChunkOfSize("FORM", 0xFFFFFFFFU, "AIFF" + CommonChunk(format) + SoundChunk(""));
    std::ostringstream out;
    OpenAiff(file).reader.PrintInfo(out);
    return out.str();
}

std::string Duration(std::uint32_t frames, double rate) {
    const std::string info = Info({1, frames, 8, rate});
    const std::string label = "     duration: ";
    const std::size_t start = info.find(label) + label.size();
    return info.substr(start, info.find('\n', start) - start);
}

TEST(ReadAIFF, IsClosedAtFirst) {
    const cReadAIFF reader;
    EXPECT_FALSE(reader.IsOpen());
}

TEST(ReadAIFF, OpensAFileWithItsConstructorOrLater) {
    const TestFolder folder;
    const std::string path = folder.Write("a.aif", kFile);
    const cReadAIFF built(path.c_str());
    EXPECT_TRUE(built.IsOpen());
    cReadAIFF reader;
    EXPECT_TRUE(reader.Open(path.c_str()));
    EXPECT_TRUE(reader.IsOpen());
}

TEST(ReadAIFF, TellsWhatTheHeaderSays) {
    const OpenAiff file(AiffBytes({3, 2, 20, 11025.5}, std::string(12, 'x')));
    EXPECT_EQ(file.reader.GetChannels(), 3);
    EXPECT_EQ(file.reader.GetFrames(), 2U);
    EXPECT_EQ(file.reader.GetFramesToGo(), 2U);
    EXPECT_EQ(file.reader.GetBits(), 20);
    EXPECT_EQ(file.reader.GetSampleRate(), 11025.5);
}

TEST(ReadAIFF, RefusesToOpenNothing) {
    const TestFolder folder;
    cReadAIFF reader;
    EXPECT_FALSE(reader.Open(nullptr));
    EXPECT_FALSE(reader.Open(""));
    EXPECT_FALSE(reader.Open((folder / "missing").c_str()));
    EXPECT_FALSE(reader.IsOpen());
    EXPECT_FALSE(cReadAIFF(nullptr).IsOpen());
}

TEST(ReadAIFF, OpensAfterItFailedTo) {
    const TestFolder folder;
    cReadAIFF reader;
    EXPECT_FALSE(reader.Open((folder / "missing").c_str()));
    EXPECT_TRUE(reader.Open(folder.Write("a.aif", kFile).c_str()));
    EXPECT_EQ(reader.GetFrames(), 3U);
}

TEST(ReadAIFF, KeepsItsFileWhenAnotherIsOpened) {
    const TestFolder folder;
    OpenAiff file(kFile);
    EXPECT_FALSE(file.reader.Open(folder.Write("b.aif", AiffBytes({1, 1, 8, 8000}, "x")).c_str()));
    EXPECT_EQ(file.reader.GetFrames(), 3U);
    std::int16_t samples[2] = {};
    file.reader.Read(samples, 1);
    EXPECT_EQ(samples[0], 'a' << 8 | 'A');
}

TEST(ReadAIFF, OpensAnotherFileAfterClosing) {
    const TestFolder folder;
    OpenAiff file(kFile);
    std::int16_t samples[6] = {};
    file.reader.Read(samples, 3);
    file.reader.Close();
    EXPECT_FALSE(file.reader.IsOpen());
    ASSERT_TRUE(file.reader.Open(folder.Write("b.aif", AiffBytes({1, 1, 8, 8000}, "x")).c_str()));
    EXPECT_EQ(file.reader.GetFramesToGo(), 1U);
    EXPECT_EQ(file.reader.GetBits(), 8);
    file.reader.Read(samples, 1);
    EXPECT_EQ(samples[0], 'x');
}

TEST(ReadAIFF, StaysOpenWhenTheHeaderIsBad) {
    const TestFolder folder;
    cReadAIFF reader;
    EXPECT_THROW(reader.Open(folder.Write("a.aif", "FORM").c_str()), const char*);
    EXPECT_TRUE(reader.IsOpen());
    EXPECT_EQ(reader.GetFrames(), 0U);
    EXPECT_FALSE(reader.Open(folder.Write("b.aif", kFile).c_str()));
    reader.Close();
    EXPECT_TRUE(reader.Open((folder / "b.aif").c_str()));
}

TEST(ReadAIFF, ForgetsTheFormerFileWhenAHeaderIsBad) {
    const TestFolder folder;
    OpenAiff file(kFile);
    file.reader.Close();
    EXPECT_THROW(file.reader.Open(folder.Write("b.aif", "FORM").c_str()), const char*);
    EXPECT_EQ(file.reader.GetFrames(), 0U);
    EXPECT_EQ(file.reader.GetFramesToGo(), 0U);
    EXPECT_EQ(file.reader.GetChannels(), 0);
}

TEST(ReadAIFF, SaysWhyItRefusesWhileClosed) {
    struct Case {
        void (*work)(cReadAIFF&);
        const char* message;
    };

    const Case cases[] = {
        {[](cReadAIFF& reader) { reader.Close(); }, "cReadAIFF: File already closed or never opened!"},
        {[](cReadAIFF& reader) { reader.GetFrames(); }, "cReadAIFF: No number of frames, file closed!"},
        {[](cReadAIFF& reader) { reader.GetFramesToGo(); },
         "cReadAIFF: No number of frames to go, file closed!"},
        {[](cReadAIFF& reader) { reader.GetBits(); }, "cReadAIFF: No number of bits, file closed!"},
        {[](cReadAIFF& reader) { reader.GetChannels(); }, "cReadAIFF: No number of channels, file closed!"},
        {[](cReadAIFF& reader) { reader.GetSampleRate(); }, "cReadAIFF: No samplerate, file closed!"},
        {[](cReadAIFF& reader) { reader.Rewind(); }, "cReadAIFF: Cannot rewind a closed file!"},
        {[](cReadAIFF& reader) {
             std::ostringstream out;
             reader.PrintInfo(out);
         },
         "cReadAIFF: No file currently open!"}};
    OpenAiff closed(kFile);
    closed.reader.Close();
    for (const Case& test : cases) {
        cReadAIFF fresh;
        EXPECT_EQ(ThrownText([&] { test.work(fresh); }), test.message);
        EXPECT_EQ(ThrownText([&] { test.work(closed.reader); }), test.message);
    }
}

TEST(ReadAIFF, RewindsToTheFirstFrame) {
    OpenAiff file(AiffForm(CommonChunk({1, 3, 8, 8000}) + SoundChunk("abc", 5)));
    std::int8_t samples[3] = {};
    file.reader.Read(samples, 2);
    EXPECT_EQ(file.reader.GetFramesToGo(), 1U);
    file.reader.Rewind();
    EXPECT_EQ(file.reader.GetFramesToGo(), 3U);
    file.reader.Read(samples, 3);
    EXPECT_EQ(std::string(samples, samples + 3), "abc");
    file.reader.Rewind();
    file.reader.Read(samples, 1);
    EXPECT_EQ(samples[0], 'a');
}

TEST(ReadAIFF, DoesNotRewindAStreamThatFailed) {
    OpenAiff file(AiffChunkOfSize("FORM", 50, "AIFF" + CommonChunk({1, 3, 8, 8000}) + SoundChunk("ab")));
    std::int8_t samples[3] = {};
    EXPECT_THROW(file.reader.Read(samples, 3), const char*);
    EXPECT_EQ(ThrownText([&] { file.reader.Rewind(); }), "cReadAIFF: Failed to rewind!");
    EXPECT_EQ(file.reader.GetFramesToGo(), 1U);
}

TEST(ReadAIFF, PrintsWhatTheHeaderSays) {
    std::ostringstream out;
    EXPECT_EQ(&OpenAiff(kFile).reader.PrintInfo(out), &out);
    EXPECT_EQ(Info({2, 44100, 24, 44100}), "-----------------------------------------\n"
                                           "     channels: 2\n"
                                           "       frames: 44100\n"
                                           " bits/channel: 24\n"
                                           "    framerate: 44100/second\n"
                                           "  bytes/frame: 6\n"
                                           "     filesize: >264646 bytes\n"
                                           "     duration: 1 seconds\n"
                                           "-----------------------------------------\n");
}

TEST(ReadAIFF, PrintsSizesBeyond32Bits) {
    const std::string info = Info({1000, 0xFFFFFFFFU, 56, 1000000});
    EXPECT_NE(info.find("  bytes/frame: 7000\n"), std::string::npos) << info;
    EXPECT_NE(info.find("     filesize: >30064771065046 bytes\n"), std::string::npos) << info;
}

TEST(ReadAIFF, PrintsTheDurationInTheUnitThatFits) {
    EXPECT_EQ(Duration(44100, 44100), "1 seconds");
    EXPECT_EQ(Duration(22050, 44100), "500 milliseconds");
    EXPECT_EQ(Duration(0, 44100), "0 milliseconds");
    EXPECT_EQ(Duration(59, 1), "59 seconds");
    EXPECT_EQ(Duration(60, 1), "1 minutes");
    EXPECT_EQ(Duration(90, 1), "1.5 minutes");
    EXPECT_EQ(Duration(3599, 1), "59.9833 minutes");
    EXPECT_EQ(Duration(3600, 1), "1 hours");
    EXPECT_EQ(Duration(9000, 1), "2.5 hours");
}

TEST(ReadAIFF, PrintsInTheFormatOfTheStream) {
    std::ostringstream out;
    out.precision(3);
    OpenAiff(AiffBytes({1, 0, 8, 11025}, "")).reader.PrintInfo(out);
    EXPECT_NE(out.str().find("    framerate: 1.1e+04/second\n"), std::string::npos) << out.str();
}

} // namespace
