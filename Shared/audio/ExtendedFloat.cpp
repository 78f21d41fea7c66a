#include "ExtendedFloat.h"

#include "BigEndian.h"

#include <cmath>
#include <limits>

namespace {

constexpr int kNoNumber = 0x7FFF;
constexpr int kBias = 16383;

double Magnitude(int zExponent, std::uint64_t zHigh, std::uint64_t zLow) {
    if (zExponent == kNoNumber) {
        return std::numeric_limits<double>::infinity();
    }
    return std::ldexp(static_cast<double>(zHigh), zExponent - kBias - 31) +
           std::ldexp(static_cast<double>(zLow), zExponent - kBias - 63);
}

} // namespace

double DecodeExtendedFloat(const tExtendedFloat& zBytes) {
    const auto head = static_cast<int>(LoadBig(zBytes.data(), 2));
    const int exponent = head & 0x7FFF;
    const std::uint64_t high = LoadBig(&zBytes[2], 4);
    const std::uint64_t low = LoadBig(&zBytes[6], 4);
    if (exponent == 0 && high == 0 && low == 0) {
        return 0;
    }
    const double magnitude = Magnitude(exponent, high, low);
    return (head & 0x8000) != 0 ? -magnitude : magnitude;
}
