#include "TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace {

/// Where the handler writes; a handler can reach nothing but what is static.
volatile std::sig_atomic_t sWakeUpFd = -1;

extern "C" void NoteSignal(int /*zSignal*/) {
    const int formerError = errno;
    const char byte = 1;
    // A full pipe already holds what will wake the event loop.
    [[maybe_unused]] const ssize_t written = ::write(static_cast<int>(sWakeUpFd), &byte, 1);
    errno = formerError;
}

bool IsIgnored(const struct sigaction& zrAction) {
    return (zrAction.sa_flags & SA_SIGINFO) == 0 && zrAction.sa_handler == SIG_IGN;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> zOnSignal) : mOnSignal(std::move(zOnSignal)) {
    if (::pipe2(mPipe.data(), O_NONBLOCK | O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    sWakeUpFd = mPipe[1];
    mpNotifier = std::make_unique<QSocketNotifier>(mPipe[0], QSocketNotifier::Read);
    QObject::connect(mpNotifier.get(), &QSocketNotifier::activated, mpNotifier.get(),
                     [this] { OnReadable(); });

    struct sigaction action = {};
    action.sa_handler = NoteSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals.at(i), nullptr, &mFormer.at(i));
        if (!IsIgnored(mFormer.at(i))) {
            ::sigaction(kSignals.at(i), &action, nullptr);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals.at(i), &mFormer.at(i), nullptr);
    }
    mpNotifier.reset();
    sWakeUpFd = -1;
    ::close(mPipe[0]);
    ::close(mPipe[1]);
}

void TerminationSignals::OnReadable() {
    std::array<char, 64> bytes = {};
    while (::read(mPipe[0], bytes.data(), bytes.size()) > 0) {
    }
    // A copy, since the call may end the object that it is kept in.
    const std::function<void()> onSignal = mOnSignal;
    onSignal();
}
