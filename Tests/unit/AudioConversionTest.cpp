#include "ConversionFixture.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sys/stat.h>

#include <limits>
#include <utility>

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AudioConversion : public ConversionTest {
protected:
    /// Four frames of stereo sound, and what becomes of it.
    const std::string mSound =
        WaveBytes({1, 2, 44100, 16}, BytesOf<std::int16_t>({0, 2, 16384, -16384, 3, 4, 5, 6}));
    const std::string mConverted = ConvertedFile(44100, 2, {0, 1, 16383, -16383, 2, 3, 4, 5});
};

/// A file of one channel with these samples, in 64-bit floating-point numbers.
std::string FloatSound(const std::vector<double>& samples) {
    return WaveBytes({3, 1, 44100, 64}, BytesOf(samples));
}

/// A decoder steps over the item by its length of -8 and so comes to it again, for ever.
std::string SoundWithHeaderWithoutEnd() {
    const std::string whole = WaveBytes({1, 1, 44100, 16}, std::string(8, '\0'));
    const std::string circle =
        std::string("LIST\x24\0\0\0INFOxyzw\xF8\xFF\xFF\xFF", 20) + std::string(24, 'x');
    constexpr std::size_t kHeaderBeforeData = 36;
    return whole.substr(0, kHeaderBeforeData) + circle + whole.substr(kHeaderBeforeData);
}

// --- What is converted, and under which names ---

TEST_F(AudioConversion, BeginsWithNothingDecided) {
    const cAudioConversion conversion("/a/b.wav", true);
    EXPECT_FALSE(conversion.converted);
    EXPECT_EQ(conversion.sourcePath, "/a/b.wav");
    EXPECT_EQ(conversion.deviceName, "");
    EXPECT_EQ(conversion.outputPath, "");
    EXPECT_EQ(conversion.message, "");
    EXPECT_TRUE(conversion.useOwnReaders);
    EXPECT_EQ(conversion.outputSize, 0U);
    EXPECT_FALSE(conversion.cancelled);
    EXPECT_FALSE(cAudioConversion("/a/b.wav").useOwnReaders);
}

TEST_F(AudioConversion, KnowsSoundFilesByTheirExtension) {
    for (const char* extension : {"wav", "aif", "aiff", "aifc"}) {
        EXPECT_TRUE(cAudioConversion::IsConvertibleAudio(extension)) << extension;
    }
    for (const char* extension : {"", "WAV", "wave", "wa", "aifs", " wav", "mp3", "flac"}) {
        EXPECT_FALSE(cAudioConversion::IsConvertibleAudio(extension)) << extension;
    }
}

TEST_F(AudioConversion, MakesATemporaryWavFile) {
    cAudioConversion conversion(mFolder.Write("Song.WAV", mSound));
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_EQ(conversion.outputPath, InTempFolder("Song.wav"));
    ExpectConverted(conversion, "Song.wav", mConverted);
    EXPECT_EQ(mFolder.Read("Song.WAV"), mSound);
}

TEST_F(AudioConversion, ConvertsUnderEverySoundExtension) {
    for (const char* name : {"a.wav", "b.aif", "c.aiff", "d.aifc", "e.AIFF", "f.AiFc"}) {
        cAudioConversion conversion(mFolder.Write(name, mSound));
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectConverted(conversion, GetFileTitle(name) + ".wav", mConverted);
    }
}

TEST_F(AudioConversion, OtherFilesGoAsTheyAre) {
    const std::vector<std::pair<std::string, std::string>> namesOnDevice = {
        {"notes.txt", "notes.txt"},
        {"Image.PNG", "Image.PNG"},
        {"README", "README."},
        {"name.", "name."},
        {".hidden", ".hidden"},
        {"a.b.c", "a.b.c"},
        {"sound.wav.gz", "sound.wav.gz"},
        {"012345678901234567890123456789.html", "012345678901234567890123.html"},
        {"wav", "wav."},
        {"Caf\xC3\xA9.\xC3\xA9", "Cafe.e"}};
    for (const auto& [name, deviceName] : namesOnDevice) {
        cAudioConversion conversion(mFolder.Write(name, mSound));
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, deviceName, "");
        EXPECT_EQ(conversion.outputSize, mSound.size());
    }
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(AudioConversion, ConvertedFilesKeepTheirTitle) {
    const std::vector<std::pair<std::string, std::string>> namesOnDevice = {
        {".wav", ".wav"},
        {"..wav", "..wav"},
        {"a.b.aif", "a.b.wav"},
        {"012345678901234567890123456789.aiff", "012345678901234567890123.wav"},
        {"Caf\xC3\xA9.wav", "Cafe.wav"}};
    for (const auto& [name, deviceName] : namesOnDevice) {
        cAudioConversion conversion(mFolder.Write(name, mSound));
        EXPECT_TRUE(conversion.ConvertForUpload());
        EXPECT_EQ(conversion.outputPath, InTempFolder(GetFileTitle(name) + ".wav"));
        ExpectConverted(conversion, deviceName, mConverted);
    }
}

