#pragma once

#include <csignal>
#include <sys/resource.h>

/// Lowers one limit of this process for a while: RLIMIT_FSIZE plays a full disk, RLIMIT_AS a full memory.
class LoweredLimit {
public:
    LoweredLimit(__rlimit_resource resource, rlim_t limit) : mResource(resource) {
        ::getrlimit(mResource, &mBefore);
        const rlimit lowered{limit, mBefore.rlim_max};
        ::setrlimit(mResource, &lowered);
        // A write beyond the limit fails only where the signal does not end the process.
        mHandler = std::signal(SIGXFSZ, SIG_IGN);
    }

    ~LoweredLimit() {
        ::setrlimit(mResource, &mBefore);
        std::signal(SIGXFSZ, mHandler);
    }

    LoweredLimit(const LoweredLimit&) = delete;
    LoweredLimit& operator=(const LoweredLimit&) = delete;

private:
    __rlimit_resource mResource;
    rlimit mBefore{};
    void (*mHandler)(int) = nullptr;
};
