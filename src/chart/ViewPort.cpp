#include "chart/ViewPort.h"

#include <QPoint>
#include <algorithm>
#include <cmath>

namespace chart {

namespace {

/// A stretch of the whole in one direction.
struct Stretch
{
    double start;
    double length;
};

Stretch withinWhole(Stretch stretch, double smallest)
{
    if (!std::isfinite(stretch.start) || !std::isfinite(stretch.length))
        return {0, 1};
    const double length = std::clamp(stretch.length, smallest, 1.0);
    // A part that is too small grows on both sides alike.
    const double start = stretch.start - (length - stretch.length) / 2;
    return {std::clamp(start, 0.0, 1.0 - length), length};
}

Stretch zoomed(const Stretch &stretch, double position, double ratio, double smallest)
{
    const double length = std::clamp(stretch.length / ratio, smallest, 1.0);
    return {stretch.start + position * (stretch.length - length), length};
}

double share(double distance, int extent)
{
    return extent > 0 ? distance / extent : 0;
}

bool contains(const QRect &area, const QPoint &position)
{
    return !area.isEmpty() && QRect(area.topLeft(), area.size() + QSize(1, 1)).contains(position);
}

} // namespace

QRectF ViewPort::viewPort() const
{
    return m_part;
}

void ViewPort::setViewPort(const QRectF &part)
{
    const Stretch x = withinWhole({part.x(), part.width()}, m_smallest.width());
    const Stretch y = withinWhole({part.y(), part.height()}, m_smallest.height());
    m_part = {x.start, y.start, x.length, y.length};
}

void ViewPort::setSmallestViewPort(const QSizeF &part)
{
    constexpr double least = 1e-9;
    m_smallest = {std::clamp(part.width(), least, 1.0), std::clamp(part.height(), least, 1.0)};
    setViewPort(m_part);
}

void ViewPort::setFullRange(Qt::Orientation orientation, const Range &range)
{
    (orientation == Qt::Horizontal ? m_horizontal : m_vertical) = range;
}

Range ViewPort::visibleRange(Qt::Orientation orientation) const
{
    if (orientation == Qt::Horizontal) {
        const double span = m_horizontal.high - m_horizontal.low;
        return {m_horizontal.low + span * m_part.left(), m_horizontal.low + span * m_part.right()};
    }
    const double span = m_vertical.high - m_vertical.low;
    return {m_vertical.high - span * m_part.bottom(), m_vertical.high - span * m_part.top()};
}

ViewPort::Direction ViewPort::zoomDirection() const
{
    return m_zoomDirection;
}

void ViewPort::setZoomDirection(Direction direction)
{
    m_zoomDirection = direction;
}

ViewPort::Direction ViewPort::scrollDirection() const
{
    return m_scrollDirection;
}

void ViewPort::setScrollDirection(Direction direction)
{
    m_scrollDirection = direction;
}

void ViewPort::setPlotArea(const QRect &area)
{
    m_plotArea = area;
}

QRect ViewPort::plotArea() const
{
    return m_plotArea;
}

void ViewPort::setMouseMargins(const QMargins &margins)
{
    m_mouseMargins = margins;
}

bool ViewPort::isInPlotArea(const QPoint &position) const
{
    return contains(m_plotArea, position);
}

bool ViewPort::isInExtendedPlotArea(const QPoint &position) const
{
    return !m_plotArea.isEmpty() && contains(m_plotArea.marginsAdded(m_mouseMargins), position);
}

bool ViewPort::zoomAt(const QPoint &position, double ratio)
{
    if (m_plotArea.isEmpty() || !(ratio > 0))
        return false;
    QRectF part = m_part;
    if (zoomsHorizontally()) {
        const double at = share(position.x() - m_plotArea.x(), m_plotArea.width());
        const Stretch x = zoomed({part.x(), part.width()}, at, ratio, m_smallest.width());
        part = {x.start, part.y(), x.length, part.height()};
    }
    if (zoomsVertically()) {
        const double at = share(position.y() - m_plotArea.y(), m_plotArea.height());
        const Stretch y = zoomed({part.y(), part.height()}, at, ratio, m_smallest.height());
        part = {part.x(), y.start, part.width(), y.length};
    }
    return change(part);
}

bool ViewPort::zoomTo(const QRect &rectangle)
{
    if (m_plotArea.isEmpty())
        return false;
    QRectF part = m_part;
    if (zoomsHorizontally()) {
        part.moveLeft(m_part.x() + share(rectangle.x() - m_plotArea.x(), m_plotArea.width()) * m_part.width());
        part.setWidth(share(rectangle.width(), m_plotArea.width()) * m_part.width());
    }
    if (zoomsVertically()) {
        part.moveTop(m_part.y() + share(rectangle.y() - m_plotArea.y(), m_plotArea.height()) * m_part.height());
        part.setHeight(share(rectangle.height(), m_plotArea.height()) * m_part.height());
    }
    return change(part);
}

bool ViewPort::scrollFrom(const QRectF &from, const QPoint &distance)
{
    QRectF part = from;
    if (m_scrollDirection != Direction::Vertical)
        part.translate(-share(distance.x(), m_plotArea.width()) * from.width(), 0);
    if (m_scrollDirection != Direction::Horizontal)
        part.translate(0, -share(distance.y(), m_plotArea.height()) * from.height());
    return change(part);
}

bool ViewPort::change(const QRectF &part)
{
    const QRectF before = m_part;
    setViewPort(part);
    return m_part != before;
}

bool ViewPort::zoomsHorizontally() const
{
    return m_zoomDirection != Direction::Vertical;
}

bool ViewPort::zoomsVertically() const
{
    return m_zoomDirection != Direction::Horizontal;
}

} // namespace chart