TEST_F(AudioConversion, WritesIntoAFolderOfTheCaller) {
    const TestFolder output;
    for (const std::string& folder : {output.Path().string(), output.Path().string() + '/'}) {
        {
            cAudioConversion conversion(mFolder.Write("Song.aif", mSound));
            EXPECT_TRUE(conversion.ConvertForUpload(&folder));
            EXPECT_FALSE(conversion.converted);
            EXPECT_EQ(conversion.outputPath, output / "Song.wav");
            EXPECT_EQ(conversion.deviceName, "Song.wav");
            EXPECT_EQ(conversion.outputSize, mConverted.size());
        }
        EXPECT_EQ(output.Read("Song.wav"), mConverted);
        std::filesystem::remove(output / "Song.wav");
    }
    EXPECT_THAT(TempNames(), IsEmpty());
}

// --- Samples ---

TEST_F(AudioConversion, TruncatesSamplesAndWrapsThemBeyondFullScale) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> samples = {1.0,    -1.0,      0.5,        -0.5,      1e-5,  -1e-5, 0.99999,
                                         1.5,    -1.5,      2.0,        -2.0,      1e9,   1e15,  1e300,
                                         -1e300, kInfinite, -kInfinite, kNoNumber, 3.1e-5};
    const std::vector<std::int16_t> expected = {32767, -32767, 16383,  -16383, 0, 0, 32766, -16386, 16386, -2,
                                                2,     13824,  0x0000, 0,      0, 0, 0,     0,      1};
    cAudioConversion conversion(mFolder.Write("a.wav", FloatSound(samples)));
    EXPECT_TRUE(conversion.ConvertForUpload());
    ASSERT_EQ(conversion.outputSize, 44 + 2 * expected.size());
    const std::string content = FileBytes(conversion.outputPath);
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(content.substr(44 + 2 * i, 2), BytesOf<std::int16_t>({expected[i]})) << samples[i];
    }
}

TEST_F(AudioConversion, WritesEveryBlockToTheLastFrame) {
    for (const unsigned channels : {1U, 2U}) {
        for (const std::size_t count : {2U, 1022U, 1024U, 1026U, 5000U}) {
            std::vector<float> samples(count);
            std::vector<std::int16_t> expected(count);
            for (std::size_t i = 0; i < count; ++i) {
                samples[i] = static_cast<float>(i % 512) / 512;
                expected[i] = static_cast<std::int16_t>(i % 512 * 32767 / 512);
            }
            cAudioConversion conversion(
                mFolder.Write("a.wav", WaveBytes({3, channels, 8000, 32}, BytesOf(samples))));
            EXPECT_TRUE(conversion.ConvertForUpload());
            ExpectConverted(conversion, "a.wav", ConvertedFile(8000, channels, expected));
        }
    }
}

TEST_F(AudioConversion, HigherRatesAreOnlyLabelledAnew) {
    for (const std::uint32_t rate : {1U, 8000U, 47999U, 48000U, 48001U, 96000U, 192000U}) {
        cAudioConversion conversion(
            mFolder.Write("a.wav", WaveBytes({3, 2, rate, 64}, BytesOf<double>({0, 1, 0.5, -1}))));
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectConverted(conversion, "a.wav",
                        ConvertedFile(std::min(rate, 48000U), 2, {0, 32767, 16383, -32767}));
    }
}

TEST_F(AudioConversion, AFileWithoutFramesStaysOne) {
    cAudioConversion conversion(mFolder.Write("a.wav", WaveBytes({1, 2, 44100, 16}, "")));
    EXPECT_TRUE(conversion.ConvertForUpload());
    ExpectConverted(conversion, "a.wav", ConvertedFile(44100, 2, {}));
}

