#include "CommonUtils_OSX.h"

#include "Hermetic.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace {

/// While one exists, folders are listed as by an awkward file system: without types, and with "." and ".."
/// once more at the end.
class AwkwardListing {
public:
    AwkwardListing() { sActive = true; }

    ~AwkwardListing() { sActive = false; }

    AwkwardListing(const AwkwardListing&) = delete;
    AwkwardListing& operator=(const AwkwardListing&) = delete;

    static dirent* Read(DIR* folder) {
        static const auto systemReaddir = reinterpret_cast<dirent* (*)(DIR*)>(::dlsym(RTLD_NEXT, "readdir"));
        dirent* const entry = systemReaddir(folder);
        if (!sActive) {
            return entry;
        }
        static dirent copy;
        static std::size_t extra;
        if (entry != nullptr) {
            extra = 0;
            copy = *entry;
        } else if (extra < 2) {
            std::memcpy(copy.d_name, "..", 3);
            copy.d_name[++extra] = '\0';
        } else {
            return nullptr;
        }
        copy.d_type = DT_UNKNOWN;
        return &copy;
    }

private:
    static inline bool sActive = false;
};

/// While active, this process seems to belong to a user who owns none of its files.
struct OtherUser {
    static inline bool sActive = false;
};

} // namespace

// These take the place of the library's functions in this program.
extern "C" dirent* readdir(DIR* folder) {
    return AwkwardListing::Read(folder);
}

extern "C" uid_t geteuid() noexcept {
    return OtherUser::sActive ? 4711 : ::getuid();
}

namespace {

std::vector<std::string> Names(cDirIterator& iterator) {
    std::vector<std::string> names;
    for (bool found = iterator.First(); found; found = iterator.Next()) {
        names.push_back(iterator.GetName());
    }
    return names;
}

/// Moves on to the entry of this name.
bool GoTo(cDirIterator& iterator, const std::string& name) {
    bool found = iterator.First();
    while (found && iterator.GetName() != name) {
        found = iterator.Next();
    }
    return found;
}

TEST(DirIterator, HasNoEntriesWithoutFolder) {
    const TestFolder folder;
    for (const std::string& path : {folder / "missing", folder.Write("file", "x"), std::string(),
                                    folder.Path().string() + '\0' + "x"}) {
        EXPECT_FALSE(cDirIterator(path).First()) << path;
    }
}

TEST(DirIterator, FindsNoEntryInAnEmptyFolder) {
    const TestFolder folder;
    EXPECT_FALSE(cDirIterator(folder.Path().string()).First());
}

TEST(DirIterator, StartsAgainWithFirst) {
    const TestFolder folder;
    folder.Write("a", "");
    folder.Write(".hidden", "");
    cDirIterator iterator(folder.Path().string());
    const auto isOwn = [](const std::string& name) { return name != "." && name != ".."; };
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(iterator.First());
        EXPECT_TRUE(isOwn(iterator.GetName()));
    }
    EXPECT_THAT(Names(iterator), ::testing::IsSupersetOf({"a", ".hidden"}));
}

TEST(DirIterator, DoesNotPassOverDotsAfterTheFirstEntry) {
    const TestFolder folder;
    folder.Write("a", "");
    cDirIterator iterator(folder.Path().string());
    const AwkwardListing awkward;
    EXPECT_THAT(Names(iterator), ::testing::IsSupersetOf({"a", ".", ".."}));
}

TEST(DirIterator, HasNoNameBeyondTheEnds) {
    const TestFolder folder;
    folder.Write("a", "");
    cDirIterator iterator(folder.Path().string());
    EXPECT_EQ(iterator.GetName(), "");
    EXPECT_FALSE(iterator.IsFolder());
    Names(iterator);
    EXPECT_EQ(iterator.GetName(), "");
    EXPECT_FALSE(iterator.IsFolder());
}

void ExpectOnlyRealFolders(const TestFolder& folder) {
    cDirIterator iterator(folder.Path().string());
    const std::vector<std::pair<std::string, bool>> cases = {
        {"folder", true}, {"file", false}, {"link to folder", false}, {"pipe", false}};
    for (const auto& [name, expected] : cases) {
        ASSERT_TRUE(GoTo(iterator, name)) << name;
        EXPECT_EQ(iterator.IsFolder(), expected) << name;
    }
}

TEST(DirIterator, KnowsFoldersFromFilesAndLinks) {
    const TestFolder folder;
    fs::create_directory(folder / "folder");
    folder.Write("file", "x");
    fs::create_directory_symlink("folder", folder / "link to folder");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    ExpectOnlyRealFolders(folder);
    const AwkwardListing awkward;
    ExpectOnlyRealFolders(folder);
}

