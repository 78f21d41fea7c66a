#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Uploads on their way have names that begin like this.
inline constexpr std::string_view kUnfinishedPrefix = ".quillbox-upload-";

/// Why a path that FileTree does not locate is not served.
inline constexpr const char* kPathRefused = "path refused";

/// One line of a folder's listing.
struct TreeEntry {
    std::string name;
    std::string date; ///< Local time, "2024-05-01 17:30".
    std::uint64_t size = 0;
    bool isFolder = false;
};

/// What lies below a folder. Folders themselves count for nothing.
struct TreeTotals {
    std::uint64_t size = 0;
    std::uint64_t files = 0;
};

/// The served folder, and the only way from a client's path to one of this machine. Nothing outside of the
/// root is reached, neither by ".." nor by a link; links that stay inside are followed.
class FileTree {
public:
    /// Takes an existing folder; throws std::filesystem::filesystem_error for anything else.
    explicit FileTree(const std::filesystem::path& root);

    const std::filesystem::path& Root() const { return mRoot; }

    /// The local path of a device path, which need not exist; none when the path is refused: it does not
    /// begin with "User", has a component that CanServe refuses, or leaves the root through a link.
    std::optional<std::filesystem::path> Locate(std::string_view devicePath) const;

    /// The same, except that a link in the last place is meant itself and not where it leads, and that the
    /// root is refused: for what removes or moves an entry.
    std::optional<std::filesystem::path> LocateEntry(std::string_view devicePath) const;

    /// The files and folders in a folder, sorted by the bytes of their names; nothing for what is no folder.
    /// Links that lead outside or nowhere, and anything that is neither file nor folder, are no entries.
    /// Every name that CanServe refuses is reported to passedOver.
    std::vector<TreeEntry> List(const std::filesystem::path& folder,
                                const std::function<void(const std::string&)>& passedOver) const;

    /// The files in the whole tree below a folder that listings show; a file counts as itself. Links to
    /// folders are not followed, since they may run in a circle.
    TreeTotals Total(const std::filesystem::path& path) const;

    /// Makes a folder and those above it that are missing; nothing happens when it exists. This and the next
    /// two return why they failed, "" when they did not.
    std::string MakeFolder(std::string_view devicePath) const;

    /// Removes a file, a link, or a folder with everything in it.
    std::string Remove(std::string_view devicePath) const;

    /// Moves an entry to a path that is free and whose folder exists.
    std::string Rename(std::string_view from, std::string_view to) const;

    /// Whether a name can stand in a listing and in a command: not empty, "." or "..", free of quotes, angle
    /// brackets, slashes and zero bytes, and not one of an unfinished upload.
    static bool CanServe(std::string_view name);

private:
    bool IsInside(const std::filesystem::path& canonical) const;
    std::optional<std::filesystem::path> FollowLink(const std::filesystem::path& path) const;
    std::optional<TreeEntry> Describe(const std::filesystem::path& path) const;

    std::filesystem::path mRoot;
};
