#include "chart/ValueAxis.h"

#include "chart/PlotArea.h"
#include "chart/SharpFill.h"
#include "chart/TextBlock.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>

namespace chart {

namespace {

constexpr int tickLength = 4;
constexpr int labelDistance = 3;
constexpr int labelGap = 2;

} // namespace

void ValueAxis::setScale(double low, double high)
{
    m_fixedRange.reset();
    if (std::isfinite(high - low) && low < high)
        m_fixedRange = Range{low, high};
}

void ValueAxis::setTickDensity(int pixels)
{
    m_spacing = pixels;
}

std::optional<ValueAxis::Division> ValueAxis::division(const PlotArea &plot, const std::optional<Range> &values) const
{
    const double spacing = std::max(double(m_spacing), std::ceil(QFontMetricsF(m_font).height()) + labelGap);
    const int intervals = std::max(1, int(plot.area.height() / spacing));
    if (m_fixedRange)
        return Division{*m_fixedRange, ticksWithin(*m_fixedRange, intervals)};
    if (!values)
        return {};
    ValueTicks ticks = ticksAround(withRoom(*values), intervals);
    return Division{{ticks.values.front(), ticks.values.back()}, ticks};
}

void ValueAxis::draw(QPainter &painter, const PlotArea &plot, const Scale &scale, const ValueTicks &ticks) const
{
    const double line = plot.left() - widthBefore();
    const double bottom = plot.bottom() - widthBefore() + m_width;
    fillSharp(painter, {line, double(plot.top()), double(m_width), bottom - plot.top()}, m_lineColour);
    for (const double tick : ticks.values)
        fillSharp(painter, {line - tickLength, std::round(scale.pixel(tick)), tickLength, 1}, m_lineColour);
    drawLabels(painter, plot, scale, ticks);
}

void ValueAxis::drawLabels(QPainter &painter, const PlotArea &plot, const Scale &scale, const ValueTicks &ticks) const
{
    const double right = plot.left() - widthBefore() - tickLength - labelDistance;
    const int longest = int(right / QFontMetricsF(m_font).horizontalAdvance(QLatin1Char('0')));
    const std::vector<QString> texts = tickTexts(ticks, longest);
    double taken = std::numeric_limits<double>::infinity();
    for (size_t i = 0; i < texts.size(); ++i) {
        TextBlock label(m_font, m_labelColour);
        label.add(texts[i]);
        const double y = std::round(scale.pixel(ticks.values[i]));
        const double half = label.size().height() / 2;
        if (y + half > taken)
            continue;
        if (label.widthWithin(right) <= 0)
            continue;
        label.draw(painter, {right, y + 0.5}, Qt::AlignRight | Qt::AlignVCenter, right);
        taken = y - half;
    }
}

} // namespace chart
