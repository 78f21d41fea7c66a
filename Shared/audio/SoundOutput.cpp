#include "SoundOutput.h"

#include "CommonUtils_OSX.h"

#include <cerrno>

namespace {

/// Nobody has so many files of one title; whoever puts them there keeps the conversion from its work only.
constexpr int kMostNames = 1000;

/// Opens a file that nobody has had before; links count as files here.
tStdioStream CreateFile(const std::string& zPath) {
    return tStdioStream(OpenFile(zPath, "wbx"));
}

} // namespace

cSoundOutput::cSoundOutput(const std::string& zPath) : mPath(zPath), mpFile(CreateFile(zPath)) {
    for (int number = 2; !mpFile && errno == EEXIST && number < kMostNames; ++number) {
        mPath = RemoveExtension(zPath) + '-' + std::to_string(number) + ".wav";
        mpFile = CreateFile(mPath);
    }
    mIsCreated = mpFile != nullptr;
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
