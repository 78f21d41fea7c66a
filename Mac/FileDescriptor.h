#pragma once

#include <unistd.h>

#include <utility>

/// Owns a descriptor of the system and closes it.
class FileDescriptor {
public:
    explicit FileDescriptor(int zValue = -1) : mValue(zValue) {}

    ~FileDescriptor() { Close(); }

    FileDescriptor(FileDescriptor&& zrOther) noexcept : mValue(std::exchange(zrOther.mValue, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& zrOther) noexcept {
        if (this != &zrOther) {
            Close();
            mValue = std::exchange(zrOther.mValue, -1);
        }
        return *this;
    }

    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int Get() const { return mValue; }

    bool IsOpen() const { return mValue >= 0; }

private:
    void Close() {
        if (IsOpen()) {
            ::close(mValue);
        }
    }

    int mValue;
};