TEST(DirIteratorDeathTest, NeedsAnOpenFolder) {
    cDirIterator iterator("/nowhere/at/all");
    const auto aborts = ::testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(iterator.Next(), aborts, "Shared/CommonUtils_OSX:61: failed assertion `mpDir'\n");
    EXPECT_EXIT(iterator.GetName(), aborts, "Shared/CommonUtils_OSX:77: failed assertion `mpDir'\n");
    EXPECT_EXIT(iterator.IsFolder(), aborts, "Shared/CommonUtils_OSX:89: failed assertion `mpDir'\n");
}

struct sFileList {
    std::vector<std::string> files;
    std::uint64_t total = 0;
};

sFileList ListOf(const std::string& folder) {
    sFileList list;
    std::string path = folder;
    GetLocalFileList(path, list.files, list.total);
    EXPECT_EQ(path, folder);
    return list;
}

TEST(GetLocalFileList, AddsNothingForWhatHasNoFiles) {
    const TestFolder folder;
    fs::create_directories(folder / "empty/inside");
    for (const std::string& path :
         {folder / "empty", folder / "missing", folder.Write("file", "x"), std::string()}) {
        const sFileList list = ListOf(path);
        EXPECT_THAT(list.files, ElementsAre()) << path;
        EXPECT_EQ(list.total, 0U) << path;
    }
}

TEST(GetLocalFileList, ListsFilesOfEveryDepthWithTheirSizes) {
    const TestFolder folder;
    const std::vector<std::string> written = {
        folder.Write("top", "1"),      folder.Write(".hidden", "22"),  folder.Write("a/one", "333"),
        folder.Write("a/two", "4444"), folder.Write("a/b/ü", "55555"), folder.Write("back\\/x", "666666"),
        folder.Write("a/b/empty", ""),
    };
    EXPECT_THAT(ListOf(folder.Path().string()).files, ::testing::UnorderedElementsAreArray(written));
    EXPECT_EQ(ListOf(folder.Path().string()).total, 21U);
    EXPECT_THAT(ListOf(folder / "back\\").files, ElementsAre(folder / "back\\/x"));
}

TEST(GetLocalFileList, StopsWhenItIsTold) {
    const TestFolder folder;
    for (const char* name : {"a/1", "a/2", "b/3", "b/4"}) {
        folder.Write(name, "x");
    }
    std::vector<std::string> files;
    std::uint64_t total = 0;
    std::string path = folder.Path().string();
    GetLocalFileList(path, files, total, [&files] { return files.size() < 2; });
    EXPECT_THAT(files, SizeIs(2));
    EXPECT_EQ(total, 2U);
    EXPECT_EQ(path, folder.Path().string());
}

TEST(GetLocalFileList, StopsWithinOneFolder) {
    const TestFolder folder;
    for (int number = 0; number < 50; ++number) {
        folder.Write(std::to_string(number), "x");
    }
    std::vector<std::string> files;
    std::uint64_t total = 0;
    std::string path = folder.Path().string();
    int asked = 0;
    GetLocalFileList(path, files, total, [&asked] { return ++asked < 10; });
    EXPECT_THAT(files, IsEmpty());
    EXPECT_LT(asked, 20);
}

TEST(GetLocalFileList, AddsToWhatIsThere) {
    const TestFolder folder;
    const std::string file = folder.Write("file", "123");
    std::vector<std::string> files = {"before"};
    std::uint64_t total = 0xFFFF'FFFF;
    std::string path = folder.Path().string() + "/";
    GetLocalFileList(path, files, total);
    EXPECT_THAT(files, ElementsAre("before", file));
    EXPECT_EQ(total, 0x1'0000'0002U);
}

TEST(GetLocalFileList, DoesNotFollowLinks) {
    const TestFolder folder;
    const std::string file = folder.Write("folder/file", "x");
    fs::create_directory_symlink("..", folder / "folder/up");
    EXPECT_THAT(ListOf(folder.Path().string()).files, UnorderedElementsAre(file, folder / "folder/up"));
    const AwkwardListing awkward;
    EXPECT_THAT(ListOf(folder.Path().string()).files, UnorderedElementsAre(file, folder / "folder/up"));
}

