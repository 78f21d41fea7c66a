#pragma once

#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>

/// A pipe with a name: whoever opens it waits for the other end, for ever.
inline void MakePipe(const std::string& path) {
    if (::mkfifo(path.c_str(), 0600) != 0) {
        throw std::runtime_error("cannot make the pipe " + path);
    }
}

inline void MakeSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool made = ::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(socket);
    if (!made) {
        throw std::runtime_error("cannot make the socket " + path);
    }
}

/// Notes whether anyone opens a file, in whatever way.
class OpenWatch {
public:
    explicit OpenWatch(const std::string& path) : mQueue(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (::inotify_add_watch(mQueue, path.c_str(), IN_OPEN) == -1) {
            throw std::runtime_error("cannot watch " + path);
        }
    }

    ~OpenWatch() { ::close(mQueue); }

    OpenWatch(const OpenWatch&) = delete;
    OpenWatch& operator=(const OpenWatch&) = delete;

    /// Since the last call of this.
    bool WasOpened() const {
        alignas(inotify_event) char events[4096];
        bool opened = false;
        for (ssize_t size = 0; (size = ::read(mQueue, events, sizeof events)) > 0;) {
            for (ssize_t place = 0; place < size;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(events + place);
                opened = opened || (event->mask & IN_OPEN) != 0;
                place += static_cast<ssize_t>(sizeof *event + event->len);
            }
        }
        return opened;
    }

private:
    int mQueue;
};
