#pragma once

#include <cmath>

namespace chart {

/// Marks a missing point; a line breaks there.
constexpr double noValue = 1.7e308;

/// Whether a number can be placed on an axis: neither the marker nor infinite nor undefined.
inline bool isValue(double value)
{
    return std::isfinite(value) && value != noValue;
}

} // namespace chart
