#pragma once

#include <QBrush>
#include <QColor>
#include <QRect>

namespace chart {

/// The field that the lines are drawn in. The x axis reaches from left() to right(), the y axis from bottom() to top();
/// unlike those of a QRect, right and bottom are the corner plus the size.
struct PlotArea
{
    QRect area;
    QBrush background;
    QColor edge = Qt::transparent;
    QColor horizontalGrid = Qt::transparent;
    QColor verticalGrid = Qt::transparent;

    int left() const { return area.x(); }
    int right() const { return area.x() + area.width(); }
    int top() const { return area.y(); }
    int bottom() const { return area.y() + area.height(); }
    bool isEmpty() const { return area.isEmpty(); }
};

} // namespace chart
