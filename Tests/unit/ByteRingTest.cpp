#include "ByteRing.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::size_t Put(ByteRing& zrRing, const std::string& zBytes) {
    return zrRing.Put(zBytes.data(), zBytes.size());
}

std::string Take(ByteRing& zrRing, std::size_t zSize) {
    std::string bytes(zSize, '?');
    bytes.resize(zrRing.Take(bytes.data(), zSize));
    return bytes;
}

std::string Join(const ByteRing::Parts& zParts) {
    std::string bytes;
    for (const iovec& part : zParts) {
        bytes.append(static_cast<const char*>(part.iov_base), part.iov_len);
    }
    return bytes;
}

TEST(ByteRingTest, IsEmptyAtFirst) {
    ByteRing ring(8);
    EXPECT_TRUE(ring.IsEmpty());
    EXPECT_FALSE(ring.IsFull());
    EXPECT_EQ(ring.Room(), 8U);
    EXPECT_EQ(Take(ring, 4), "");
}

TEST(ByteRingTest, TakesNoMoreThanItHasRoomFor) {
    ByteRing ring(8);
    EXPECT_EQ(Put(ring, "0123456789"), 8U);
    EXPECT_TRUE(ring.IsFull());
    EXPECT_EQ(Put(ring, "x"), 0U);
    EXPECT_EQ(Take(ring, 100), "01234567");
}

TEST(ByteRingTest, KeepsTheOrderAroundItsEnd) {
    ByteRing ring(8);
    Put(ring, "abcdef");
    EXPECT_EQ(Take(ring, 4), "abcd");
    EXPECT_EQ(Put(ring, "ghijkl"), 6U);
    EXPECT_EQ(ring.Size(), 8U);
    EXPECT_EQ(Join(ring.UsedParts()), "efghijkl");
    EXPECT_EQ(Take(ring, 5), "efghi");
    EXPECT_EQ(Take(ring, 5), "jkl");
}

TEST(ByteRingTest, IsFilledThroughItsFreeParts) {
    ByteRing ring(8);
    Put(ring, "abcdef");
    Take(ring, 5);
    const ByteRing::Parts parts = ring.FreeParts();
    ASSERT_EQ(parts[0].iov_len, 2U);
    ASSERT_EQ(parts[1].iov_len, 5U);
    std::string("gh").copy(static_cast<char*>(parts[0].iov_base), 2);
    std::string("ijk").copy(static_cast<char*>(parts[1].iov_base), 3);
    ring.Added(5);
    EXPECT_EQ(Take(ring, 8), "fghijk");
}

TEST(ByteRingTest, IsEmptiedThroughItsUsedParts) {
    ByteRing ring(8);
    Put(ring, "abcdef");
    ring.Removed(2);
    EXPECT_EQ(Join(ring.UsedParts()), "cdef");
    ring.Removed(4);
    EXPECT_TRUE(ring.IsEmpty());
    EXPECT_EQ(ring.FreeParts()[0].iov_len, 8U) << "an empty ring is in one part";
}

} // namespace
