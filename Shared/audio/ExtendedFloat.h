#pragma once

#include <array>
#include <cstdint>

/// A number in the extended format of IEEE 754 as AIFF stores it, high byte first: the sign, 15 bits of
/// exponent, and 64 bits of mantissa of which the first stands before the point.
using tExtendedFloat = std::array<std::uint8_t, 10>;

/// The nearest that a double comes to it: what is too large and what is not a number are infinities of its
/// sign, and every zero is a positive one.
double DecodeExtendedFloat(const tExtendedFloat& zBytes);
