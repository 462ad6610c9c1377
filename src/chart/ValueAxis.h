#pragma once

#include "chart/Axis.h"
#include "chart/Scale.h"
#include "chart/ValueTicks.h"

#include <optional>

class QPainter;

namespace chart {

struct PlotArea;

/// The y axis. Its range follows the values shown, unless a scale is set; without either it is a bare line.
class ValueAxis : public Axis
{
public:
    void setScale(double low, double high);
    /// The least distance of ticks in pixels; never less than the labels need.
    void setTickDensity(int pixels);

    /// What the axis shows when the lines reach over @p values.
    struct Division
    {
        Range range;
        ValueTicks ticks;
    };
    std::optional<Division> division(const PlotArea &plot, const std::optional<Range> &values) const;

    /// Labels use the room left of the plot area; those that do not fit are shortened or left out.
    void draw(QPainter &painter, const PlotArea &plot, const Scale &scale, const ValueTicks &ticks) const;

private:
    void drawLabels(QPainter &painter, const PlotArea &plot, const Scale &scale, const ValueTicks &ticks) const;

    std::optional<Range> m_fixedRange;
    int m_spacing = 24;
};

} // namespace chart
