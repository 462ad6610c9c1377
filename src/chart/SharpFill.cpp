#include "chart/SharpFill.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace chart {

void fillSharp(QPainter &painter, const QRectF &area, const QColor &colour)
{
    const qreal density = painter.device()->devicePixelRatioF();
    const auto whole = [density](qreal length) {
        return std::max(1.0, std::round(length * density)) / density;
    };
    const QPointF corner(std::round(area.left() * density) / density, std::round(area.top() * density) / density);
    painter.fillRect(QRectF(corner, QSizeF(whole(area.width()), whole(area.height()))), colour);
}

} // namespace chart
