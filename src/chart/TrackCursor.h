#pragma once

class QString;

namespace chart {

class XYChart;

/// Draws the cursor at the sample nearest to a pixel column into the chart's dynamic layer, in place of what is there:
/// a dashed line with the sample's time, a dot and a label on every named line, and above the plot legend, date and
/// what @p span says of the time shown.
void drawTrackCursor(XYChart &chart, int x, const QString &span);

} // namespace chart
