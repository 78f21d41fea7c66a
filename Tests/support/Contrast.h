#pragma once

#include <QtGui/QColor>

#include <algorithm>
#include <cmath>

/// Relative luminance and contrast as in the W3C's guidelines for accessible content, by which texts have a
/// contrast of 4.5 and drawings one of 3.
inline double Luminance(const QColor& colour) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

inline double Contrast(const QColor& one, const QColor& other) {
    const auto [darker, brighter] = std::minmax({Luminance(one), Luminance(other)});
    return (brighter + 0.05) / (darker + 0.05);
}
