#pragma once

#include <QtGlobal>

namespace chart {
class XYChart;
}

/// Draws the cursor at the sample nearest to a pixel column into the chart's dynamic layer, in place of what is there:
/// a dashed line with the sample's time, a dot and a label on every named line, legend, date and span above the plot.
void drawTrackCursor(chart::XYChart &chart, int x, qint32 intervalMs);
