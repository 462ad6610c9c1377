#pragma once

class QColor;
class QPainter;
class QRectF;

namespace chart {

/// Fills a rectangle of whole pixels of the device, whatever its density: edges are rounded to them, and nothing
/// becomes thinner than one. The painter's own transformation is not taken into account.
void fillSharp(QPainter &painter, const QRectF &area, const QColor &colour);

} // namespace chart