/// Makes folders named "d", one in another, and a file "leaf" in each 800th. Deeper than any path can be.
void MakeDeepTree(const std::string& path, int depth) {
    int current = ::open(path.c_str(), O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < depth; ++level) {
        ASSERT_EQ(::mkdirat(current, "d", 0700), 0);
        const int next = ::openat(current, "d", O_DIRECTORY | O_CLOEXEC);
        if (level % 800 == 0) {
            ::close(::openat(current, "leaf", O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
        }
        ::close(current);
        current = next;
    }
    ::close(current);
}

TEST(GetLocalFileList, EndsInFoldersNestedDeeperThanAPathCanBe) {
    const TestFolder folder;
    MakeDeepTree(folder.Path().string(), 2200);
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &old), 0);
    const rlimit fewOpenFiles{64, old.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &fewOpenFiles), 0);
    const sFileList list = ListOf(folder.Path().string());
    ::setrlimit(RLIMIT_NOFILE, &old);
    // Levels 0, 800 and 1600 are within reach of a path of 4096 bytes.
    EXPECT_EQ(list.files.size(), 3U);
    EXPECT_TRUE(DeleteLocalFile(folder / "d"));
}

bool IsReadAsRegularFile(const std::string& path) {
    std::FILE* const stream = OpenRegularFile(path);
    return stream != nullptr && std::fclose(stream) == 0;
}

TEST(PathTests, TellWhatIsThere) {
    const TestFolder folder;
    folder.Write("file", "12345");
    fs::create_directory(folder / "folder");
    fs::create_symlink("file", folder / "link to file");
    fs::create_symlink("folder", folder / "link to folder");
    fs::create_symlink("nothing", folder / "dangling");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);

    struct sCase {
        std::string name;
        bool exists;
        bool isFolder;
        bool isRegular;
    };

    const std::vector<sCase> cases = {
        {"file", true, false, true},
        {"folder", true, true, false},
        {"link to file", true, false, true},
        {"link to folder", true, true, false},
        {"dangling", false, false, false},
        {"missing", false, false, false},
        {"file/below", false, false, false},
        {"pipe", true, false, false},
        {std::string("file\0x", 6), false, false, false},
    };

    for (const auto& entry : cases) {
        EXPECT_EQ(FileExists(folder / entry.name), entry.exists) << entry.name;
        EXPECT_EQ(IsFolder(folder / entry.name), entry.isFolder) << entry.name;
        EXPECT_EQ(IsRegularFile(folder / entry.name), entry.isRegular) << entry.name;
        EXPECT_EQ(IsReadAsRegularFile(folder / entry.name), entry.isRegular) << entry.name;
    }
}

TEST(PathTests, DoNotTakeDevicesAndSocketsForFoldersOrFiles) {
    const TestFolder folder;
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    (folder / "socket").copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ::close(socket);
    for (const std::string& path : {folder / "socket", std::string("/dev/null")}) {
        EXPECT_FALSE(IsFolder(path)) << path;
        EXPECT_FALSE(IsRegularFile(path)) << path;
        EXPECT_FALSE(IsReadAsRegularFile(path)) << path;
        EXPECT_FALSE(MakeFolder(path)) << path;
    }
}

TEST(GetFileSize, CountsBytesModulo32Bits) {
    const TestFolder folder;
    EXPECT_EQ(GetFileSize(folder.Write("file", "12345")), 5U);
    EXPECT_EQ(GetFileSize(folder / "missing"), 0U);
    const std::string large = folder.Write("large", "");
    fs::resize_file(large, 0x1'0000'0007);
    EXPECT_EQ(GetFileSize(large), 7U);
}

TEST(RenameFile, ReplacesWhatHasTheName) {
    const TestFolder folder;
    folder.Write("old", "old");
    folder.Write("new", "new");
    EXPECT_TRUE(RenameFile(folder / "new", folder / "old"));
    EXPECT_EQ(folder.Read("old"), "new");
    EXPECT_FALSE(fs::exists(folder / "new"));
    EXPECT_FALSE(RenameFile(folder / "missing", folder / "old"));
    EXPECT_FALSE(RenameFile(folder / "old", (folder / "other") + '\0' + "x"));
    EXPECT_EQ(folder.Read("old"), "new");
}

TEST(DeleteLocalFile, RemovesFilesAndWholeFolders) {
    const TestFolder folder;
    const std::string file = folder.Write("file", "x");
    folder.Write("folder/a/b/c", "x");
    EXPECT_TRUE(DeleteLocalFile(file));
    EXPECT_TRUE(DeleteLocalFile(folder / "folder"));
    EXPECT_TRUE(fs::is_empty(folder.Path()));
    EXPECT_FALSE(DeleteLocalFile(file));
}

