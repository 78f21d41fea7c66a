#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

/// Choices that are the same on every machine for a seed.
class SeededChoice {
public:
    explicit SeededChoice(std::uint64_t seed) : mEngine(seed) {}

    /// 0 to count - 1.
    std::size_t Below(std::size_t count) { return static_cast<std::size_t>(mEngine() % count); }

    int Between(int least, int greatest) {
        return least + static_cast<int>(Below(static_cast<std::size_t>(greatest - least) + 1));
    }

    bool OneIn(std::size_t count) { return Below(count) == 0; }

    template <typename List>
    const auto& Of(const List& list) {
        return list[Below(list.size())];
    }

    /// The seed of one piece of a walk, of which neighbours have nothing in common.
    static std::uint64_t SeedOf(std::uint64_t seed, std::uint64_t number) {
        return std::mt19937_64(seed * 0x9E3779B97F4A7C15U + number)();
    }

private:
    std::mt19937_64 mEngine;
};
