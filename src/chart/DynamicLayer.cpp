#include "chart/DynamicLayer.h"

#include "chart/SharpFill.h"

#include <QPainter>
#include <limits>

namespace chart {

void DynamicLayer::clear()
{
    m_things.clear();
}

bool DynamicLayer::isEmpty() const
{
    return m_things.empty();
}

void DynamicLayer::addDashedLine(int x, int top, int bottom, const QColor &colour, int dash, int gap)
{
    m_things.emplace_back([=](QPainter &painter) {
        for (int y = top; y <= bottom; y += dash + gap)
            fillSharp(painter, QRectF(x, y, 1, qMin(dash, bottom + 1 - y)), colour);
    });
}

void DynamicLayer::addBox(const QRectF &area, const QColor &colour)
{
    m_things.emplace_back([=](QPainter &painter) { fillSharp(painter, area, colour); });
}

void DynamicLayer::addDot(const QPoint &centre, int radius, const QColor &colour)
{
    m_things.emplace_back([=](QPainter &painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(colour);
        painter.setBrush(colour);
        painter.drawEllipse(QPointF(centre) + QPointF(0.5, 0.5), radius, radius);
        painter.setRenderHint(QPainter::Antialiasing, false);
    });
}

void DynamicLayer::addText(const TextBlock &text, const QPointF &anchor, Qt::Alignment corner)
{
    addText(text, anchor, corner, std::numeric_limits<double>::infinity());
}

void DynamicLayer::addText(const TextBlock &text, const QPointF &anchor, Qt::Alignment corner, double room)
{
    m_things.emplace_back([=](QPainter &painter) { text.draw(painter, anchor, corner, room); });
}

void DynamicLayer::paint(QPainter &painter) const
{
    for (const auto &thing : m_things)
        thing(painter);
}

} // namespace chart