TEST(DeleteLocalFile, RemovesLinksAndNotWhereTheyLead) {
    const TestFolder folder;
    const std::string kept = folder.Write("kept/file", "x");
    fs::create_directory(folder / "folder");
    for (const std::string name : {"link", "linked/", "folder/link"}) {
        fs::path link = folder / name;
        fs::create_symlink(folder / "kept", name.back() == '/' ? link.parent_path() : link);
    }
    EXPECT_TRUE(DeleteLocalFile(folder / "link"));
    EXPECT_TRUE(DeleteLocalFile(folder / "linked/"));
    EXPECT_TRUE(DeleteLocalFile(folder / "folder"));
    EXPECT_TRUE(fs::exists(kept));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator()), 1);
}

/// The working folder for the time of a test, in which short paths name files of the test.
class WorkingFolder {
public:
    explicit WorkingFolder(const fs::path& folder) : mOld(fs::current_path()) { fs::current_path(folder); }

    ~WorkingFolder() { fs::current_path(mOld); }

    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    fs::path mOld;
};

TEST(DeleteLocalFile, RefusesPathsShorterThan9Bytes) {
    const TestFolder folder;
    const WorkingFolder working(folder.Path());
    folder.Write("12345678", "x");
    folder.Write("123456789", "x");
    EXPECT_FALSE(DeleteLocalFile("12345678"));
    EXPECT_TRUE(fs::exists("12345678"));
    EXPECT_TRUE(DeleteLocalFile("123456789"));
    EXPECT_FALSE(fs::exists("123456789"));
    EXPECT_FALSE(DeleteLocalFile(""));
}

TEST(DeleteLocalFile, IsNotTakenInByAZeroByte) {
    const TestFolder folder;
    const std::string file = folder.Write("file", "x");
    EXPECT_FALSE(DeleteLocalFile(file + '\0' + "x"));
    EXPECT_TRUE(fs::exists(file));
}

TEST(MakeFolder, MakesOneLevel) {
    const TestFolder folder;
    EXPECT_FALSE(MakeFolder(folder / "a/b"));
    EXPECT_TRUE(MakeFolder(folder / "a"));
    EXPECT_TRUE(MakeFolder(folder / "a/b"));
    EXPECT_TRUE(MakeFolder(folder / "a"));
    EXPECT_TRUE(fs::is_directory(folder / "a/b"));
    EXPECT_FALSE(MakeFolder(folder.Write("file", "x")));
    EXPECT_FALSE(MakeFolder((folder / "c") + '\0' + "x"));
    EXPECT_FALSE(fs::exists(folder / "c"));
}

TEST(OpenFile, OpensInTheGivenMode) {
    const TestFolder folder;
    std::FILE* stream = OpenFile(folder / "ü", "wb");
    ASSERT_NE(stream, nullptr);
    std::fputs("text", stream);
    std::fclose(stream);
    EXPECT_EQ(folder.Read("ü"), "text");
    EXPECT_EQ(OpenFile(folder / "missing", "rb"), nullptr);
    EXPECT_EQ(OpenFile((folder / "ü") + '\0' + "x", "rb"), nullptr);
}

TEST(OpenFile, HasRoomForPathsBelow1024Bytes) {
    const TestFolder folder;
    const std::string file = folder.Write("f", "x");
    std::string path = folder.Path().string();
    path.append(1023 - path.size() - 2, '/').append("/f");
    ASSERT_EQ(path.size(), 1023U);
    std::FILE* const stream = OpenFile(path, "rb");
    ASSERT_NE(stream, nullptr);
    std::fclose(stream);
    EXPECT_TRUE(FileExists(path));
    path.insert(path.size() - 1, "/");
    EXPECT_EQ(OpenFile(path, "rb"), nullptr);
    EXPECT_EQ(OpenRegularFile(path), nullptr);
    EXPECT_FALSE(FileExists(path));
}

// Between a look at a path and its opening anybody may put a pipe there, which nobody ever writes to.
TEST(OpenRegularFile, NeverWaitsForAPipeThatTakesThePlaceOfAFile) {
    const TestFolder folder;
    const std::string path = folder.Write("file", "x");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::jthread exchanger([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            ::renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, (folder / "pipe").c_str(), RENAME_EXCHANGE);
        }
    });
    int opened = 0;
    for (int attempt = 0; attempt < 20'000; ++attempt) {
        if (std::FILE* const stream = OpenRegularFile(path)) {
            ++opened;
            ASSERT_EQ(std::fgetc(stream), 'x');
            std::fclose(stream);
        }
    }
    EXPECT_GT(opened, 0);
}

// The folders are found once in a run, so each of these checks runs in a process of its own.

void UseHome(const std::string& home) {
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", (home + "/.config").c_str(), 1);
}

