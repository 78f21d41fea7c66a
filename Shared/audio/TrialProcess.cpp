#include "TrialProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace {

constexpr int kBetweenQuestions = 10; // milliseconds

/// The signal that ends this process when it has used a quarter of a second of the processor.
bool LimitWork() {
    const itimerval limit{{0, 0}, {0, 250'000}};
    return std::signal(SIGPROF, SIG_DFL) != SIG_ERR && setitimer(ITIMER_PROF, &limit, nullptr) == 0;
}

/// In the copy, which must not get out of here by an exception. Its word is one byte in the pipe, written
/// when the trial has succeeded; it ends without the clean-up that belongs to the original.
[[noreturn]] void Try(const std::function<bool()>& zTrial, int zPipe) noexcept {
    const bool succeeded = LimitWork() && zTrial() && write(zPipe, "", 1) == 1;
    _exit(succeeded ? EXIT_SUCCESS : EXIT_FAILURE);
}

/// The pipe becomes readable by the word or, without one, by the end of the copy.
bool HearsWord(int zPipe, const std::function<bool()>& zMayGoOn) {
    pollfd readable{zPipe, POLLIN, 0};
    while (poll(&readable, 1, kBetweenQuestions) <= 0) {
        if (zMayGoOn && !zMayGoOn()) {
            return false;
        }
    }
    char word = 0;
    return read(zPipe, &word, 1) == 1;
}

} // namespace

bool SucceedsInTrial(const std::function<bool()>& zTrial, const std::function<bool()>& zMayGoOn) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return false;
    }
    const pid_t copy = fork();
    if (copy == 0) {
        Try(zTrial, ends[1]);
    }
    close(ends[1]);
    const bool succeeded = copy > 0 && HearsWord(ends[0], zMayGoOn);
    close(ends[0]);
    if (copy > 0) {
        kill(copy, SIGKILL);
        waitpid(copy, nullptr, 0);
    }
    return succeeded;
}
