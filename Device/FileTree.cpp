#include "FileTree.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <system_error>

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kRootName = "User";

/// The path below the root, or none when it does not begin with the root's name.
std::optional<std::string_view> CutRootName(std::string_view devicePath) {
    if (!devicePath.starts_with(kRootName)) {
        return std::nullopt;
    }
    devicePath.remove_prefix(kRootName.size());
    if (!devicePath.empty() && devicePath.front() != '/') {
        return std::nullopt;
    }
    return devicePath;
}

/// Takes the next component off the path; "" at its end. Slashes may be doubled.
std::string_view TakeComponent(std::string_view& path) {
    path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
    const std::string_view component = path.substr(0, path.find('/'));
    path.remove_prefix(component.size());
    return component;
}

std::string FormatDate(std::time_t time) {
    std::tm parts{};
    std::string text(sizeof "2024-05-01 17:30", '\0');
    if (::localtime_r(&time, &parts) == nullptr) {
        return "";
    }
    text.resize(std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &parts));
    return text;
}

std::string Why(const std::error_code& error) {
    return error ? error.message() : "";
}

/// Calls visit for each entry of a folder; a folder that cannot be read has none.
void ForEachEntry(const fs::path& folder, const std::function<void(const fs::directory_entry&)>& visit) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    while (!error && entry != fs::directory_iterator()) {
        visit(*entry);
        entry.increment(error);
    }
}

} // namespace

FileTree::FileTree(const fs::path& root) : mRoot(fs::canonical(root)) {
    if (!fs::is_directory(mRoot)) {
        throw fs::filesystem_error("not a folder", mRoot, std::make_error_code(std::errc::not_a_directory));
    }
}

std::optional<fs::path> FileTree::Locate(std::string_view devicePath) const {
    std::optional<std::string_view> rest = CutRootName(devicePath);
    if (!rest) {
        return std::nullopt;
    }
    std::optional<fs::path> path = mRoot;
    // Every link is resolved where it stands, so that what follows is looked up in a real folder.
    for (std::string_view name = TakeComponent(*rest); path && !name.empty(); name = TakeComponent(*rest)) {
        path = CanServe(name) ? FollowLink(*path / name) : std::nullopt;
    }
    return path;
}

std::optional<fs::path> FileTree::LocateEntry(std::string_view devicePath) const {
    while (devicePath.ends_with('/')) {
        devicePath.remove_suffix(1);
    }
    const std::size_t slash = devicePath.rfind('/');
    if (slash == std::string_view::npos || !Locate(devicePath)) {
        return std::nullopt;
    }
    const std::optional<fs::path> folder = Locate(devicePath.substr(0, slash));
    return folder ? std::optional(*folder / devicePath.substr(slash + 1)) : std::nullopt;
}

std::vector<TreeEntry> FileTree::List(const fs::path& folder,
                                      const std::function<void(const std::string&)>& passedOver) const {
    std::vector<TreeEntry> entries;
    ForEachEntry(folder, [&](const fs::directory_entry& entry) {
        const std::string name = entry.path().filename().string();
        if (!CanServe(name)) {
            passedOver(name);
        } else if (std::optional<TreeEntry> described = Describe(entry.path())) {
            entries.push_back(std::move(*described));
        }
    });
    std::ranges::sort(entries, {}, &TreeEntry::name);
    return entries;
}

TreeTotals FileTree::Total(const fs::path& path) const {
    TreeTotals totals;
    const std::optional<TreeEntry> self = Describe(path);
    if (!self) {
        return totals;
    }
    if (!self->isFolder) {
        return {self->size, 1};
    }
    // A list of folders to visit instead of recursion: the depth of a tree is not for us to trust.
    std::vector<fs::path> folders{path};
    while (!folders.empty()) {
        const fs::path folder = std::move(folders.back());
        folders.pop_back();
        ForEachEntry(folder, [&](const fs::directory_entry& entry) {
            const bool servable = CanServe(entry.path().filename().string());
            const std::optional<TreeEntry> described = servable ? Describe(entry.path()) : std::nullopt;
            if (described && !described->isFolder) {
                totals.size += described->size;
                ++totals.files;
            } else if (described && !entry.is_symlink()) {
                folders.push_back(entry.path());
            }
        });
    }
    return totals;
}

std::string FileTree::MakeFolder(std::string_view devicePath) const {
    const std::optional<fs::path> path = Locate(devicePath);
    if (!path) {
        return kPathRefused;
    }
    std::error_code error;
    fs::create_directories(*path, error);
    return Why(error);
}

std::string FileTree::Remove(std::string_view devicePath) const {
    const std::optional<fs::path> path = LocateEntry(devicePath);
    if (!path) {
        return kPathRefused;
    }
    std::error_code error;
    const bool found = fs::remove_all(*path, error) > 0;
    return error || found ? Why(error) : "no such file or folder";
}

std::string FileTree::Rename(std::string_view from, std::string_view to) const {
    const std::optional<fs::path> oldPath = LocateEntry(from);
    const std::optional<fs::path> newPath = LocateEntry(to);
    if (!oldPath || !newPath) {
        return kPathRefused;
    }
    std::error_code error;
    if (fs::exists(fs::symlink_status(*newPath, error))) {
        return "the new name is taken";
    }
    fs::rename(*oldPath, *newPath, error);
    return Why(error);
}

bool FileTree::CanServe(std::string_view name) {
    constexpr std::string_view kInexpressible{"\"<>/\0", 5};
    return !name.empty() && name != "." && name != ".." && !name.starts_with(kUnfinishedPrefix) &&
           name.find_first_of(kInexpressible) == std::string_view::npos;
}

bool FileTree::IsInside(const fs::path& canonical) const {
    return std::ranges::mismatch(mRoot, canonical).in1 == mRoot.end();
}

/// The path itself, or where it leads when it is a link; none when that is outside or nowhere.
std::optional<fs::path> FileTree::FollowLink(const fs::path& path) const {
    std::error_code error;
    if (!fs::is_symlink(fs::symlink_status(path, error))) {
        return path;
    }
    fs::path target = fs::canonical(path, error);
    if (error || !IsInside(target)) {
        return std::nullopt;
    }
    return target;
}

std::optional<TreeEntry> FileTree::Describe(const fs::path& path) const {
    const std::optional<fs::path> target = FollowLink(path);

    struct stat status {};

    if (!target || ::stat(target->c_str(), &status) != 0) {
        return std::nullopt;
    }
    const bool isFolder = S_ISDIR(status.st_mode);
    if (!isFolder && !S_ISREG(status.st_mode)) {
        return std::nullopt;
    }
    return TreeEntry{path.filename().string(), FormatDate(status.st_mtime),
                     isFolder ? 0 : static_cast<std::uint64_t>(status.st_size), isFolder};
}