// --- Conversions that fail ---

TEST_F(AudioConversion, SendsTheSourceWhereItCannotBeOpened) {
    const std::string missing = mFolder / "missing.wav";
    const std::string folder = mFolder / "folder.wav";
    const std::string pipe = mFolder / "pipe.wav";
    const std::string loop = mFolder / "loop.wav";
    std::filesystem::create_directory(folder);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_symlink("loop.wav", loop);
    for (const std::string& path : {missing, folder, pipe, loop}) {
        cAudioConversion conversion(path);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, GetFileName(path), "Couldn't open file '" + path + "'");
    }
}

TEST_F(AudioConversion, SendsAnEmptyFileAsItIs) {
    cAudioConversion conversion(mFolder.Write("Empty.WAV", ""));
    EXPECT_TRUE(conversion.ConvertForUpload());
    ExpectSentAsItIs(conversion, "Empty.WAV", "'" + conversion.sourcePath + "' is empty");
    EXPECT_EQ(conversion.outputSize, 0U);
}

TEST_F(AudioConversion, SendsWhatIsNoSoundAsItIs) {
    for (const std::string& content : {std::string("x"), std::string("RIFF"), std::string(5000, '\0'),
                                       mSound.substr(0, 20), "RIFX" + mSound.substr(4, 30)}) {
        cAudioConversion conversion(mFolder.Write("a.Aif", content));
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, "a.Aif",
                         "'" + conversion.sourcePath + "' - couldn't open as an audio file.");
    }
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(AudioConversion, SendsSoundOfManyChannelsAsItIs) {
    for (const unsigned channels : {3U, 6U}) {
        cAudioConversion conversion(
            mFolder.Write("a.wav", WaveBytes({1, channels, 44100, 16}, std::string(60, 'x'))));
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, "a.wav", "'" + conversion.sourcePath + "' - too many channels.");
    }
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(AudioConversion, SendsTheSourceWhereTheFolderOfTheCallerIsMissing) {
    const std::string folder = mFolder / "missing";
    cAudioConversion conversion(mFolder.Write("a.wav", mSound));
    EXPECT_TRUE(conversion.ConvertForUpload(&folder));
    ExpectSentAsItIs(conversion, "a.wav", folder + "/a.wav - Couldn't open wav file for writing");
}

TEST_F(AudioConversion, ASuccessClearsTheMessageOfAFailure) {
    cAudioConversion conversion(mFolder.Write("a.wav", ""));
    conversion.ConvertForUpload();
    EXPECT_NE(conversion.message, "");
    mFolder.Write("a.wav", mSound);
    conversion.ConvertForUpload();
    ExpectConverted(conversion, "a.wav", mConverted);
}

// --- Names that are taken ---

TEST_F(AudioConversion, LeavesTheFilesOfOthersAlone) {
    std::ofstream(InTempFolder("Song.wav")) << "theirs";
    std::filesystem::create_symlink("nowhere", InTempFolder("Song-2.wav"));
    const std::string victim = mFolder.Write("victim", "mine");
    std::filesystem::create_symlink(victim, InTempFolder("Song-3.wav"));
    std::filesystem::create_directory(InTempFolder("Song-4.wav"));
    {
        cAudioConversion conversion(mFolder.Write("Song.wav", mSound));
        EXPECT_TRUE(conversion.ConvertForUpload());
        EXPECT_EQ(conversion.outputPath, InTempFolder("Song-5.wav"));
        ExpectConverted(conversion, "Song.wav", mConverted);
    }
    EXPECT_THAT(TempNames(), ElementsAre("Song-2.wav", "Song-3.wav", "Song-4.wav", "Song.wav"));
    EXPECT_EQ(FileBytes(InTempFolder("Song.wav")), "theirs");
    EXPECT_EQ(mFolder.Read("victim"), "mine");
    EXPECT_FALSE(std::filesystem::exists(InTempFolder("nowhere")));
}

/// Converts again and again; whether each result was its own.
bool ConvertsBesideOthers(const std::string& path, const std::string& expected) {
    for (int round = 0; round < 50; ++round) {
        cAudioConversion conversion(path);
        conversion.ConvertForUpload();
        if (!conversion.converted || FileBytes(conversion.outputPath) != expected) {
            return false;
        }
    }
    return true;
}

