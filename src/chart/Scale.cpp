#include "chart/Scale.h"

#include <algorithm>

namespace chart {

double Scale::pixel(double value) const
{
    constexpr double farAway = 1e6;
    const double span = values.high - values.low;
    if (span == 0)
        return (lowPixel + highPixel) / 2;
    return std::clamp(lowPixel + (value - values.low) / span * (highPixel - lowPixel), -farAway, farAway);
}

double Scale::value(double pixel) const
{
    const double length = highPixel - lowPixel;
    if (length == 0)
        return values.low;
    return values.low + (pixel - lowPixel) / length * (values.high - values.low);
}

} // namespace chart
