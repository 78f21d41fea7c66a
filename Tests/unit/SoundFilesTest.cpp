#include "ConversionFixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <ostream>

// Sound files as other programs make them, and what yet another one reads out of them.

namespace {

using ::testing::IsEmpty;

struct SoundCase {
    std::string name;
    std::string file;   ///< the name of the sound file
    std::string make;   ///< makes the file from "raw", 64-bit floating-point numbers
    std::string decode; ///< makes "decoded" of the same kind from the file
    unsigned rate = 44100;
    unsigned channels = 2;
    double loudness = 0.9;
    std::size_t frames = 3001;
};

std::string Text(unsigned number) {
    return std::to_string(number);
}

// --- Commands of other programs ---

std::string FfmpegMakes(const std::string& encoding, const std::string& file, unsigned rate = 44100,
                        unsigned channels = 2) {
    return "ffmpeg -v error -f f64le -ar " + Text(rate) + " -ac " + Text(channels) + " -i raw " + encoding +
           " -y " + file;
}

std::string FfmpegReads(const std::string& file) {
    return "ffmpeg -v error -i " + file + " -f f64le -c:a pcm_f64le -y decoded";
}

std::string SoxMakes(const std::string& encoding, const std::string& file, unsigned rate = 44100,
                     unsigned channels = 2) {
    return "sox -V1 -D -t f64 -r " + Text(rate) + " -c " + Text(channels) + " raw " + encoding + ' ' + file;
}

std::string SoxReads(const std::string& file) {
    return "sox -V1 " + file + " -t f64 decoded";
}

/// The program takes the kind of file from its name, which then is changed.
std::string SndfileMakes(const std::string& encoding, const std::string& kind, const std::string& file) {
    return SoxMakes("-e floating-point -b 64", "big.wav") + " && sndfile-convert " + encoding +
           " big.wav made." + kind + " >/dev/null && mv made." + kind + ' ' + file;
}

// Decoded by the library that conversions use, too, but from a file that it opens itself: for what others do
// not read, or round otherwise.

std::string SndfileReads(const std::string& file) {
    return "sndfile-convert -float64 " + file + " decoded.raw >/dev/null && mv decoded.raw decoded";
}

/// Integers, which the program above would make as loud as they can be.
std::string SndfileReads16(const std::string& file) {
    return "sndfile-convert -pcm16 " + file + " plain.wav >/dev/null && " + SoxReads("plain.wav");
}

SoundCase Wav(const std::string& name, const std::string& make,
              const std::string& decode = FfmpegReads("a.wav")) {
    return {name, "a.wav", make, decode};
}

SoundCase Aiff(const std::string& name, const std::string& file, const std::string& make,
               const std::string& decode) {
    return {name, file, make, decode};
}

SoundCase Louder(SoundCase sound, double loudness) {
    sound.loudness = loudness;
    return sound;
}

SoundCase With(SoundCase sound, unsigned rate, unsigned channels) {
    sound.rate = rate;
    sound.channels = channels;
    return sound;
}

// --- The tests ---

bool IsInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

std::vector<double> Numbers(const std::string& bytes) {
    std::vector<double> numbers(bytes.size() / sizeof(double));
    bytes.copy(reinterpret_cast<char*>(numbers.data()), numbers.size() * sizeof(double));
    return numbers;
}

/// The left channel swings, the right one rises from end to end, so that neither can be taken for the other.
std::vector<double> Signal(std::size_t frames, unsigned channels, double loudness) {
    std::vector<double> samples;
    for (std::size_t i = 0; i < frames; ++i) {
        const auto place = static_cast<double>(i);
        samples.push_back(loudness * std::sin(place / 11));
        for (unsigned channel = 1; channel < channels; ++channel) {
            samples.push_back(loudness * (2 * place / static_cast<double>(frames) - 1) / channel);
        }
    }
    return samples;
}

/// Samples of a file, from their values with full scale 1.
std::vector<std::int16_t> Converted(const std::vector<double>& values) {
    std::vector<std::int16_t> samples;
    for (const double value : values) {
        const auto whole = static_cast<long>(std::trunc(value * 32767.0));
        samples.push_back(static_cast<std::int16_t>(((whole % 65536) + 65536) % 65536));
    }
    return samples;
}

class SoundFiles : public ConversionTest {
protected:
    void SetUp() override {
        for (const char* program : {"sox", "ffmpeg", "sndfile-convert"}) {
            if (!IsInstalled(program)) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
    }

    void Run(const std::string& command) const {
        ASSERT_EQ(std::system(("cd '" + mFolder.Path().string() + "' && " + command).c_str()), 0) << command;
    }

    void Make(const SoundCase& sound) const {
        mFolder.Write("raw", BytesOf(Signal(sound.frames, sound.channels, sound.loudness)));
        Run(sound.make);
    }

    /// The first frame in which two files differ, for a message.
    static void ExpectSame(const std::string& actual, const std::string& expected) {
        if (actual == expected) {
            return;
        }
        const auto place = std::ranges::mismatch(actual, expected).in1 - actual.begin();
        ADD_FAILURE() << "lengths " << actual.size() << " and " << expected.size() << ", other bytes from "
                      << place;
    }

    void ExpectDecoded(const SoundCase& sound) const {
        const std::vector<double> values = Numbers(mFolder.Read("decoded"));
        ASSERT_GE(values.size(), sound.frames * sound.channels);
        cAudioConversion conversion(mFolder / sound.file);
        EXPECT_TRUE(conversion.ConvertForUpload());
        EXPECT_TRUE(conversion.converted) << conversion.message;
        EXPECT_EQ(conversion.deviceName, "a.wav");
        EXPECT_EQ(conversion.message, "");
        ExpectSame(FileBytes(conversion.outputPath),
                   ConvertedFile(std::min(sound.rate, 48000U), sound.channels, Converted(values)));
    }

    void ExpectSentAsMade(const std::string& file, const std::string& reason) {
        cAudioConversion conversion(mFolder / file);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectSentAsItIs(conversion, file, "'" + conversion.sourcePath + "' " + reason);
        EXPECT_THAT(TempNames(), IsEmpty());
    }
};

class SoundFilesOf : public SoundFiles, public ::testing::WithParamInterface<SoundCase> {};

void PrintTo(const SoundCase& sound, std::ostream* out) {
    *out << sound.name;
}

TEST_P(SoundFilesOf, AreConvertedSampleForSample) {
    Make(GetParam());
    Run(GetParam().decode);
    ExpectDecoded(GetParam());
}

std::string NameOf(const ::testing::TestParamInfo<SoundCase>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Wav, SoundFilesOf,
    ::testing::Values(
        Wav("Pcm8", SoxMakes("-e unsigned -b 8", "a.wav")), Wav("Pcm16", SoxMakes("-b 16", "a.wav")),
        Wav("Pcm24", SoxMakes("-b 24", "a.wav")), Wav("Pcm32", SoxMakes("-b 32", "a.wav")),
        Wav("Pcm16OfFfmpeg", FfmpegMakes("-c:a pcm_s16le", "a.wav"), SoxReads("a.wav")),
        Wav("Pcm24OfFfmpeg", FfmpegMakes("-c:a pcm_s24le", "a.wav"), SoxReads("a.wav")),
        Wav("Pcm32OfFfmpeg", FfmpegMakes("-c:a pcm_s32le", "a.wav"), SoxReads("a.wav")),
        Wav("Float32", FfmpegMakes("-c:a pcm_f32le", "a.wav")),
        Wav("Float64", FfmpegMakes("-c:a pcm_f64le", "a.wav")),
        Louder(Wav("Float32BeyondFullScale", FfmpegMakes("-c:a pcm_f32le", "a.wav")), 3.7),
        Louder(Wav("Float64BeyondFullScale", FfmpegMakes("-c:a pcm_f64le", "a.wav")), 1e5),
        Wav("Float32OfSndfile", SndfileMakes("-float32", "wav", "a.wav")),
        Wav("ALaw", SoxMakes("-e a-law", "a.wav")), Wav("MuLaw", SoxMakes("-e mu-law", "a.wav")),
        Wav("Ima", SoxMakes("-e ima-adpcm", "a.wav"), SoxReads("a.wav")),
        Wav("MicrosoftAdpcm", SoxMakes("-e ms-adpcm", "a.wav"), SoxReads("a.wav")),
        Wav("ImaOfFfmpeg", FfmpegMakes("-c:a adpcm_ima_wav", "a.wav"), SoxReads("a.wav")),
        Wav("MicrosoftAdpcmOfFfmpeg", FfmpegMakes("-c:a adpcm_ms", "a.wav"), SoxReads("a.wav")),
        With(Wav("Gsm", SoxMakes("-e gsm-full-rate", "a.wav", 8000, 1), SoxReads("a.wav")), 8000, 1),
        Wav("Extensible", SndfileMakes("-pcm24", "wavex", "a.wav")),
        Wav("Rf64", FfmpegMakes("-c:a pcm_s24le -rf64 always", "a.wav")),
        Wav("W64", SndfileMakes("-pcm24", "w64", "a.wav")),
        Wav("BigEndian", SoxMakes("-B -b 16", "a.wav"), SoxReads("a.wav")),
        Wav("LengthsOfAPipe", FfmpegMakes("-f wav", "- >a.wav")),
        Wav("Flac", SoxMakes("-b 16 -t flac", "a.wav"), FfmpegReads("a.wav")),
        Wav("Vorbis", FfmpegMakes("-c:a libvorbis -f ogg", "a.wav"), SndfileReads("a.wav"))),
    NameOf);

INSTANTIATE_TEST_SUITE_P(
    Aiff, SoundFilesOf,
    ::testing::Values(
        Aiff("Pcm8", "a.aif", SoxMakes("-b 8", "a.aif"), FfmpegReads("a.aif")),
        Aiff("Pcm16", "a.aiff", SoxMakes("-b 16", "a.aiff"), FfmpegReads("a.aiff")),
        Aiff("Pcm24", "a.aif", SoxMakes("-b 24", "a.aif"), FfmpegReads("a.aif")),
        Aiff("Pcm32", "a.aif", SoxMakes("-b 32", "a.aif"), FfmpegReads("a.aif")),
        Aiff("Aifc8", "a.aifc", SoxMakes("-b 8", "a.aifc"), FfmpegReads("a.aifc")),
        Aiff("Aifc16", "a.aifc", SoxMakes("-b 16", "a.aifc"), FfmpegReads("a.aifc")),
        Aiff("Aifc24", "a.aifc", SoxMakes("-b 24", "a.aifc"), FfmpegReads("a.aifc")),
        Aiff("Aifc32", "a.aifc", SoxMakes("-b 32", "a.aifc"), FfmpegReads("a.aifc")),
        Aiff("Sowt", "a.aif", FfmpegMakes("-c:a pcm_s16le -f aiff", "a.aif"), SoxReads("a.aif")),
        Aiff("SowtUnderAifc", "a.aifc", FfmpegMakes("-c:a pcm_s16le -f aiff", "a.aifc"), SoxReads("a.aifc")),
        Louder(Aiff("Float32", "a.aifc", FfmpegMakes("-c:a pcm_f32be -f aiff", "a.aifc"),
                    FfmpegReads("a.aifc")),
               2.3),
        Louder(Aiff("Float64", "a.aifc", FfmpegMakes("-c:a pcm_f64be -f aiff", "a.aifc"),
                    FfmpegReads("a.aifc")),
               2.3),
        Aiff("Ima", "a.aifc", FfmpegMakes("-c:a adpcm_ima_qt -f aiff", "a.aifc"), SndfileReads16("a.aifc")),
        Aiff("ALaw", "a.aifc", FfmpegMakes("-c:a pcm_alaw -f aiff", "a.aifc"), FfmpegReads("a.aifc")),
        Aiff("MuLaw", "a.aifc", FfmpegMakes("-c:a pcm_mulaw -f aiff", "a.aifc"), FfmpegReads("a.aifc"))),
    NameOf);

std::vector<SoundCase> Rates() {
    std::vector<SoundCase> cases;
    for (const unsigned rate : {8000U, 11025U, 22050U, 32000U, 44100U, 48000U, 88200U, 96000U, 192000U}) {
        for (const unsigned channels : {1U, 2U}) {
            SoundCase sound =
                Wav(Text(rate) + "Of" + Text(channels), SoxMakes("-b 16", "a.wav", rate, channels));
            cases.push_back(With(sound, rate, channels));
        }
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(Rates, SoundFilesOf, ::testing::ValuesIn(Rates()), NameOf);

// --- Files that end too early ---

/// What is missing from a sample or a frame is not made up; a coded block is filled with zeros, or is left
/// out altogether where the decoder knows no part of a block.
enum class eRest { kDropped, kZeros };

struct CutCase {
    SoundCase sound;
    std::size_t cut = 0;     ///< bytes that are missing at the end
    std::size_t missing = 0; ///< frames that are then missing
    eRest rest = eRest::kDropped;
};

class CutSoundFiles : public SoundFiles, public ::testing::WithParamInterface<CutCase> {
protected:
    /// The values that the file without its end should have.
    std::vector<double> Expected(const CutCase& cut) const {
        const std::string whole = mFolder.Read(cut.sound.file);
        if (cut.rest == eRest::kZeros) {
            mFolder.Write(cut.sound.file,
                          whole.substr(0, whole.size() - cut.cut) + std::string(cut.cut, '\0'));
        }
        Run(cut.sound.decode);
        std::vector<double> values = Numbers(mFolder.Read("decoded"));
        values.resize(values.size() - cut.missing * cut.sound.channels);
        return values;
    }
};

void PrintTo(const CutCase& cut, std::ostream* out) {
    *out << cut.sound.name;
}

TEST_P(CutSoundFiles, KeepTheSoundBeforeTheCut) {
    const SoundCase& sound = GetParam().sound;
    Make(sound);
    const std::vector<double> values = Expected(GetParam());
    const std::string path = mFolder / sound.file;
    std::filesystem::resize_file(path, std::filesystem::file_size(path) - GetParam().cut);
    cAudioConversion conversion(path);
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_TRUE(conversion.converted) << conversion.message;
    ExpectSame(FileBytes(conversion.outputPath),
               ConvertedFile(sound.rate, sound.channels, Converted(values)));
}

std::string NameOfCut(const ::testing::TestParamInfo<CutCase>& info) {
    return info.param.sound.name;
}

INSTANTIATE_TEST_SUITE_P(
    Wav, CutSoundFiles,
    ::testing::Values(
        CutCase{Wav("Pcm16BehindAFrame", SoxMakes("-b 16", "a.wav")), 400, 100},
        CutCase{Wav("Pcm16InAFrame", SoxMakes("-b 16", "a.wav")), 402, 101},
        CutCase{Wav("Pcm16InASample", SoxMakes("-b 16", "a.wav")), 401, 101},
        CutCase{Wav("Pcm24InASample", SoxMakes("-b 24", "a.wav")), 2, 1},
        CutCase{Wav("Float64InASample", FfmpegMakes("-c:a pcm_f64le", "a.wav")), 33, 3},
        CutCase{Wav("Ima", SoxMakes("-e ima-adpcm", "a.wav"), SoxReads("a.wav")), 100, 0, eRest::kZeros},
        CutCase{Wav("MicrosoftAdpcm", SoxMakes("-e ms-adpcm", "a.wav"), SoxReads("a.wav")), 100, 2036},
        CutCase{With(Wav("Gsm", SoxMakes("-e gsm-full-rate", "a.wav", 8000, 1), SoxReads("a.wav")), 8000, 1),
                30, 0, eRest::kZeros}),
    NameOfCut);

INSTANTIATE_TEST_SUITE_P(
    Aiff, CutSoundFiles,
    ::testing::Values(
        CutCase{Aiff("Pcm16InAFrame", "a.aif", SoxMakes("-b 16", "a.aif"), FfmpegReads("a.aif")), 402, 101},
        CutCase{Aiff("Pcm24InASample", "a.aif", SoxMakes("-b 24", "a.aif"), FfmpegReads("a.aif")), 2, 1},
        CutCase{
            Aiff("SowtInASample", "a.aif", FfmpegMakes("-c:a pcm_s16le -f aiff", "a.aif"), SoxReads("a.aif")),
            5, 2},
        CutCase{Aiff("Ima", "a.aifc", FfmpegMakes("-c:a adpcm_ima_qt -f aiff", "a.aifc"),
                     SndfileReads16("a.aifc")),
                10, 0, eRest::kZeros}),
    NameOfCut);

// --- Files that go as they are ---

/// Its decoder wants to know where seeking has led to, which the stream does not say.
TEST_F(SoundFiles, Mp3UnderAnotherNameGoesAsItIs) {
    Make(Wav("Mp3", FfmpegMakes("-c:a libmp3lame -f mp3", "a.wav")));
    ExpectSentAsMade("a.wav", "- couldn't open as an audio file.");
}

TEST_F(SoundFiles, SixChannelsGoAsTheyAre) {
    SoundCase sound = Wav("Six", FfmpegMakes("-c:a pcm_s16le", "a.wav", 44100, 6));
    sound.channels = 6;
    Make(sound);
    ExpectSentAsMade("a.wav", "- too many channels.");
}

TEST_F(SoundFiles, FilesOfOtherKindsGoAsTheyAre) {
    Run("tar -cf a.wav /proc/version 2>/dev/null; gzip -c a.wav >a.aif");
    ExpectSentAsMade("a.wav", "- couldn't open as an audio file.");
    ExpectSentAsMade("a.aif", "- couldn't open as an audio file.");
}

} // namespace
