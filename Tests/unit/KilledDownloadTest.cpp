#include "Hermetic.h"
#include "RecordingClient.h"
#include "SeededChoice.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

namespace {

constexpr int kKills = 200;
constexpr int kDownloadsInALife = 5;
constexpr std::size_t kSize = 300'000;
constexpr std::size_t kPiece = 1460;
constexpr int kLetters = 26;

/// No two versions have a byte or the length in common.
std::string Version(int number) {
    const int letter = number % kLetters;
    return std::string(kSize + static_cast<std::size_t>(letter), static_cast<char>('a' + letter));
}

bool IsWholeVersion(const std::string& content) {
    return !content.empty() && content.front() >= 'a' && content == Version(content.front() - 'a');
}

void DownloadVersion(const std::string& path, int number) {
    RecordingClient client;
    client.Download(path, "Music", "a.wav");
    const std::string body = Version(number);
    client.Feed(LengthPrefix(static_cast<std::uint32_t>(body.size())));
    FeedInPieces(body, kPiece, [&client](std::string_view piece) { client.Feed(piece); });
}

int MicrosecondsOfADownload(const std::string& path) {
    const auto begin = std::chrono::steady_clock::now();
    DownloadVersion(path, 0);
    const auto taken = std::chrono::steady_clock::now() - begin;
    return static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(taken).count());
}

/// Starts a process that downloads one version after the other until it is killed.
pid_t StartDownloads(const std::string& path, int first) {
    const pid_t process = ::fork();
    if (process == 0) {
        for (int number = first;; ++number) {
            DownloadVersion(path, number);
        }
    }
    return process;
}

/// Kills the process after the given time; whether nothing else had ended it before.
bool KillAfter(pid_t process, std::chrono::microseconds life) {
    std::this_thread::sleep_for(life);
    ::kill(process, SIGKILL);
    int status = 0;
    return ::waitpid(process, &status, 0) == process && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

TEST(KilledDownload, LeavesTheOldFileOrTheNewOneAtEveryMoment) {
    const TestFolder folder;
    const std::string path = folder.Write("a.wav", Version(0));
    const int longestLife = kDownloadsInALife * MicrosecondsOfADownload(path);
    SeededChoice choice(1);
    int interrupted = 0;
    int replaced = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const std::string before = folder.Read("a.wav");
        const pid_t process = StartDownloads(path, kill);
        ASSERT_GT(process, 0);
        ASSERT_TRUE(KillAfter(process, std::chrono::microseconds(choice.Between(0, longestLife))));
        ASSERT_TRUE(IsWholeVersion(folder.Read("a.wav"))) << "after kill " << kill;
        interrupted += std::filesystem::exists(path + ".tmp") ? 1 : 0;
        replaced += folder.Read("a.wav") != before ? 1 : 0;
    }
    // Else the moments would not have been those that matter.
    EXPECT_GT(interrupted, kKills / 10);
    EXPECT_GT(replaced, kKills / 10);
}

TEST(KilledDownload, IsNotInTheWayOfTheNextOne) {
    const TestFolder folder;
    const std::string path = folder.Write("a.wav", Version(0));
    folder.Write("a.wav.tmp", "a part of what was to come");
    DownloadVersion(path, 1);
    EXPECT_EQ(folder.Read("a.wav"), Version(1));
    EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));
}

} // namespace
