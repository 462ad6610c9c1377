#pragma once

#include "chart/DataSet.h"
#include "chart/Scale.h"

#include <QRectF>
#include <memory>
#include <optional>
#include <vector>

class QPainter;

namespace chart {

/// Lines over common x values. Points are joined in the order they came, also where x goes back, unless they lie too
/// far apart.
class LineLayer
{
public:
    explicit LineLayer(std::vector<double> xValues);

    /// The data set belongs to the layer and stays where it is.
    DataSet &addDataSet(std::vector<double> values, const QString &name, const QColor &colour);
    const std::vector<std::unique_ptr<DataSet>> &dataSets() const;
    const std::vector<double> &xValues() const;
    void setLineWidth(double pixels);
    /// How far in x, either way, a point may lie from the one before to be joined to it: one number for each point,
    /// those that are missing at the end are infinite. Of what lies between two points further apart nothing is known.
    void setLargestSteps(std::vector<double> steps);
    /// The same for every point.
    void setLargestStep(double x);

    /// The sample whose x is nearest among those within the range; of several the newest. -1: there is none.
    int nearestIndex(double x, const Range &within) const;
    /// How far the values of all data sets reach whose x is within the range.
    std::optional<Range> valuesWithin(const Range &xRange) const;

    void draw(QPainter &painter, const Scale &x, const Scale &y, const QRectF &clip) const;

private:
    std::vector<double> m_xValues;
    std::vector<std::unique_ptr<DataSet>> m_dataSets;
    double m_lineWidth = 2;
    std::vector<double> m_largestSteps; ///< empty: all are joined
};

} // namespace chart
