#pragma once

#include <span>

/// The texts of the toolkit-free rooms that arrive with a name in them, as sources for translation; "%s"
/// stands for the name, once in each.
std::span<const char* const> TextsAroundNames();
