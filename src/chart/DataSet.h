#pragma once

#include <QColor>
#include <QString>
#include <vector>

namespace chart {

/// One line's values, in the order of its layer's x values; noValue where there is none.
struct DataSet
{
    std::vector<double> values;
    QString name; ///< as in the legend; empty: the line has no entry
    QColor colour;
};

} // namespace chart
