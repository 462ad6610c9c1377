#pragma once

#include "chart/Scale.h"

#include <QMargins>
#include <QRect>
#include <QRectF>

namespace chart {

/// Which part of the whole a chart shows, and how zooming and scrolling over its plot area change that. Horizontally
/// the whole reaches from 0 at its low end to 1 at its high end, vertically from 0 at the top to 1 at the bottom.
class ViewPort
{
public:
    enum class Direction { Horizontal = 0, Vertical = 1, Both = 2 };

    QRectF viewPort() const;
    /// Moved and cut so that it lies within the whole and is no smaller than allowed.
    void setViewPort(const QRectF &part);
    /// How far one can zoom in; at first to a thousandth of either extent.
    void setSmallestViewPort(const QSizeF &part);

    /// What the whole means in values, so that the part can be asked for in values.
    void setFullRange(Qt::Orientation orientation, const Range &range);
    Range visibleRange(Qt::Orientation orientation) const;

    Direction zoomDirection() const;
    void setZoomDirection(Direction direction);
    Direction scrollDirection() const;
    void setScrollDirection(Direction direction);

    // The metrics of the chart shown, in pixels. Right and bottom edges count as inside.
    void setPlotArea(const QRect &area);
    QRect plotArea() const;
    /// How far the extended plot area, in which the mouse is taken to mean the plot area, reaches beyond it.
    void setMouseMargins(const QMargins &margins);
    bool isInPlotArea(const QPoint &position) const;
    bool isInExtendedPlotArea(const QPoint &position) const;

    // Each tells whether it changed the view port.
    /// What lies under the position stays there, and a ratio above 1 shows it larger.
    bool zoomAt(const QPoint &position, double ratio);
    /// Fills the plot area with what lies within the rectangle.
    bool zoomTo(const QRect &rectangle);
    /// Shows what a sheet of paper shows that is pulled so far, where @p from was shown before.
    bool scrollFrom(const QRectF &from, const QPoint &distance);

protected:
    ViewPort() = default;
    ~ViewPort() = default;

private:
    bool change(const QRectF &part);
    bool zoomsHorizontally() const;
    bool zoomsVertically() const;

    QRectF m_part{0, 0, 1, 1};
    QSizeF m_smallest{0.001, 0.001};
    Range m_horizontal{0, 1};
    Range m_vertical{0, 1};
    Direction m_zoomDirection = Direction::Horizontal;
    Direction m_scrollDirection = Direction::Horizontal;
    QRect m_plotArea;
    QMargins m_mouseMargins;
};

} // namespace chart
