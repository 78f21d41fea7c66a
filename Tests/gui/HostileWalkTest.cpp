#include "CommonUtils_OSX.h"
#include "Hermetic.h"
#include "HostileDevice.h"
#include "ImpatientUser.h"
#include "RiffBytes.h"
#include "SeededChoice.h"
#include "WindowFixture.h"

#include <QtWidgets/QApplication>
#include <gmock/gmock.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;

constexpr const char* kOneSession = "QUILLBOX_TEST_SESSION";
constexpr int kBlocks = 10; // so that they can run side by side

/// How long a session may take at the very most, with a user who cancels within a second. What takes even
/// longer does not run the event loop, in which people could cancel it, and ends the process.
constexpr std::chrono::seconds kBound{60};
constexpr unsigned kHangSeconds = 240;

std::uint64_t NumberFromEnvironment(const char* variable, std::uint64_t otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : std::stoull(text);
}

std::uint64_t Seed() {
    return NumberFromEnvironment("QUILLBOX_TEST_SEED", 1);
}

/// Whether a session is wanted: all, or the only one that is named.
bool IsWanted(std::uint64_t session) {
    return NumberFromEnvironment(kOneSession, session) == session;
}

/// Where a block of the sessions begins; the next one ends it.
std::uint64_t FirstOf(int block) {
    return NumberFromEnvironment("QUILLBOX_TEST_SESSIONS", 300) * static_cast<unsigned>(block) / kBlocks;
}

std::string ContentOf(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Everything below a folder but what is in one of its folders, with the contents.
std::map<std::string, std::string> TreeAround(const fs::path& folder, const fs::path& root) {
    std::map<std::string, std::string> tree;
    for (auto entry = fs::recursive_directory_iterator(root); entry != fs::recursive_directory_iterator();
         ++entry) {
        if (entry->path() == folder) {
            entry.disable_recursion_pending();
        }
        tree[entry->path().string()] = entry->is_regular_file() ? ContentOf(entry->path()) : "";
    }
    return tree;
}

/// The paths that two trees do not have in common, or not with the same content.
std::set<std::string> Differences(const std::map<std::string, std::string>& one,
                                  const std::map<std::string, std::string>& other) {
    std::vector<std::pair<std::string, std::string>> different;
    std::ranges::set_symmetric_difference(one, other, std::back_inserter(different));
    std::set<std::string> paths;
    for (const auto& [path, content] : different) {
        paths.insert(path);
    }
    return paths;
}

std::vector<std::string> TemporaryFilesIn(const fs::path& folder) {
    std::vector<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() == ".tmp") {
            paths.push_back(entry.path().string());
        }
    }
    return paths;
}

/// A user at random with a device at random.
class HostileWalk : public WindowFixture, public ::testing::WithParamInterface<int> {
protected:
    HostileWalk();
    void SetUp() override;

    void RunSession(std::uint64_t zNumber);

    int mArrived = 0;

    HostileDevice& Hostile() { return mHostile; }

private:
    void PrepareSession(std::uint64_t zSeed);
    void Walk();
    void Act();
    bool ConnectToHostile();
    void OpenFolder();
    void DownloadSomething();
    void UploadSomething();
    void DeleteSomething();
    void ClickRows(int zCount);
    void Leave();
    void ExpectNoTraces();
    void ExpectUsable();

    std::string Destination() const { return mFolder / "inner/chosen"; }

    TestFolder mFolder;
    HostileDevice mHostile{mFolder.Path().string()};
    ImpatientUser mUser;
    SeededChoice mChoice{0};
    QTimer mBound;
    fs::path mHome = fs::path(std::getenv("HOME")).parent_path();
    std::map<std::string, std::string> mAround;
};

HostileWalk::HostileWalk() {
    mBound.setSingleShot(true);
    QObject::connect(&mBound, &QTimer::timeout, &mBound, [this] {
        ADD_FAILURE() << "the session has not ended";
        mHostile.EndSession();
        QApplication::closeAllWindows();
    });
}

void HostileWalk::SetUp() {
    WindowFixture::SetUp();
    mFolder.Write("outside.wav", "outside");
    mFolder.Write("inner/outside.wav", "outside");
    mFolder.Write("source/note.txt", "a note");
    mFolder.Write("source/1.wav", WaveBytes({}, std::string(400, '\1')));
    mDevice.AddFile("afterwards.txt", "as usual");
    GetTempFolder(); // which is made by the first who asks
    // Whatever a first connection makes for good.
    ASSERT_TRUE(ConnectTo(mDevice));
    Press("Disconnect");
}

// --- A session ---

void HostileWalk::RunSession(std::uint64_t zNumber) {
    const std::string name = "seed " + std::to_string(Seed()) + ", session " + std::to_string(zNumber);
    SCOPED_TRACE(name);
    std::cout << "Hostile walk: " << name << std::endl; // at once, as the last word of a process that dies
    ::alarm(kHangSeconds);
    PrepareSession(SeededChoice::SeedOf(Seed(), zNumber));
    mBound.start(kBound);
    Walk();
    Leave();
    mBound.stop();
    ExpectNoTraces();
    if (!HasFailure()) {
        ExpectUsable();
    }
    ::alarm(0);
}

