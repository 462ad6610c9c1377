#pragma once

#include "chart/Scale.h"

#include <QString>
#include <vector>

namespace chart {

/// Round values, 1, 2 or 5 times a power of ten apart.
struct ValueTicks
{
    std::vector<double> values;
    double step = 0;
    int decimals = 0; ///< as many as it takes to tell neighbours apart
};

/// At most @p intervals (at least 1) steps, the first tick at or below the range and the last at or above it.
ValueTicks ticksAround(const Range &range, int intervals);
/// At most @p intervals (at least 1) steps, all ticks within the range; there may be none.
ValueTicks ticksWithin(const Range &range, int intervals);
/// The range with some room on either side, so that a line does not run on the frame, even one that is flat. Values
/// that are all positive never lead to a range that begins below zero, nor negative ones to one that ends above.
Range withRoom(const Range &range);

/// The texts of the ticks: in full where each takes no more than @p longest characters, otherwise with an exponent and
/// as few digits as keep them apart.
std::vector<QString> tickTexts(const ValueTicks &ticks, int longest);

} // namespace chart
