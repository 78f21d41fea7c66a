#include "AiffBytes.h"
#include "ConversionFixture.h"

#include <gmock/gmock.h>

#include <utility>

// Conversions with the program's own readers.

namespace {

using ::testing::IsEmpty;

class OwnReaders : public ConversionTest {
protected:
    void ExpectMade(const std::string& name, const std::string& content, const std::string& expected) const {
        cAudioConversion conversion(mFolder.Write(name, content), true);
        EXPECT_TRUE(conversion.ConvertForUpload());
        EXPECT_EQ(conversion.outputPath, InTempFolder(GetFileTitle(name) + ".wav"));
        ExpectConverted(conversion, GetFileTitle(name) + ".wav", expected);
    }

    void ExpectRefused(const std::string& name, const std::string& content, const std::string& reason) const {
        cAudioConversion conversion(mFolder.Write(name, content), true);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, name, conversion.sourcePath + reason);
        conversion.DeleteTempFile();
        EXPECT_EQ(mFolder.Read(name), content);
        EXPECT_THAT(TempNames(), IsEmpty());
    }

    /// The text that a conversion throws; "" when it throws none.
    std::string TextThrownFor(const std::string& content) const {
        cAudioConversion conversion(mFolder.Write("a.aif", content), true);
        try {
            conversion.ConvertForUpload();
        } catch (const char* text) {
            EXPECT_FALSE(conversion.converted);
            return text;
        }
        return "";
    }
};

const char* const kTwoChannels = " - Only mono and stereo files are supported";
const char* const kLowRates = " - Only sample rates up to 48000 are supported";
const char* const kFewBits = " - Only 8 or 16 bit samples are supported";
const char* const kPlain = " - Couldn't read file. Check that it is uncompressed PCM";

std::string Zeros(std::size_t count) {
    std::string zeros(count, '\0');
    return zeros;
}

/// A 16-bit AIFF file of one channel without samples.
std::string SilentAiff(double rate) {
    return AiffBytes({1, 0, 16, rate}, "");
}

TEST_F(OwnReaders, AreUsedForTwoExtensionsOnly) {
    const std::string sound = AiffBytes({1, 1, 16, 44100}, "\x12\x34");
    for (const char* name : {"a.aiff", "a.aifc", "a.AIFF", "a.au", "aif"}) {
        cAudioConversion conversion(mFolder.Write(name, sound), true);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, GetFileTitle(name) + '.' + (name == std::string("aif") ? "" : name + 2),
                         "");
    }
    ExpectMade("a.AIF", sound, ConvertedFile(44100, 1, {0x1234}));
    ExpectMade("b.WaV", WaveBytes({1, 1, 44100, 16}, "\x34\x12"), ConvertedFile(44100, 1, {0x1234}));
}

TEST_F(OwnReaders, WorkInTheTemporaryFolderAlsoWhereACallerNamesAnother) {
    const TestFolder other;
    const std::string folder = other.Path().string();
    cAudioConversion conversion(mFolder.Write("a.wav", WaveBytes({1, 1, 44100, 16}, "ab")), true);
    EXPECT_TRUE(conversion.ConvertForUpload(&folder));
    ExpectConverted(conversion, "a.wav", WaveBytes({1, 1, 44100, 16}, "ab"));
    EXPECT_THAT(NamesIn(folder), IsEmpty());
}

TEST_F(OwnReaders, SendTheSourceWhereItCannotBeOpened) {
    for (const char* name : {"missing.wav", "missing.aif"}) {
        cAudioConversion conversion(mFolder / name, true);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, name, "Couldn't open file '" + conversion.sourcePath + "'");
    }
}

// --- WAV ---

TEST_F(OwnReaders, KeepWavSamplesOf16Bits) {
    for (const unsigned channels : {1U, 2U}) {
        const std::vector<std::int16_t> samples = {0, 1, -1, 32767, -32768, 256};
        const std::string file = ConvertedFile(48000, channels, samples);
        ExpectMade("a.wav", WaveBytes({1, channels, 48000, 16}, BytesOf(samples), Chunk("LIST", "INFO")),
                   file);
    }
}

TEST_F(OwnReaders, WidenWavSamplesOf8Bits) {
    for (const unsigned channels : {1U, 2U}) {
        ExpectMade("a.wav",
                   WaveBytes({1, channels, 8000, 8}, BytesOf<std::uint8_t>({0, 1, 127, 128, 129, 255})),
                   ConvertedFile(8000, channels, {-32768, -32512, -256, 0, 256, 32512}));
    }
}

TEST_F(OwnReaders, CopyLongWavFilesToTheLastFrame) {
    std::vector<std::uint8_t> bytes(5002);
    std::vector<std::int16_t> samples(5002);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(i * 7);
        samples[i] = static_cast<std::int16_t>((bytes[i] - 128) * 256);
    }
    ExpectMade("a.wav", WaveBytes({1, 2, 8000, 8}, BytesOf(bytes)), ConvertedFile(8000, 2, samples));
    ExpectMade("b.wav", ConvertedFile(8000, 2, samples), ConvertedFile(8000, 2, samples));
}