TEST_F(AudioConversion, ProgramsThatConvertFilesOfOneTitleAtOnceDoNotMeet) {
    std::vector<pid_t> programs;
    for (const char letter : {'\1', '\2', '\3', '\4'}) {
        const std::string sound = WaveBytes({1, 1, 44100, 16}, std::string(20'000, letter));
        const std::string path = mFolder.Write(std::to_string(letter) + "/Song.wav", sound);
        cAudioConversion alone(path);
        alone.ConvertForUpload();
        const std::string expected = FileBytes(alone.outputPath);
        programs.push_back(::fork());
        if (programs.back() == 0) {
            ::_exit(ConvertsBesideOthers(path, expected) ? 0 : 1);
        }
    }
    for (const pid_t program : programs) {
        int status = 0;
        ASSERT_EQ(::waitpid(program, &status, 0), program);
        EXPECT_EQ(status, 0);
    }
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(AudioConversion, CutsALongNameForAFreshOne) {
    const std::string title(250, 'x');
    std::ofstream(InTempFolder(title + ".wav")) << "theirs";
    cAudioConversion conversion(mFolder.Write(title + ".wav", mSound));
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_EQ(conversion.outputPath, InTempFolder(title.substr(0, 249) + "-2.wav"));
    ExpectConverted(conversion, title.substr(0, 24) + ".wav", mConverted);
}

TEST_F(AudioConversion, GivesUpWhereEveryNameIsTaken) {
    std::ofstream(InTempFolder("a.wav")) << "theirs";
    for (int number = 2; number < 1000; ++number) {
        std::ofstream(InTempFolder("a-" + std::to_string(number) + ".wav")) << "theirs";
    }
    cAudioConversion conversion(mFolder.Write("a.wav", mSound));
    EXPECT_TRUE(conversion.ConvertForUpload());
    ExpectSentAsItIs(conversion, "a.wav", InTempFolder("a.wav") + " - Couldn't open wav file for writing");
}

TEST_F(AudioConversion, ASourceInTheTemporaryFolderIsNotWrittenOver) {
    for (const bool useOwnReaders : {false, true}) {
        std::ofstream(InTempFolder("Song.wav"), std::ios::binary) << mSound;
        {
            cAudioConversion conversion(InTempFolder("Song.wav"), useOwnReaders);
            EXPECT_TRUE(conversion.ConvertForUpload());
            EXPECT_EQ(conversion.outputPath, InTempFolder("Song-2.wav"));
            ExpectConverted(conversion, "Song.wav", useOwnReaders ? mSound : mConverted);
        }
        EXPECT_THAT(TempNames(), ElementsAre("Song.wav"));
        EXPECT_EQ(FileBytes(InTempFolder("Song.wav")), mSound);
    }
}

// --- The end of a temporary file ---

TEST_F(AudioConversion, DeletesItsTemporaryFileOnce) {
    cAudioConversion conversion(mFolder.Write("a.wav", mSound));
    conversion.ConvertForUpload();
    const std::string path = conversion.outputPath;
    ::testing::internal::CaptureStdout();
    conversion.DeleteTempFile();
    EXPECT_THAT(TempNames(), IsEmpty());
    EXPECT_FALSE(conversion.converted);
    EXPECT_EQ(conversion.outputPath, "");
    conversion.DeleteTempFile();
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Deleting temp file " + path + "\n");
}

TEST_F(AudioConversion, DeletesItsTemporaryFileAtTheEnd) {
    ::testing::internal::CaptureStdout();
    std::string path;
    {
        cAudioConversion conversion(mFolder.Write("a.wav", mSound));
        conversion.ConvertForUpload();
        path = conversion.outputPath;
        EXPECT_THAT(TempNames(), ElementsAre("a.wav"));
    }
    EXPECT_THAT(TempNames(), IsEmpty());
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Deleting temp file " + path + "\n");
}

TEST_F(AudioConversion, NeverDeletesASource) {
    ::testing::internal::CaptureStdout();
    for (const std::string& content : {std::string(), std::string("noise"), mSound.substr(0, 40)}) {
        for (const bool useOwnReaders : {false, true}) {
            for (const char* name : {"a.wav", "a.txt"}) {
                cAudioConversion conversion(mFolder.Write(name, content), useOwnReaders);
                conversion.ConvertForUpload();
                conversion.DeleteTempFile();
            }
            EXPECT_EQ(NamesIn(mFolder.Path()), (tNames{"a.txt", "a.wav"}));
        }
    }
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST_F(AudioConversion, AFurtherConversionTakesThePlaceOfTheFirst) {
    {
        cAudioConversion conversion(mFolder.Write("a.wav", mSound));
        conversion.ConvertForUpload();
        conversion.ConvertForUpload();
        EXPECT_THAT(TempNames(), ElementsAre("a.wav"));
        ExpectConverted(conversion, "a.wav", mConverted);
        mFolder.Write("a.wav", "noise");
        conversion.ConvertForUpload();
        EXPECT_THAT(TempNames(), IsEmpty());
        EXPECT_FALSE(conversion.converted);
        EXPECT_EQ(conversion.outputPath, conversion.sourcePath);
    }
    EXPECT_EQ(mFolder.Read("a.wav"), "noise");
}

// --- Progress and its end ---

TEST_F(AudioConversion, ReportsItsProgress) {
    for (const bool useOwnReaders : {false, true}) {
        std::vector<double> reports;
        cAudioConversion conversion(mFolder.Write("a.wav", LongSound()), useOwnReaders);
        conversion.progress = [&](double done) {
            reports.push_back(done);
            return true;
        };
        EXPECT_TRUE(conversion.ConvertForUpload());
        EXPECT_TRUE(conversion.converted);
        ASSERT_GE(reports.size(), 5U);
        EXPECT_TRUE(std::ranges::is_sorted(reports));
        EXPECT_GE(reports.front(), 0.0);
        EXPECT_LT(reports.front(), 0.3);
        EXPECT_GT(reports.back(), 0.8);
        EXPECT_LE(reports.back(), 1.0);
    }
}

TEST_F(AudioConversion, CanBeStoppedAtAnyReport) {
    const std::string path = mFolder.Write("a.wav", LongSound());
    for (const bool useOwnReaders : {false, true}) {
        for (const int last : {1, 2, 4}) {
            int reports = 0;
            cAudioConversion conversion(path, useOwnReaders);
            conversion.progress = [&](double) {
                EXPECT_THAT(TempNames(), SizeIs(1));
                return ++reports < last;
            };
            EXPECT_TRUE(conversion.ConvertForUpload());
            EXPECT_TRUE(conversion.cancelled);
            EXPECT_EQ(reports, last);
            ExpectSentAsItIs(conversion, "a.wav", "");
            EXPECT_THAT(TempNames(), IsEmpty());
        }
    }
}

TEST_F(AudioConversion, CanBeStoppedInAHeaderWithoutEnd) {
    int reports = 0;
    cAudioConversion conversion(mFolder.Write("a.wav", SoundWithHeaderWithoutEnd()));
    conversion.progress = [&](double) { return ++reports < 3; };
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_TRUE(conversion.cancelled);
    EXPECT_EQ(reports, 3);
    ExpectSentAsItIs(conversion, "a.wav", "");
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(AudioConversion, AHeaderWithoutEndIsNone) {
    cAudioConversion conversion(mFolder.Write("a.wav", SoundWithHeaderWithoutEnd()));
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_FALSE(conversion.cancelled);
    ExpectSentAsItIs(conversion, "a.wav",
                     "'" + conversion.sourcePath + "' - couldn't open as an audio file.");
}

TEST_F(AudioConversion, AStopHoldsForOneConversionOnly) {
    cAudioConversion conversion(mFolder.Write("a.wav", LongSound()));
    conversion.progress = [](double) { return false; };
    conversion.ConvertForUpload();
    conversion.progress = nullptr;
    conversion.ConvertForUpload();
    EXPECT_FALSE(conversion.cancelled);
    EXPECT_TRUE(conversion.converted);
}

TEST_F(AudioConversion, KeepsNoFileOpen) {
    const auto openFiles = [] { return NamesIn("/proc/self/fd").size(); };
    const std::size_t before = openFiles();
    for (const bool useOwnReaders : {false, true}) {
        for (const std::string& content : {std::string(), std::string("noise"), mSound}) {
            cAudioConversion conversion(mFolder.Write("a.wav", content), useOwnReaders);
            conversion.ConvertForUpload();
            EXPECT_EQ(openFiles(), before);
        }
    }
}

} // namespace
