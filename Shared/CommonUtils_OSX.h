#pragma once

#include <any>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// The local file system, the per-user folders and the names that the device accepts.
/// Paths are UTF-8 byte strings with "/" as separator.

/// Walks the entries of one local folder, in the order in which the file system lists them.
class cDirIterator {
public:
    /// Opens the folder; a folder that cannot be opened gives an empty walk.
    explicit cDirIterator(std::string zPath);
    ~cDirIterator();
    cDirIterator(const cDirIterator&) = delete;
    cDirIterator& operator=(const cDirIterator&) = delete;

    /// Goes to the first entry that is not "." or ".."; false when there is none or no open folder.
    bool First();

    /// Goes to the next entry, "." and ".." included; false at the end. Needs an open folder.
    bool Next();

    /// The current entry's name. Needs an open folder.
    std::string GetName() const;

    /// Whether the current entry is a folder; a link to a folder is not. Needs an open folder.
    bool IsFolder() const;

private:
    struct sHandle;
    std::string mPath;
    std::unique_ptr<sHandle> mpDir;
};

/// Appends the full path of every file under zrPath, at any depth, to zrFiles and adds their sizes to
/// zrTotal (bytes). zrPath serves as work buffer and comes back unchanged. zMayGoOn, asked before each entry,
/// says false to stop there.
void GetLocalFileList(
    std::string& zrPath, std::vector<std::string>& zrFiles, std::uint64_t& zrTotal,
    const std::function<bool()>& zMayGoOn = [] { return true; });

/// Whether the path can be opened for reading; true for folders as well.
bool FileExists(const std::string& zPath);

/// Size in bytes, modulo 2^32; 0 when the path cannot be examined.
std::uint32_t GetFileSize(const std::string& zPath);

bool IsFolder(const std::string& zPath);

/// Whether the path leads to an ordinary file. Opening anything else (a pipe, a device) may wait for ever.
bool IsRegularFile(const std::string& zPath);

/// Renames; an existing file of the new name is replaced in one step.
bool RenameFile(const std::string& zOldPath, const std::string& zNewPath);

/// Removes a file, or a folder with everything in it. Paths shorter than 9 bytes are refused.
bool DeleteLocalFile(const std::string& zPath);

/// Makes one folder level. Something that exists counts as success if it is a folder.
bool MakeFolder(const std::string& zPath);

/// fopen in the file system's own representation; null also for paths of 1024 bytes and more.
/// The caller closes the stream.
std::FILE* OpenFile(const std::string& zPath, const char* zMode);

/// Opens an ordinary file for reading. Null for anything else, which is not opened, and where OpenFile gives
/// null; a pipe that takes the file's place meanwhile does not make the caller wait either.
/// The caller closes the stream.
std::FILE* OpenRegularFile(const std::string& zPath);

/// The path operations below take separators at the end of a path for no component of their own; the
/// extension is what GetExtension finds, so that the title of ".hidden" is empty.

/// Last path component without its extension.
std::string GetFileTitle(const std::string& zPath);
/// Last path component.
std::string GetFileName(const std::string& zPath);
/// The path without the last component's extension.
std::string RemoveExtension(const std::string& zPath);
/// The path without its last component.
std::string GetParentPath(const std::string& zPath);

/// Whether the first three characters of the path's extension equal zExtension, ignoring case.
bool HasExtension(const std::string& zPath, const std::string& zExtension);

/// Whether the texts are equal, ignoring case.
bool SameTextNoCase(const std::string& zLeft, const std::string& zRight);

/// The text with U+FFFD in place of what is not well-formed UTF-8.
std::string MakeValidUtf8(const std::string& zText);

/// The user's documents folder with its subfolder "Quillbox", which is made on first use together with
/// the folders above it. A folder that cannot be made is still named here; nothing will open in it.
const std::string& GetDocumentsFolder();

/// The system's temporary folder with its subfolder "Quillbox", open to this user only. It is made on first
/// use, and again where somebody has cleaned it away since. Where that name is a link or another user's
/// folder, it is a fresh one beside it: "Quillbox-XXXXXX".
std::string GetTempFolder();

/// The plain ASCII form of a name, as files and folders are called on the device. May be longer than
/// the name; the caller cuts it.
void ConvertNameForDevice(const std::string& zName, std::string& zrOut);

/// Small services of the desktop.
class OSX10_x {
public:
    /// Sleeps the calling thread.
    static void pauseThread(float zSeconds);

    /// Scans a decimal number at zrPosition of zText, skipping white space before it. On success stores it
    /// cut to 32 bits, moves the position behind it and returns true; else leaves both as they are.
    static bool scanInteger(std::int32_t& zrValue, const std::string& zText, std::size_t& zrPosition);

    /// Boxes a number for a record of mixed values.
    static std::any numberWithInteger(std::int32_t zValue);
};
