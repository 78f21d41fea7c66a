#include "CommonUtils_OSX.h"

#include "CommonUtils.h"
#include "DeviceNames.h"

#include <QtCore/QDir>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <QtCore/QStringDecoder>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <thread>
#include <utility>

namespace {

constexpr const char* kSource = "Shared/CommonUtils_OSX";
constexpr const char* kFolderName = "Quillbox";

/// The room that a path has in OpenFile, its closing zero included.
constexpr std::size_t kPathBufferSize = 1024;

constexpr std::size_t kShortestDeletedPath = 9;

constexpr mode_t kPrivateMode = S_IRWXU;

/// A path with a zero byte would reach the system as another, shorter one.
bool IsWholeForSystem(const std::string& zPath) {
    return zPath.find('\0') == std::string::npos;
}

std::optional<struct stat> Examine(const std::string& zPath) {
    struct stat info {};

    if (!IsWholeForSystem(zPath) || ::stat(zPath.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return info;
}

bool IsSelfOrParent(const std::string& zName) {
    return zName == "." || zName == "..";
}

bool FitsPathBuffer(const std::string& zPath) {
    return zPath.size() < kPathBufferSize && IsWholeForSystem(zPath);
}

/// Text of UTF-8 bytes, with U+FFFD where they are ill-formed. A leading U+FEFF is a character like any
/// other.
QString Decode(const std::string& zText, bool* zpWellFormed = nullptr) {
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder(QByteArrayView(zText.data(), static_cast<qsizetype>(zText.size())));
    if (zpWellFormed != nullptr) {
        *zpWellFormed = !decoder.hasError();
    }
    return text;
}

/// Like Decode, but different ill-formed texts stay different.
QString Readable(const std::string& zText) {
    bool wellFormed = false;
    const QString text = Decode(zText, &wellFormed);
    return wellFormed ? text : QString::fromLatin1(zText.data(), static_cast<qsizetype>(zText.size()));
}

/// "song" of "/a/song/" too: a separator at the end names no component.
std::string WithoutTrailingSeparators(std::string zPath) {
    while (zPath.size() > 1 && zPath.back() == '/') {
        zPath.pop_back();
    }
    return zPath;
}

} // namespace

struct cDirIterator::sHandle {
    explicit sHandle(DIR* zpFolder) : mpFolder(zpFolder) {}

    ~sHandle() { ::closedir(mpFolder); }

    sHandle(const sHandle&) = delete;
    sHandle& operator=(const sHandle&) = delete;

    bool Read();
    bool IsFolder() const;

    DIR* mpFolder;
    const dirent* mpEntry = nullptr;
};

bool cDirIterator::sHandle::Read() {
    mpEntry = ::readdir(mpFolder);
    return mpEntry != nullptr;
}

bool cDirIterator::sHandle::IsFolder() const {
    if (mpEntry == nullptr || mpEntry->d_type != DT_UNKNOWN) {
        return mpEntry != nullptr && mpEntry->d_type == DT_DIR;
    }

    // Some file systems do not tell the type in the listing.
    struct stat info {};

    return ::fstatat(::dirfd(mpFolder), mpEntry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(info.st_mode);
}

cDirIterator::cDirIterator(std::string zPath) : mPath(std::move(zPath)) {
    DIR* const folder = IsWholeForSystem(mPath) ? ::opendir(mPath.c_str()) : nullptr;
    if (folder != nullptr) {
        mpDir = std::make_unique<sHandle>(folder);
    }
}

cDirIterator::~cDirIterator() = default;

bool cDirIterator::First() {
    if (mpDir == nullptr) {
        return false;
    }
    ::rewinddir(mpDir->mpFolder);
    bool found = mpDir->Read();
    while (found && IsSelfOrParent(mpDir->mpEntry->d_name)) {
        found = mpDir->Read();
    }
    return found;
}

bool cDirIterator::Next() {
    Require(mpDir != nullptr, kSource, "mpDir", 61);
    return mpDir->Read();
}

std::string cDirIterator::GetName() const {
    Require(mpDir != nullptr, kSource, "mpDir", 77);
    return mpDir->mpEntry == nullptr ? std::string() : mpDir->mpEntry->d_name;
}

bool cDirIterator::IsFolder() const {
    Require(mpDir != nullptr, kSource, "mpDir", 89);
    return mpDir->IsFolder();
}

namespace {

struct sFolderEntry {
    std::string name;
    bool isFolder;
};

/// The entries of one folder. The folder is closed again before anyone goes deeper, so that the depth of a
/// tree is not limited by the number of open files.
std::vector<sFolderEntry> ListFolder(const std::string& zPath, const std::function<bool()>& zMayGoOn) {
    std::vector<sFolderEntry> entries;
    cDirIterator iterator(zPath);
    for (bool found = iterator.First(); found && zMayGoOn(); found = iterator.Next()) {
        sFolderEntry entry{iterator.GetName(), iterator.IsFolder()};
        if (!IsSelfOrParent(entry.name)) {
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

} // namespace

void GetLocalFileList(std::string& zrPath, std::vector<std::string>& zrFiles, std::uint64_t& zrTotal,
                      const std::function<bool()>& zMayGoOn) {
    // The recursion ends at the latest where the system refuses a path as too long (4096 bytes).
    const std::size_t length = zrPath.size();
    for (const sFolderEntry& entry : ListFolder(zrPath, zMayGoOn)) {
        if (!zMayGoOn()) {
            return;
        }
        // Not AddTrailingSeparator: a backslash at the end belongs to the name of a local folder.
        if (zrPath.back() != '/') {
            zrPath += '/';
        }
        zrPath += entry.name;
        if (entry.isFolder) {
            GetLocalFileList(zrPath, zrFiles, zrTotal, zMayGoOn);
        } else {
            zrFiles.push_back(zrPath);
            zrTotal += GetFileSize(zrPath);
        }
        zrPath.resize(length);
    }
}

bool FileExists(const std::string& zPath) {
    if (!FitsPathBuffer(zPath)) {
        return false;
    }
    // As OpenFile with "rb" would find, but without waiting for the other end of a pipe.
    const int descriptor = ::open(zPath.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor == -1) {
        return false;
    }
    ::close(descriptor);
    return true;
}

std::uint32_t GetFileSize(const std::string& zPath) {
    const auto info = Examine(zPath);
    return info ? static_cast<std::uint32_t>(info->st_size) : 0;
}

bool IsFolder(const std::string& zPath) {
    const auto info = Examine(zPath);
    return info && S_ISDIR(info->st_mode);
}

bool IsRegularFile(const std::string& zPath) {
    const auto info = Examine(zPath);
    return info && S_ISREG(info->st_mode);
}

bool RenameFile(const std::string& zOldPath, const std::string& zNewPath) {
    return IsWholeForSystem(zOldPath) && IsWholeForSystem(zNewPath) &&
           std::rename(zOldPath.c_str(), zNewPath.c_str()) == 0;
}

bool DeleteLocalFile(const std::string& zPath) {
    if (zPath.size() < kShortestDeletedPath || !IsWholeForSystem(zPath)) {
        return false;
    }
    // With a separator behind it the name of a link would stand for the folder that it leads to.
    const std::string path = WithoutTrailingSeparators(zPath);
    std::error_code error;
    return path != "/" && std::filesystem::remove_all(path, error) > 0 && !error;
}

bool MakeFolder(const std::string& zPath) {
    if (const auto info = Examine(zPath)) {
        return S_ISDIR(info->st_mode);
    }
    return IsWholeForSystem(zPath) && ::mkdir(zPath.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0;
}

std::FILE* OpenFile(const std::string& zPath, const char* zMode) {
    return FitsPathBuffer(zPath) ? std::fopen(zPath.c_str(), zMode) : nullptr;
}

std::FILE* OpenRegularFile(const std::string& zPath) {
    if (!FitsPathBuffer(zPath) || !IsRegularFile(zPath)) {
        return nullptr;
    }
    const int descriptor = ::open(zPath.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);

    struct stat info {};

    const bool isRegular = descriptor != -1 && ::fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode);
    std::FILE* const stream = isRegular ? ::fdopen(descriptor, "rb") : nullptr;
    if (stream == nullptr && descriptor != -1) {
        ::close(descriptor);
    }
    return stream;
}

std::string GetFileTitle(const std::string& zPath) {
    return RemoveExtension(GetFileName(zPath));
}

std::string GetFileName(const std::string& zPath) {
    const std::string path = WithoutTrailingSeparators(zPath);
    return path.substr(path.rfind('/') + 1);
}

std::string RemoveExtension(const std::string& zPath) {
    std::string path = WithoutTrailingSeparators(zPath);
    const std::size_t mark = path.find_last_of("./\\");
    if (mark != std::string::npos && path[mark] == '.') {
        path.resize(mark);
    }
    return path;
}

std::string GetParentPath(const std::string& zPath) {
    std::string path = WithoutTrailingSeparators(zPath);
    const std::size_t separator = path.rfind('/');
    if (separator == std::string::npos) {
        return {};
    }
    path.resize(separator + 1);
    return WithoutTrailingSeparators(path);
}

bool HasExtension(const std::string& zPath, const std::string& zExtension) {
    constexpr std::size_t kCompared = 3;
    const std::string extension = GetExtension(zPath);
    return extension.size() >= kCompared && SameTextNoCase(extension.substr(0, kCompared), zExtension);
}

bool SameTextNoCase(const std::string& zLeft, const std::string& zRight) {
    return zLeft == zRight || Readable(zLeft).compare(Readable(zRight), Qt::CaseInsensitive) == 0;
}

std::string MakeValidUtf8(const std::string& zText) {
    return Decode(zText).toUtf8().toStdString();
}

namespace {

std::string FolderIn(std::string zBase) {
    AddTrailingSeparator(zBase);
    return zBase + kFolderName;
}

std::string MakeDocumentsFolder() {
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    // A fresh home has no documents folder yet.
    QDir().mkpath(documents);
    std::string path = FolderIn(documents.toStdString());
    MakeFolder(path);
    return path;
}

/// Makes the folder if it is missing. Whether it then is a folder of this user, closed to all others.
bool MakePrivateFolder(const std::string& zPath) {
    ::mkdir(zPath.c_str(), kPrivateMode);
    const int descriptor = ::open(zPath.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor == -1) {
        return false;
    }

    struct stat info {};

    const bool ours = ::fstat(descriptor, &info) == 0 && info.st_uid == ::geteuid() &&
                      ::fchmod(descriptor, kPrivateMode) == 0;
    ::close(descriptor);
    return ours;
}

std::string MakeTempFolder() {
    std::error_code error;
    const std::filesystem::path base = std::filesystem::temp_directory_path(error);
    std::string path = FolderIn(error || base.is_relative() ? "/tmp" : base.string());
    if (MakePrivateFolder(path)) {
        return path;
    }
    // Even when no fresh one can be made, somebody else's folder is not taken.
    std::string fresh = path + "-XXXXXX";
    [[maybe_unused]] const char* const made = ::mkdtemp(fresh.data());
    return fresh;
}

} // namespace

const std::string& GetDocumentsFolder() {
    static const std::string path = MakeDocumentsFolder();
    return path;
}

std::string GetTempFolder() {
    static std::string path = MakeTempFolder();
    if (!MakePrivateFolder(path)) {
        path = MakeTempFolder();
    }
    return path;
}

void ConvertNameForDevice(const std::string& zName, std::string& zrOut) {
    const QString name = Decode(zName).normalized(QString::NormalizationForm_C);
    zrOut.clear();
    for (const QChar unit : name) {
        AppendDeviceSpelling(unit.unicode(), zrOut);
    }
}

void OSX10_x::pauseThread(float zSeconds) {
    // Far beyond any pause, and still within what the clock can count.
    constexpr float kLongest = 1e6F;
    if (zSeconds > 0) {
        std::this_thread::sleep_for(std::chrono::duration<float>(std::min(zSeconds, kLongest)));
    }
}

bool OSX10_x::scanInteger(std::int32_t& zrValue, const std::string& zText, std::size_t& zrPosition) {
    std::size_t position = std::min(zText.find_first_not_of(" \t\n\v\f\r", zrPosition), zText.size());
    const bool negative = zText.compare(position, 1, "-") == 0;
    if (negative || zText.compare(position, 1, "+") == 0) {
        ++position;
    }
    const std::size_t firstDigit = position;
    std::uint32_t value = 0;
    while (position < zText.size() && zText[position] >= '0' && zText[position] <= '9') {
        value = value * 10 + static_cast<std::uint32_t>(zText[position++] - '0');
    }
    if (position == firstDigit) {
        return false;
    }
    zrValue = static_cast<std::int32_t>(negative ? 0 - value : value);
    zrPosition = position;
    return true;
}

std::any OSX10_x::numberWithInteger(std::int32_t zValue) {
    return zValue;
}
