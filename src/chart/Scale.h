#pragma once

namespace chart {

/// A stretch of values along one axis.
struct Range
{
    double low = 0;
    double high = 0;
};

/// Maps a range of values onto pixel coordinates. A pixel's coordinate means the middle of that pixel.
struct Scale
{
    Range values;
    double lowPixel = 0;
    double highPixel = 0;

    /// Kept within what a painter can take, however far the value lies outside the range.
    double pixel(double value) const;
    double value(double pixel) const;
};

} // namespace chart
