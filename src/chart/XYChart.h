#pragma once

#include "chart/DateAxis.h"
#include "chart/DynamicLayer.h"
#include "chart/LineLayer.h"
#include "chart/PlotArea.h"
#include "chart/ValueAxis.h"

#include <QImage>
#include <QSize>

namespace chart {

/// A chart of lines over time. It is described first, then shown: what is changed in its axes or layers after the first
/// picture or look-up does not appear, the dynamic layer apart. A chart whose plot area has no extent is an empty
/// field. Coordinates are pixels of the picture at single density, from its top left corner.
class XYChart
{
public:
    /// A size below one pixel counts as one.
    XYChart(int width, int height, const QColor &background, const QColor &edge = Qt::transparent);

    QSize size() const;
    const QColor &background() const;
    /// The family of axis labels and of the texts that users of the chart add.
    void setFontFamily(const QString &family);
    const QString &fontFamily() const;
    void setPlotArea(const PlotArea &plotArea);
    const PlotArea &plotArea() const;
    DateAxis &xAxis();
    ValueAxis &yAxis();
    /// The layer belongs to the chart; later layers are drawn over earlier ones.
    LineLayer &addLineLayer(std::vector<double> xValues);
    const std::vector<std::unique_ptr<LineLayer>> &layers() const;
    DynamicLayer &dynamicLayer();

    // The look-ups answer nothing while the axis has no scale.
    std::optional<double> xValueAt(int x) const;
    std::optional<double> yValueAt(int y) const;
    std::optional<int> xCoordinate(double value) const;
    /// Nothing for a missing value either.
    std::optional<int> yCoordinate(double value) const;
    /// The x value of the sample nearest to a coordinate, of those shown; of several the newest.
    std::optional<double> nearestXValue(int x) const;
    /// The labels of the x axis, from left to right.
    const std::vector<DateAxis::Label> &xLabels() const;

    /// The chart without its dynamic layer, drawn once for each density asked for in a row.
    const QImage &finishedPicture(qreal density);
    /// The chart with its dynamic layer, sharp on a screen of that density.
    QImage picture(qreal density);

private:
    struct Layout
    {
        std::optional<Scale> x;
        std::optional<Scale> y;
        DateTicks dates;
        std::vector<DateAxis::Label> dateLabels;
        ValueTicks values;
    };

    const Layout &layout() const;
    Layout computeLayout() const;
    void draw(QPainter &painter) const;
    void drawGrid(QPainter &painter) const;
    void drawLayers(QPainter &painter) const;
    void drawAxes(QPainter &painter) const;

    const QSize m_size;
    const QColor m_background;
    const QColor m_edge;
    QString m_fontFamily;
    PlotArea m_plotArea;
    DateAxis m_xAxis;
    ValueAxis m_yAxis;
    std::vector<std::unique_ptr<LineLayer>> m_layers;
    DynamicLayer m_dynamicLayer;
    mutable std::optional<Layout> m_layout;
    QImage m_finished;
};

} // namespace chart