void ExpectInNewProcess(bool (*check)(const TestFolder&)) {
    EXPECT_EXIT(std::_Exit([check] {
                    const TestFolder folder;
                    return check(folder) ? 0 : 1;
                }()),
                ::testing::ExitedWithCode(0), "");
}

TEST(FoldersDeathTest, DocumentsFolderIsMadeInAFreshHome) {
    ExpectInNewProcess([](const TestFolder& folder) {
        UseHome(folder / "Ærø 日本");
        const std::string expected = folder / "Ærø 日本/Documents/Quillbox";
        return GetDocumentsFolder() == expected && fs::is_directory(expected);
    });
}

TEST(FoldersDeathTest, DocumentsFolderIsFoundOnce) {
    ExpectInNewProcess([](const TestFolder& folder) {
        UseHome(folder / "one");
        const std::string& first = GetDocumentsFolder();
        UseHome(folder / "two");
        return GetDocumentsFolder() == folder / "one/Documents/Quillbox" && &GetDocumentsFolder() == &first &&
               !fs::exists(folder / "two");
    });
}

TEST(FoldersDeathTest, DocumentsFolderThatCannotBeMadeIsStillNamed) {
    ExpectInNewProcess([](const TestFolder& folder) {
        UseHome(folder.Write("file", "x"));
        return GetDocumentsFolder() == folder / "file/Documents/Quillbox";
    });
}

fs::perms ModeOf(const std::string& path) {
    return fs::symlink_status(path).permissions();
}

bool IsPrivateFolder(const std::string& path) {
    return fs::symlink_status(path).type() == fs::file_type::directory &&
           ModeOf(path) == fs::perms::owner_all;
}

TEST(FoldersDeathTest, TempFolderIsPrivate) {
    ExpectInNewProcess([](const TestFolder& folder) {
        fs::create_directory(folder / "ü");
        ::setenv("TMPDIR", (folder / "ü").c_str(), 1);
        return GetTempFolder() == folder / "ü/Quillbox" && IsPrivateFolder(GetTempFolder());
    });
}

TEST(FoldersDeathTest, TempFolderOfOurOwnIsClosedToOthers) {
    ExpectInNewProcess([](const TestFolder& folder) {
        ::setenv("TMPDIR", folder.Path().c_str(), 1);
        fs::create_directory(folder / "Quillbox");
        fs::permissions(folder / "Quillbox", fs::perms::all);
        return GetTempFolder() == folder / "Quillbox" && IsPrivateFolder(GetTempFolder());
    });
}

/// Whether something at the documented place is left alone and a fresh folder taken instead.
bool TakesFreshFolder(const TestFolder& folder) {
    ::setenv("TMPDIR", folder.Path().c_str(), 1);
    const std::string& path = GetTempFolder();
    return ::testing::Matches(StartsWith(folder / "Quillbox-"))(path) && IsPrivateFolder(path);
}

TEST(FoldersDeathTest, TempFolderIsNotALink) {
    ExpectInNewProcess([](const TestFolder& folder) {
        fs::create_directory(folder / "trap");
        fs::create_directory_symlink("trap", folder / "Quillbox");
        const fs::perms before = ModeOf(folder / "trap");
        return TakesFreshFolder(folder) && ModeOf(folder / "trap") == before;
    });
}

TEST(FoldersDeathTest, TempFolderIsNotAFile) {
    ExpectInNewProcess([](const TestFolder& folder) {
        folder.Write("Quillbox", "x");
        return TakesFreshFolder(folder) && folder.Read("Quillbox") == "x";
    });
}

TEST(FoldersDeathTest, TempFolderIsNotSomebodyElses) {
    ExpectInNewProcess([](const TestFolder& folder) {
        fs::create_directory(folder / "Quillbox");
        const fs::perms before = ModeOf(folder / "Quillbox");
        OtherUser::sActive = true;
        return TakesFreshFolder(folder) && ModeOf(folder / "Quillbox") == before;
    });
}

TEST(FoldersDeathTest, TempFolderOfSomebodyElseIsNotTakenWhenThereIsNoOther) {
    ExpectInNewProcess([](const TestFolder& folder) {
        // The documented name just fits into the longest path of the system, the fresh one does not.
        std::string base = folder.Path().string();
        base.append(4095 - base.size() - std::strlen("Quillbox"), '/');
        ::setenv("TMPDIR", base.c_str(), 1);
        fs::create_directory(base + "Quillbox");
        OtherUser::sActive = true;
        return GetTempFolder() != base + "Quillbox" && !IsFolder(GetTempFolder());
    });
}

} // namespace
