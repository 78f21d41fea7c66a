#pragma once

#include "ProgressEstimate.h"

#include <chrono>
#include <cstdint>
#include <string>

/// What the progress window says underneath its bar, in the person's language.

/// The amount done, and the rate and the time left where they are known, as in "3.0 MiB of 8.0 MiB · 512.0
/// KiB/s · a few seconds left". "" where the whole is unknown (0), or turns out to be more than was said.
std::string ProgressDetails(std::uint64_t zDone, std::uint64_t zTotal, const cProgressEstimate& zrEstimate);

/// As long as they get, to make room for.
std::string LongestProgressDetails();

/// A time as people say it, as in "about 2 minutes left".
std::string TimeLeftText(std::chrono::seconds zTime);
