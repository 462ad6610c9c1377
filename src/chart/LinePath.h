#pragma once

#include "chart/Scale.h"

#include <QLineF>
#include <QPointF>
#include <QRectF>
#include <QVector>
#include <vector>

namespace chart {

/// What is to be drawn of one line.
struct LinePath
{
    QVector<QLineF> segments;
    QVector<QPointF> dots; ///< points without a neighbour to be joined to
};

/// Where and how finely a line is drawn.
struct LineField
{
    Scale x;
    Scale y;
    QRectF visible;    ///< what lies outside is left away
    double column = 1; ///< width of the device's pixels
    /// In x, of each point from the one before; null: all are joined.
    const std::vector<double> *largestSteps = nullptr;
};

/// Joins the points in the order given. A missing value breaks the line, a missing x is passed over. However many
/// points fall into one column of the device, a few segments show how far they reach; what lies apart within one column
/// is not told apart.
LinePath linePath(const std::vector<double> &xs, const std::vector<double> &ys, const LineField &field);

} // namespace chart
