#pragma once

#include <QtCore/QSocketNotifier>

#include <array>
#include <csignal>
#include <functional>
#include <memory>

/// Turns SIGTERM, SIGINT and SIGHUP into a call on the event loop while it lives. A signal that was ignored
/// when the program started (nohup) stays ignored. One object at a time.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> zOnSignal);

    /// Puts the former handlers back.
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    static constexpr std::array<int, 3> kSignals = {SIGTERM, SIGINT, SIGHUP};

private:
    void OnReadable();

    std::function<void()> mOnSignal;
    std::array<int, 2> mPipe = {-1, -1};
    std::array<struct sigaction, kSignals.size()> mFormer = {};
    std::unique_ptr<QSocketNotifier> mpNotifier;
};
