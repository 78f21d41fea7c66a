#include "PrivateMounts.h"

#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace {

/// The rights in force among the first 32, after those in zDropped are given up and those in zAdded taken.
unsigned ChangeRights(unsigned zDropped, unsigned zAdded) {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    std::array<__user_cap_data_struct, 2> rights{};
    if (::syscall(SYS_capget, &header, rights.data()) != 0) {
        throw std::runtime_error("cannot ask for the rights of the test");
    }
    const unsigned before = rights[0].effective;
    rights[0].effective = (before & ~zDropped) | zAdded;
    if (::syscall(SYS_capset, &header, rights.data()) != 0) {
        throw std::runtime_error("cannot change the rights of the test");
    }
    return before;
}

constexpr unsigned kPermissionRights = 1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH | 1U << CAP_FOWNER;

} // namespace

bool EnterPrivateMounts() {
    static const bool entered =
        ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return entered;
}

Mount::Mount(std::string path, const char* source, const char* type, unsigned long flags, const char* data)
    : mPath(std::move(path)) {
    if (::mount(source, mPath.c_str(), type, flags, data) != 0) {
        throw std::runtime_error("cannot mount at " + mPath);
    }
}

Mount Mount::Disk(const std::string& folder, const std::string& size) {
    std::filesystem::create_directory(folder);
    return {folder, "disk", "tmpfs", 0, ("size=" + size).c_str()};
}

Mount Mount::Device(const std::string& path, const std::string& device) {
    std::ofstream(path).close();
    return {path, device.c_str(), nullptr, MS_BIND, nullptr};
}

Mount::~Mount() {
    ::umount2(mPath.c_str(), MNT_DETACH);
}

void Mount::MakeReadOnly() const {
    if (::mount(nullptr, mPath.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
        throw std::runtime_error("cannot make read-only: " + mPath);
    }
}

OrdinaryUser::OrdinaryUser() : mBefore(ChangeRights(kPermissionRights, 0)) {}

OrdinaryUser::~OrdinaryUser() {
    ChangeRights(0, mBefore & kPermissionRights);
}
