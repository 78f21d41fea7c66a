#include "ByteRing.h"

#include <algorithm>

/// Less than two rounds; a division would cost more than all else of a small step.
std::size_t ByteRing::Wrapped(std::size_t zPlace) const {
    return zPlace < mBytes.size() ? zPlace : zPlace - mBytes.size();
}

ByteRing::Parts ByteRing::PartsFrom(std::size_t zStart, std::size_t zSize) {
    const std::size_t start = Wrapped(zStart);
    const std::size_t first = std::min(zSize, mBytes.size() - start);
    return {iovec{mBytes.data() + start, first}, iovec{mBytes.data(), zSize - first}};
}

ByteRing::Parts ByteRing::FreeParts() {
    return PartsFrom(mStart + mSize, Room());
}

ByteRing::Parts ByteRing::UsedParts() {
    return PartsFrom(mStart, mSize);
}

void ByteRing::Added(std::size_t zSize) {
    mSize += zSize;
}

void ByteRing::Removed(std::size_t zSize) {
    mSize -= zSize;
    // An empty ring starts over, so that its content is in one part whenever that is possible.
    mStart = mSize == 0 ? 0 : Wrapped(mStart + zSize);
}

std::size_t ByteRing::Put(const char* zpBytes, std::size_t zSize) {
    const std::size_t size = std::min(zSize, Room());
    std::size_t done = 0;
    for (const iovec& part : PartsFrom(mStart + mSize, size)) {
        std::copy_n(zpBytes + done, part.iov_len, static_cast<char*>(part.iov_base));
        done += part.iov_len;
    }
    Added(size);
    return size;
}

std::size_t ByteRing::Take(char* zpBytes, std::size_t zSize) {
    const std::size_t size = std::min(zSize, mSize);
    std::size_t done = 0;
    for (const iovec& part : PartsFrom(mStart, size)) {
        std::copy_n(static_cast<const char*>(part.iov_base), part.iov_len, zpBytes + done);
        done += part.iov_len;
    }
    Removed(size);
    return size;
}
