#include "chart/DateAxis.h"

#include "chart/PlotArea.h"
#include "chart/SharpFill.h"

#include <QDateTime>
#include <QPainter>
#include <cmath>

namespace chart {

namespace {

constexpr int majorTickLength = 4;
constexpr int minorTickLength = 2;
constexpr int labelDistance = 6;
constexpr int labelGap = 6;

} // namespace

void DateAxis::setScale(double from, double to)
{
    m_range.reset();
    if (std::isfinite(to - from) && from < to)
        m_range = Range{from, to};
}

const std::optional<Range> &DateAxis::range() const
{
    return m_range;
}

void DateAxis::setTickDensity(int major, int minor)
{
    m_majorSpacing = major;
    m_minorSpacing = minor;
}

void DateAxis::setLabelFormat(const QString &format)
{
    m_format = format;
}

DateTicks DateAxis::ticks(const PlotArea &plot) const
{
    return m_range ? dateTicks(*m_range, plot.area.width(), m_majorSpacing, m_minorSpacing) : DateTicks{};
}

std::vector<DateAxis::Label> DateAxis::labels(const PlotArea &plot, const Scale &scale, const DateTicks &ticks,
                                              double pictureWidth) const
{
    std::vector<Label> labels;
    double taken = 0;
    for (const double tick : ticks.major) {
        TextBlock text(m_font, m_labelColour);
        text.add(QDateTime::fromSecsSinceEpoch(qint64(tick)).toString(m_format));
        const double left = std::round(scale.pixel(tick)) - std::floor(text.size().width() / 2);
        const QRectF place({left, double(plot.bottom() + labelDistance)}, text.size());
        if (place.left() < taken || place.right() > pictureWidth)
            continue;
        labels.push_back({text, place});
        taken = place.right() + labelGap;
    }
    return labels;
}

void DateAxis::draw(QPainter &painter, const PlotArea &plot, const Scale &scale, const DateTicks &ticks) const
{
    const double line = plot.bottom() - widthBefore();
    const double end = line + m_width;
    // The corner belongs to the other axis.
    const double from = plot.left() + m_width - widthBefore();
    fillSharp(painter, {from, line, plot.right() + 1 - from, double(m_width)}, m_lineColour);
    for (const double tick : ticks.major)
        fillSharp(painter, {std::round(scale.pixel(tick)), end, 1, majorTickLength}, m_lineColour);
    for (const double tick : ticks.minor)
        fillSharp(painter, {std::round(scale.pixel(tick)), end, 1, minorTickLength}, m_lineColour);
}

} // namespace chart
