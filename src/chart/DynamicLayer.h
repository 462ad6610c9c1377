#pragma once

#include "chart/TextBlock.h"

#include <QPoint>
#include <functional>
#include <vector>

namespace chart {

/// What is drawn over the finished picture of a chart, and redrawn without drawing the chart anew: marks that follow
/// the mouse, their labels. Things appear in the order they were added.
class DynamicLayer
{
public:
    void clear();
    bool isEmpty() const;

    /// A line one pixel wide, both ends included, of dashes and gaps of the given lengths.
    void addDashedLine(int x, int top, int bottom, const QColor &colour, int dash, int gap);
    void addBox(const QRectF &area, const QColor &colour);
    void addDot(const QPoint &centre, int radius, const QColor &colour);
    void addText(const TextBlock &text, const QPointF &anchor, Qt::Alignment corner);
    /// Narrowed to the room, or left out: see TextBlock::draw().
    void addText(const TextBlock &text, const QPointF &anchor, Qt::Alignment corner, double room);

    void paint(QPainter &painter) const;

private:
    std::vector<std::function<void(QPainter &)>> m_things;
};

} // namespace chart
