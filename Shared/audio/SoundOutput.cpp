#include "SoundOutput.h"

#include "CommonUtils.h"
#include "CommonUtils_OSX.h"

#include <cerrno>

namespace {

/// Nobody has so many files of one title. Where somebody has them none the less, nothing is converted.
constexpr int kMostNames = 1000;

constexpr std::size_t kLongestFileName = 255; // of the file systems in use

/// A name beside one that is taken; of a long one its end makes room for the number.
std::string FreshPath(const std::string& zPath, int zNumber) {
    const std::string end = '-' + std::to_string(zNumber) + ".wav";
    const std::string title = GetFileTitle(zPath);
    const std::string folder = zPath.substr(0, zPath.size() - GetFileName(zPath).size());
    return folder + title.substr(0, kLongestFileName - end.size()) + end;
}

/// Opens a file that nobody has had before; links count as files here.
tStdioStream CreateFile(const std::string& zPath) {
    errno = 0; // a path too long to be tried at all leaves it alone
    return tStdioStream(OpenFile(zPath, "wbx"));
}

} // namespace

cSoundOutput::cSoundOutput(const std::string& zPath) : mPath(zPath), mpFile(CreateFile(zPath)) {
    for (int number = 2; !mpFile && errno == EEXIST && number < kMostNames; ++number) {
        mPath = FreshPath(zPath, number);
        mpFile = CreateFile(mPath);
    }
    mIsCreated = mpFile != nullptr;
    mBuffer.GiveTo(mpFile.get());
}

cSoundOutput::~cSoundOutput() {
    mpFile.reset();
    if (mIsCreated && !mIsKept) {
        DeleteLocalFile(mPath);
    }
}

bool cSoundOutput::Close() {
    const bool failed = std::ferror(mpFile.get()) != 0;
    return std::fclose(mpFile.release()) == 0 && !failed;
}
