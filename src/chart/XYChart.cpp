#include "chart/XYChart.h"

#include "chart/NoValue.h"
#include "chart/SharpFill.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace chart {

namespace {

constexpr int axisLabelPoints = 8;

void drawFrame(QPainter &painter, const QRectF &outside, const QColor &colour)
{
    if (colour.alpha() == 0)
        return;
    fillSharp(painter, {outside.left(), outside.top(), outside.width(), 1}, colour);
    fillSharp(painter, {outside.left(), outside.bottom() - 1, outside.width(), 1}, colour);
    fillSharp(painter, {outside.left(), outside.top() + 1, 1, outside.height() - 2}, colour);
    fillSharp(painter, {outside.right() - 1, outside.top() + 1, 1, outside.height() - 2}, colour);
}

/// A coordinate means the middle of its pixel; for the painter that is half a pixel further.
Scale forPainter(Scale scale)
{
    scale.lowPixel += 0.5;
    scale.highPixel += 0.5;
    return scale;
}

} // namespace

XYChart::XYChart(int width, int height, const QColor &background, const QColor &edge)
    : m_size(std::max(1, width), std::max(1, height)), m_background(background), m_edge(edge)
{
    setFontFamily(QStringLiteral("Arial"));
}

QSize XYChart::size() const
{
    return m_size;
}

const QColor &XYChart::background() const
{
    return m_background;
}

void XYChart::setFontFamily(const QString &family)
{
    m_fontFamily = family;
    m_xAxis.setFont(textFont(family, axisLabelPoints, false));
    m_yAxis.setFont(textFont(family, axisLabelPoints, false));
}

const QString &XYChart::fontFamily() const
{
    return m_fontFamily;
}

void XYChart::setPlotArea(const PlotArea &plotArea)
{
    m_plotArea = plotArea;
}

const PlotArea &XYChart::plotArea() const
{
    return m_plotArea;
}

DateAxis &XYChart::xAxis()
{
    return m_xAxis;
}

ValueAxis &XYChart::yAxis()
{
    return m_yAxis;
}

LineLayer &XYChart::addLineLayer(std::vector<double> xValues)
{
    m_layers.push_back(std::make_unique<LineLayer>(std::move(xValues)));
    return *m_layers.back();
}

const std::vector<std::unique_ptr<LineLayer>> &XYChart::layers() const
{
    return m_layers;
}

DynamicLayer &XYChart::dynamicLayer()
{
    return m_dynamicLayer;
}

std::optional<double> XYChart::xValueAt(int x) const
{
    if (!layout().x)
        return {};
    return layout().x->value(x);
}

std::optional<double> XYChart::yValueAt(int y) const
{
    if (!layout().y)
        return {};
    return layout().y->value(y);
}

std::optional<int> XYChart::xCoordinate(double value) const
{
    if (!layout().x || !isValue(value))
        return {};
    return qRound(layout().x->pixel(value));
}

std::optional<int> XYChart::yCoordinate(double value) const
{
    if (!layout().y || !isValue(value))
        return {};
    return qRound(layout().y->pixel(value));
}

std::optional<double> XYChart::nearestXValue(int x) const
{
    const std::optional<double> wanted = xValueAt(x);
    std::optional<double> nearest;
    if (!wanted)
        return nearest;
    for (const auto &layer : m_layers) {
        const int index = layer->nearestIndex(*wanted, layout().x->values);
        if (index < 0)
            continue;
        const double candidate = layer->xValues()[size_t(index)];
        if (!nearest || std::abs(candidate - *wanted) < std::abs(*nearest - *wanted))
            nearest = candidate;
    }
    return nearest;
}

const std::vector<DateAxis::Label> &XYChart::xLabels() const
{
    return layout().dateLabels;
}

const QImage &XYChart::finishedPicture(qreal density)
{
    if (!m_finished.isNull() && m_finished.devicePixelRatio() == density)
        return m_finished;
    const QSize pixels(qRound(m_size.width() * density), qRound(m_size.height() * density));
    m_finished = QImage(pixels, QImage::Format_RGB32);
    m_finished.setDevicePixelRatio(density);
    m_finished.fill(m_background);
    QPainter painter(&m_finished);
    draw(painter);
    return m_finished;
}

QImage XYChart::picture(qreal density)
{
    QImage image = finishedPicture(density);
    if (m_dynamicLayer.isEmpty())
        return image;
    QPainter painter(&image);
    m_dynamicLayer.paint(painter);
    return image;
}

const XYChart::Layout &XYChart::layout() const
{
    if (!m_layout)
        m_layout = computeLayout();
    return *m_layout;
}

XYChart::Layout XYChart::computeLayout() const
{
    Layout layout;
    if (m_plotArea.isEmpty() || !m_xAxis.range())
        return layout;
    const Range dates = *m_xAxis.range();
    layout.x = Scale{dates, double(m_plotArea.left()), double(m_plotArea.right())};
    layout.dates = m_xAxis.ticks(m_plotArea);
    layout.dateLabels = m_xAxis.labels(m_plotArea, *layout.x, layout.dates, m_size.width());

    std::optional<Range> values;
    for (const auto &layer : m_layers) {
        if (const std::optional<Range> more = layer->valuesWithin(dates))
            values = values ? Range{std::min(values->low, more->low), std::max(values->high, more->high)} : *more;
    }
    if (const auto division = m_yAxis.division(m_plotArea, values)) {
        layout.y = Scale{division->range, double(m_plotArea.bottom()), double(m_plotArea.top())};
        layout.values = division->ticks;
    }
    return layout;
}

void XYChart::draw(QPainter &painter) const
{
    if (!m_plotArea.isEmpty()) {
        painter.fillRect(m_plotArea.area, m_plotArea.background);
        drawGrid(painter);
        drawFrame(painter, m_plotArea.area, m_plotArea.edge);
        drawLayers(painter);
        drawAxes(painter);
    }
    drawFrame(painter, {{0, 0}, m_size}, m_edge);
}

/// Where an axis stands there is no grid line.
void XYChart::drawGrid(QPainter &painter) const
{
    const QRect &area = m_plotArea.area;
    for (const double tick : layout().values.values) {
        const double y = std::round(layout().y->pixel(tick));
        if (y < m_plotArea.bottom() - 1)
            fillSharp(painter, QRectF(area.x(), y, area.width(), 1), m_plotArea.horizontalGrid);
    }
    for (const double tick : layout().dates.major) {
        const double x = std::round(layout().x->pixel(tick));
        if (x > m_plotArea.left() && x < m_plotArea.right())
            fillSharp(painter, QRectF(x, area.y(), 1, area.height()), m_plotArea.verticalGrid);
    }
}

void XYChart::drawLayers(QPainter &painter) const
{
    if (!layout().x || !layout().y)
        return;
    const QRectF clip(m_plotArea.left(), m_plotArea.top(), m_plotArea.area.width() + 1, m_plotArea.area.height() + 1);
    for (const auto &layer : m_layers)
        layer->draw(painter, forPainter(*layout().x), forPainter(*layout().y), clip);
}

void XYChart::drawAxes(QPainter &painter) const
{
    m_xAxis.draw(painter, m_plotArea, layout().x.value_or(Scale{}), layout().dates);
    for (const DateAxis::Label &label : layout().dateLabels)
        label.text.draw(painter, label.place.topLeft(), Qt::AlignLeft | Qt::AlignTop);
    m_yAxis.draw(painter, m_plotArea, layout().y.value_or(Scale{}), layout().values);
}

} // namespace chart
