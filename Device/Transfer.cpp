#include "Transfer.h"

#include "FileTree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

namespace {

namespace fs = std::filesystem;

constexpr mode_t kNewFileMode = 0666;

/// Without O_NONBLOCK, opening a pipe would wait for its other end.
int OpenForReading(const fs::path& path) {
    return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); // NOLINT(*-vararg): the system's call
}

/// Folders that the upload needs are made when it is whole, so the temporary file waits in the last one that
/// exists: the target's own, or one above it, which is the same file system.
fs::path ExistingFolder(const fs::path& target) {
    fs::path folder = target.parent_path();
    std::error_code error;
    while (!fs::is_directory(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

fs::path NextTemporaryName(const fs::path& target) {
    static unsigned counter = 0;
    std::string name(kUnfinishedPrefix);
    name += std::to_string(::getpid()) + '-' + std::to_string(++counter);
    return ExistingFolder(target) / name;
}

/// Makes a new file for writing and sets path to its name; -1 with errno set on failure.
int CreateTemporary(const fs::path& target, fs::path& path) {
    int file = -1;
    do {
        path = NextTemporaryName(target);
        // NOLINTNEXTLINE(*-vararg): the system's call
        file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
    } while (file < 0 && errno == EEXIST);
    return file;
}

} // namespace

FileDescriptor::~FileDescriptor() {
    Close();
}

bool FileDescriptor::Close() {
    const int number = std::exchange(mNumber, -1);
    return number < 0 || ::close(number) == 0;
}

Download::Download(const fs::path& path) : mFile(OpenForReading(path)) {
    struct stat status {};

    if (!mFile.IsOpen() || ::fstat(mFile.Number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > std::numeric_limits<std::uint32_t>::max()) {
        return;
    }
    mLength = static_cast<std::uint32_t>(status.st_size);
    mRemaining = mLength;
}

std::string Download::ReadPiece(std::size_t count) {
    std::string piece(std::min<std::size_t>(count, mRemaining), '\0');
    ssize_t got = 0;
    do {
        got = ::read(mFile.Number(), piece.data(), piece.size());
    } while (got < 0 && errno == EINTR);
    piece.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    mRemaining -= static_cast<std::uint32_t>(piece.size());
    return piece;
}

Upload::Upload(const fs::path& target) : mTarget(target), mFile(CreateTemporary(target, mTemporary)) {
    if (!mFile.IsOpen()) {
        Fail();
        mTemporary.clear();
    }
}

Upload::~Upload() {
    if (!mTemporary.empty()) {
        ::unlink(mTemporary.c_str());
    }
}

void Upload::Write(std::string_view bytes) {
    while (mError.empty() && !bytes.empty()) {
        const ssize_t written = ::write(mFile.Number(), bytes.data(), bytes.size());
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            Fail();
        }
    }
}

std::string Upload::Commit() {
    if (mError.empty() && !mFile.Close()) {
        Fail();
    }
    std::error_code error;
    if (mError.empty()) {
        fs::create_directories(mTarget.parent_path(), error);
    }
    if (mError.empty() && !error) {
        fs::rename(mTemporary, mTarget, error);
    }
    if (error) {
        mError = error.message();
    }
    if (mError.empty()) {
        mTemporary.clear();
    }
    return mError;
}

void Upload::Fail() {
    mError = std::generic_category().message(errno);
}
