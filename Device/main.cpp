#include "Announcer.h"
#include "FileServer.h"
#include "Log.h"
#include "Options.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>
#include <sys/signalfd.h>

namespace {

constexpr int kStatusFailed = 1;
constexpr int kStatusUsage = 2;

/// Turns SIGINT and SIGTERM into a readable descriptor, so that the event loop and not a signal handler
/// ends the program. A closed log is no reason to end.
int WatchSignals() {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGINT);
    sigaddset(&ending, SIGTERM);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return ::signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
}

int Complain(const std::string& message, int status) {
    static_cast<void>(std::fputs(("quillbox-device: " + message + '\n').c_str(), stderr));
    return status;
}

int Serve(const Options& options) {
    FileServer server({FileTree(QFile::encodeName(options.root).toStdString()), options.identity, PrintLine});
    const std::string error = server.Listen(options.address, options.port);
    if (!error.empty()) {
        return Complain("cannot listen on " + options.address.toString().toStdString() + ": " + error,
                        kStatusFailed);
    }
    PrintLine("listening on " + server.Endpoint());
    if (options.announcements.toGroup && options.address.isLoopback()) {
        PrintLine("only this machine can connect; --address 0.0.0.0 lets the network in");
    }
    std::optional<Announcer> announcer;
    if (!options.announcements.IsEmpty()) {
        announcer.emplace(FormatAnnouncement(options.identity.name, server.Port()), options.announcements,
                          PrintLine);
    }
    return QCoreApplication::exec();
}

int Run(int argc, char** argv) {
    const int signalFile = WatchSignals();
    const QCoreApplication application(argc, argv);
    const Options options = ReadOptions(QCoreApplication::arguments());
    if (options.helpWanted) {
        static_cast<void>(std::fputs(options.message.c_str(), stdout));
        return 0;
    }
    if (!options.message.empty()) {
        return Complain(options.message, kStatusUsage);
    }
    const QSocketNotifier ending(signalFile, QSocketNotifier::Read);
    QObject::connect(&ending, &QSocketNotifier::activated, &application, &QCoreApplication::quit);
    return Serve(options);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        return Complain(error.what(), kStatusFailed);
    }
}