TEST_F(OwnReaders, CopyWholeFramesOfACutWavFile) {
    const std::string stereo = WaveBytes({1, 2, 44100, 16}, "abcdefghijklmnop");
    for (const std::size_t kept : {0U, 3U, 4U, 7U, 10U, 16U}) {
        ExpectMade("a.wav", stereo.substr(0, 44 + kept),
                   WaveBytes({1, 2, 44100, 16}, stereo.substr(44, kept - kept % 4)));
    }
    const std::string narrow = WaveBytes({1, 2, 44100, 8}, "\x80\x80\x80\x80");
    ExpectMade("a.wav", narrow.substr(0, 44 + 3), ConvertedFile(44100, 2, {0, 0}));
    // Three bytes more than whole frames, in a file that is complete.
    ExpectMade("a.wav", WaveBytes({1, 2, 44100, 16}, "abcdefg"), WaveBytes({1, 2, 44100, 16}, "abcd"));
}

TEST_F(OwnReaders, TakeAWavFileWithoutAFrameSizeForEmpty) {
    const std::string format =
        Little16(1) + Little16(1) + Little32(8000) + Little32(0) + Little16(0) + Little16(16);
    ExpectMade("a.wav", Form("RIFF", "WAVE", Chunk("fmt ", format) + Chunk("data", "abcd")),
               ConvertedFile(8000, 1, {}));
}

TEST_F(OwnReaders, SayWhyAWavFileIsRefused) {
    const std::vector<std::pair<WaveFormat, const char*>> refused = {
        {{3, 1, 44100, 16}, kPlain},       {{0xFFFE, 9, 96000, 24}, kPlain},
        {{1, 0, 44100, 16}, kTwoChannels}, {{1, 3, 96000, 24}, kTwoChannels},
        {{1, 1, 48001, 16}, kLowRates},    {{1, 2, 192000, 24}, kLowRates},
        {{1, 2, 48000, 24}, kFewBits},     {{1, 1, 8000, 12}, kFewBits}};
    for (const auto& [format, reason] : refused) {
        ExpectRefused("a.wav", WaveBytes(format, Zeros(24)), reason);
    }
    for (const std::string& content :
         {std::string(), std::string("noise"), Form("RIFF", "AVI ", Zeros(40))}) {
        ExpectRefused("a.wav", content, " - Couldn't open file");
    }
}

// --- AIFF ---

TEST_F(OwnReaders, KeepAiffSamplesOf16Bits) {
    std::string samples;
    for (const int sample : {0, 1, -1, 32767, -32768, 256}) {
        samples += Big16(sample);
    }
    ExpectMade("a.aif", AiffBytes({1, 6, 16, 48000}, samples),
               ConvertedFile(48000, 1, {0, 1, -1, 32767, -32768, 256}));
    ExpectMade("a.aif", AiffBytes({2, 3, 16, 48000}, samples),
               ConvertedFile(48000, 2, {0, 1, -1, 32767, -32768, 256}));
}

TEST_F(OwnReaders, WidenAiffSamplesOf8Bits) {
    for (const int channels : {1, 2}) {
        ExpectMade(
            "a.aif",
            AiffBytes({channels, 6U / static_cast<unsigned>(channels), 8, 8000},
                      BytesOf<std::int8_t>({0, 1, 127, -128, -127, -1})),
            ConvertedFile(8000, static_cast<unsigned>(channels), {0, 256, 32512, -32768, -32512, -256}));
    }
}

TEST_F(OwnReaders, CopyLongAiffFilesToTheLastFrame) {
    std::string wide;
    std::vector<std::int8_t> narrow;
    std::vector<std::int16_t> samples;
    for (int i = 0; i < 5002; ++i) {
        narrow.push_back(static_cast<std::int8_t>(i * 7));
        samples.push_back(static_cast<std::int16_t>(narrow.back() * 256));
        wide += Big16(samples.back());
    }
    ExpectMade("a.aif", AiffBytes({2, 2501, 16, 8000}, wide), ConvertedFile(8000, 2, samples));
    ExpectMade("b.aif", AiffBytes({2, 2501, 8, 8000}, BytesOf(narrow)), ConvertedFile(8000, 2, samples));
}

TEST_F(OwnReaders, RoundTheRateOfAnAiffFile) {
    ExpectMade("a.aif", SilentAiff(44099.5), ConvertedFile(44100, 1, {}));
    ExpectMade("b.aif", SilentAiff(44100.25), ConvertedFile(44100, 1, {}));
    ExpectMade("c.aif", SilentAiff(48000), ConvertedFile(48000, 1, {}));
}

TEST_F(OwnReaders, SayWhyAnAiffFileIsRefused) {
    const std::vector<std::pair<AiffFormat, const char*>> refused = {{{3, 1, 24, 96000}, kTwoChannels},
                                                                     {{1, 1, 24, 48000.5}, kLowRates},
                                                                     {{2, 1, 16, 96000}, kLowRates},
                                                                     {{2, 1, 24, 48000}, kFewBits},
                                                                     {{1, 1, 12, 8000}, kFewBits}};
    for (const auto& [format, reason] : refused) {
        ExpectRefused("a.aif", AiffBytes(format, Zeros(24)), reason);
    }
}

TEST_F(OwnReaders, PassTheTextsOfTheAiffReaderOn) {
    const std::string sound = AiffBytes({2, 2000, 16, 44100}, Zeros(8000));
    EXPECT_EQ(TextThrownFor(sound), "");
    EXPECT_EQ(TextThrownFor("noise"), "cReadAIFF: Header doesn't start with magic word FORM!");
    EXPECT_EQ(TextThrownFor(sound.substr(0, sound.size() - 1)), "cReadAIFF: Error reading audiosample!");
    EXPECT_THAT(TempNames(), IsEmpty());
}

} // namespace
