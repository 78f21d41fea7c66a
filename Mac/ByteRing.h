#pragma once

#include <sys/uio.h>

#include <array>
#include <cstddef>
#include <vector>

/// A queue of bytes of fixed capacity. Bytes never move within it.
class ByteRing {
public:
    explicit ByteRing(std::size_t zCapacity) : mBytes(zCapacity) {}

    std::size_t Size() const { return mSize; }

    std::size_t Room() const { return mBytes.size() - mSize; }

    bool IsEmpty() const { return mSize == 0; }

    bool IsFull() const { return mSize == mBytes.size(); }

    /// Appends up to zSize bytes and returns how many.
    std::size_t Put(const char* zpBytes, std::size_t zSize);

    /// Takes up to zSize bytes from the front and returns how many.
    std::size_t Take(char* zpBytes, std::size_t zSize);

    using Parts = std::array<iovec, 2>;

    /// The free space, to be filled by the system; Added tells how far it got.
    Parts FreeParts();
    void Added(std::size_t zSize);

    /// The content, to be taken by the system; Removed tells how far it got.
    Parts UsedParts();
    void Removed(std::size_t zSize);

private:
    std::size_t Wrapped(std::size_t zPlace) const;
    Parts PartsFrom(std::size_t zStart, std::size_t zSize);

    std::vector<char> mBytes;
    std::size_t mStart = 0;
    std::size_t mSize = 0;
};