void HostileWalk::PrepareSession(std::uint64_t zSeed) {
    mChoice = SeededChoice(zSeed);
    mHostile.BeginSession(zSeed + 1);
    mUser.BeginSession(zSeed + 2);
    fs::remove_all(Destination());
    fs::create_directory(Destination());
    mFolder.Write("inner/chosen/old.wav", "old");
    mAround = TreeAround(Destination(), mHome);
}

void HostileWalk::Walk() {
    ConnectToHostile();
    for (int count = mChoice.Between(2, 8); count > 0 && !HasFailure(); --count) {
        Act();
    }
}

bool HostileWalk::ConnectToHostile() {
    mUser.BeginToWait();
    return ConnectTo(HostileDevice::kAddress);
}

void HostileWalk::Act() {
    if (!mController.IsConnected() && !ConnectToHostile()) {
        return;
    }
    mUser.BeginToWait();
    switch (mChoice.Below(11)) {
    case 0:
    case 1:
        return OpenFolder();
    case 2:
        return Press("Back");
    case 3:
        return Choose("Refresh");
    case 4:
        return UploadSomething();
    case 5:
        return DeleteSomething();
    case 6:
        return Press("Create Folder");
    case 7:
        return Leave();
    default:
        return DownloadSomething();
    }
}

void HostileWalk::OpenFolder() {
    ClickRows(1);
    QTest::keyClick(&Table(), Qt::Key_Return);
}

void HostileWalk::DownloadSomething() {
    if (mChoice.OneIn(3)) {
        QTest::keyClick(&Table(), Qt::Key_A, Qt::ControlModifier);
    } else {
        ClickRows(mChoice.Between(1, 4));
    }
    mPanel.mAnswer = {Destination()};
    Press("Download");
}

void HostileWalk::UploadSomething() {
    mPanel.mAnswer = {mFolder / "source/note.txt", mFolder / "source/1.wav"};
    Press("Upload");
}

void HostileWalk::DeleteSomething() {
    ClickRows(mChoice.Between(1, 3));
    Press("Delete");
}

/// Selects rows near the top, the same one perhaps more than once.
void HostileWalk::ClickRows(int zCount) {
    const int rows = std::min(Table().model()->rowCount(), 60);
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    for (; zCount > 0 && rows > 0; --zCount) {
        const QModelIndex index = Table().model()->index(mChoice.Between(0, rows - 1), 0);
        Table().scrollTo(index);
        QTest::mouseClick(Table().viewport(), Qt::LeftButton, modifiers, Table().visualRect(index).center());
        modifiers = Qt::ControlModifier;
    }
}

void HostileWalk::Leave() {
    if (mController.IsConnected()) {
        Press("Disconnect");
    }
}

// --- What it leaves behind ---

void HostileWalk::ExpectNoTraces() {
    EXPECT_FALSE(mController.IsConnected());
    EXPECT_EQ(TitleInFront(), "");
    // The program's own folder for temporary files is among them.
    EXPECT_THAT(Differences(TreeAround(Destination(), mHome), mAround), IsEmpty()) << "outside the folder";
    EXPECT_THAT(TemporaryFilesIn(Destination()), IsEmpty());
    EXPECT_TRUE(fs::exists(Destination() + "/old.wav")) << "replaced or not, it is there";
    mArrived += static_cast<int>(std::distance(fs::directory_iterator(Destination()), {})) - 1;
}

/// A failure text of the protocol client may end one attempt.
void HostileWalk::ExpectUsable() {
    mUser.WaitPatiently();
    mHostile.EndSession();
    ASSERT_TRUE(ConnectTo(mDevice) || ConnectTo(mDevice)) << Status();
    mPanel.mAnswer = {Destination()};
    SelectRows({"afterwards.txt"});
    Press("Download");
    EXPECT_EQ(mFolder.Read("inner/chosen/afterwards.txt"), "as usual");
    Leave();
}

TEST_P(HostileWalk, HurtsNobody) {
    for (std::uint64_t number = FirstOf(GetParam()); number < FirstOf(GetParam() + 1) && !HasFailure();
         ++number) {
        if (IsWanted(number)) {
            RunSession(number);
        }
    }
    // A walk that comes nowhere would show nothing.
    if (std::getenv(kOneSession) == nullptr) {
        EXPECT_GT(Hostile().CommandCount(), 0);
        EXPECT_GT(mArrived, 0);
    }
    std::cout << "Hostile walk: " << Hostile().CommandCount() << " commands, " << mArrived
              << " files and folders\n";
}

INSTANTIATE_TEST_SUITE_P(Blocks, HostileWalk, ::testing::Range(0, kBlocks));

} // namespace
