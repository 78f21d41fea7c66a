#include "ClientProtocol.h"
#include "ConversionFixture.h"
#include "LoweredLimit.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <system_error>
#include <utility>

// What the disk and the rest of the computer may do to a conversion.

namespace {

using ::testing::IsEmpty;
using ::testing::StartsWith;

class ConversionFaults : public ConversionTest {
protected:
    const std::string mSound = WaveBytes({1, 2, 44100, 16}, std::string(8, '\0'));
};

/// Something else stands in the place of a folder for a while.
class FolderReplaced {
public:
    explicit FolderReplaced(std::string path) : mPath(std::move(path)) {
        std::filesystem::rename(mPath, mPath + ".away");
        std::ofstream(mPath) << "a file";
    }

    ~FolderReplaced() {
        std::filesystem::remove(mPath);
        std::filesystem::rename(mPath + ".away", mPath);
    }

    FolderReplaced(const FolderReplaced&) = delete;
    FolderReplaced& operator=(const FolderReplaced&) = delete;

private:
    std::string mPath;
};

/// From now on nothing can be read through the descriptor by which this process has the file open.
void BreakReading(const std::string& path) {
    for (const std::string& name : NamesIn("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink("/proc/self/fd/" + name, error) == path) {
            const int writeOnly = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
            ::dup2(writeOnly, std::stoi(name));
            ::close(writeOnly);
        }
    }
}

TEST_F(ConversionFaults, LeavesNothingOnAFullDisk) {
    const std::string path = mFolder.Write("a.wav", LongSound());
    for (const bool useOwnReaders : {false, true}) {
        for (const rlim_t room : {0U, 30U, 44U, 1000U, 100'000U}) {
            cAudioConversion conversion(path, useOwnReaders);
            {
                const LoweredLimit full(RLIMIT_FSIZE, room);
                EXPECT_TRUE(conversion.ConvertForUpload());
            }
            const bool isOpened = !useOwnReaders || room >= 44;
            ExpectSentAsItIs(conversion, "a.wav",
                             InTempFolder("a.wav") + (isOpened ? " - Couldn't write wav file"
                                                               : " - Couldn't open wav file for writing"));
            EXPECT_THAT(TempNames(), IsEmpty());
        }
    }
}

TEST_F(ConversionFaults, ATemporaryFolderThatWasCleanedAwayIsMadeAnew) {
    const std::string folder = GetTempFolder();
    std::filesystem::remove_all(folder);
    for (const bool useOwnReaders : {false, true}) {
        cAudioConversion conversion(mFolder.Write("a.wav", mSound), useOwnReaders);
        EXPECT_TRUE(conversion.ConvertForUpload());
        ExpectConverted(conversion, "a.wav", mSound);
        EXPECT_EQ(conversion.outputPath, folder + "/a.wav");
    }
}

TEST_F(ConversionFaults, SomethingElseInThePlaceOfTheTemporaryFolderIsLeftAlone) {
    const std::string folder = GetTempFolder();
    const FolderReplaced replaced(folder);
    cAudioConversion conversion(mFolder.Write("a.wav", mSound));
    EXPECT_TRUE(conversion.ConvertForUpload());
    ExpectConverted(conversion, "a.wav", mSound);
    EXPECT_THAT(conversion.outputPath, StartsWith(folder + '-'));
    EXPECT_EQ(FileBytes(folder), "a file");
}

TEST_F(ConversionFaults, AReadErrorIsNotTheEndOfTheFile) {
    const std::string path = mFolder.Write("a.wav", LongSound());
    cAudioConversion conversion(path);
    conversion.progress = [&](double) {
        BreakReading(path);
        return true;
    };
    EXPECT_TRUE(conversion.ConvertForUpload());
    ExpectSentAsItIs(conversion, "a.wav", "Couldn't read file '" + path + "'");
    EXPECT_THAT(TempNames(), IsEmpty());
}

TEST_F(ConversionFaults, StopsAtTheFirstBlockThatNobodyCanSend) {
    constexpr std::uint32_t kSamples = kMaxUploadSize / 2 + 10'000'000;
    const std::string format = "WAVE" + Chunk("fmt ", FormatBytes({1, 1, 44100, 8}));
    const std::string path =
        mFolder.Write("a.wav", ChunkOfSize("RIFF", kSamples + 36, format + ChunkOfSize("data", kSamples)));
    std::filesystem::resize_file(path, 44 + kSamples);
    cAudioConversion conversion(path);
    EXPECT_TRUE(conversion.ConvertForUpload());
    EXPECT_TRUE(conversion.converted);
    EXPECT_GT(conversion.outputSize, static_cast<std::uint32_t>(kMaxUploadSize));
    EXPECT_LE(conversion.outputSize, static_cast<std::uint32_t>(kMaxUploadSize) + 4096);
}

} // namespace
