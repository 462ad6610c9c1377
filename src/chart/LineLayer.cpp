#include "chart/LineLayer.h"

#include "chart/LinePath.h"
#include "chart/NoValue.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <limits>

namespace chart {

namespace {

constexpr double dotRadius = 2.5;

bool isWithin(double value, const Range &range)
{
    return value >= range.low && value <= range.high;
}

QPainterPath joined(const QVector<QLineF> &segments)
{
    QPainterPath path;
    for (const QLineF &segment : segments) {
        if (path.elementCount() == 0 || path.currentPosition() != segment.p1())
            path.moveTo(segment.p1());
        path.lineTo(segment.p2());
    }
    return path;
}

/// Separate segments are drawn several times faster than a path, and their square ends close the joints; where one can
/// look through the colour, the overlaps would show.
void drawSegments(QPainter &painter, const QVector<QLineF> &segments, const QColor &colour, double width)
{
    constexpr int opaque = 255;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::SquareCap, Qt::RoundJoin));
    if (colour.alpha() == opaque)
        painter.drawLines(segments);
    else
        painter.drawPath(joined(segments));
}

void drawDots(QPainter &painter, const QVector<QPointF> &dots, const QColor &colour)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    for (const QPointF &dot : dots)
        painter.drawEllipse(dot, dotRadius, dotRadius);
}

} // namespace

LineLayer::LineLayer(std::vector<double> xValues) : m_xValues(std::move(xValues)) {}

DataSet &LineLayer::addDataSet(std::vector<double> values, const QString &name, const QColor &colour)
{
    m_dataSets.push_back(std::make_unique<DataSet>(DataSet{std::move(values), name, colour}));
    return *m_dataSets.back();
}

const std::vector<std::unique_ptr<DataSet>> &LineLayer::dataSets() const
{
    return m_dataSets;
}

const std::vector<double> &LineLayer::xValues() const
{
    return m_xValues;
}

void LineLayer::setLineWidth(double pixels)
{
    m_lineWidth = pixels;
}

void LineLayer::setLargestSteps(std::vector<double> steps)
{
    m_largestSteps = std::move(steps);
    m_largestSteps.resize(m_xValues.size(), std::numeric_limits<double>::infinity());
}

void LineLayer::setLargestStep(double x)
{
    setLargestSteps(std::vector<double>(m_xValues.size(), x));
}

int LineLayer::nearestIndex(double x, const Range &within) const
{
    int nearest = -1;
    double distance = 0;
    for (size_t i = 0; i < m_xValues.size(); ++i) {
        if (!isValue(m_xValues[i]) || !isWithin(m_xValues[i], within))
            continue;
        const double here = std::abs(m_xValues[i] - x);
        if (nearest < 0 || here <= distance) {
            nearest = int(i);
            distance = here;
        }
    }
    return nearest;
}

std::optional<Range> LineLayer::valuesWithin(const Range &xRange) const
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    Range range{infinity, -infinity};
    for (const auto &dataSet : m_dataSets) {
        const size_t count = std::min(m_xValues.size(), dataSet->values.size());
        for (size_t i = 0; i < count; ++i) {
            const double value = dataSet->values[i];
            if (!isWithin(m_xValues[i], xRange) || !isValue(value))
                continue;
            range.low = std::min(range.low, value);
            range.high = std::max(range.high, value);
        }
    }
    return range.low <= range.high ? std::optional(range) : std::nullopt;
}

void LineLayer::draw(QPainter &painter, const Scale &x, const Scale &y, const QRectF &clip) const
{
    const double density = painter.device()->devicePixelRatioF();
    // Ends of lines that leave the picture must not show.
    const QRectF around = clip.adjusted(-m_lineWidth, -m_lineWidth, m_lineWidth, m_lineWidth);
    const LineField field{x, y, around, 1 / density, m_largestSteps.empty() ? nullptr : &m_largestSteps};
    painter.save();
    painter.setClipRect(clip);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const auto &dataSet : m_dataSets) {
        const LinePath path = linePath(m_xValues, dataSet->values, field);
        drawSegments(painter, path.segments, dataSet->colour, m_lineWidth);
        drawDots(painter, path.dots, dataSet->colour);
    }
    painter.restore();
}

} // namespace chart
