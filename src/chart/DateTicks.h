#pragma once

#include "chart/Scale.h"

#include <vector>

namespace chart {

/// Ticks at round local times, as Unix seconds. Every major tick is on the raster of the minor ones; a minor tick
/// never coincides with a major one. Where the clocks go forward two ticks stand nearer to each other, where they go
/// back a time shown twice within one step has its tick when it is first shown.
struct DateTicks
{
    std::vector<double> major;
    std::vector<double> minor;
};

/// Ticks for an axis of @p length pixels, at least the given numbers of pixels apart.
DateTicks dateTicks(const Range &range, double length, double majorSpacing, double minorSpacing);

} // namespace chart
