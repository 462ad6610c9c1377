#include "chart/QChartViewer.h"

#include "chart/XYChart.h"

#include <QScopedValueRollback>
#include <algorithm>

namespace {

constexpr int updateIntervalMs = 20;

} // namespace

QChartViewer::QChartViewer(QWidget *parent)
    : QLabel(parent), m_selection(this), m_moves([this](QMouseEvent *event) { handleMove(event); })
{
    setMouseTracking(true);
    m_updateHold.setSingleShot(true);
    m_updateHold.setTimerType(Qt::PreciseTimer);
    m_updateHold.setInterval(updateIntervalMs);
    connect(&m_updateHold, &QTimer::timeout, this, &QChartViewer::endUpdateHold);
}

void QChartViewer::setChart(chart::XYChart *picture)
{
    m_chart = picture;
    if (m_chart)
        updateDisplay();
    else
        clear();
}

chart::XYChart *QChartViewer::chart() const
{
    return m_chart;
}

bool QChartViewer::isMouseOnPlotArea() const
{
    return m_mouseOverWidget && isInExtendedPlotArea(m_mousePosition);
}

void QChartViewer::updateViewPort(bool chartNeeded, bool imageMapNeeded)
{
    if (m_inViewPortChange)
        return;
    m_needsChart = m_needsChart || chartNeeded;
    m_needsImageMap = m_needsImageMap || imageMapNeeded;
    if (m_updateHold.isActive())
        m_updateHeldBack = true;
    else
        processUpdate();
}

void QChartViewer::processUpdate()
{
    m_updateHeldBack = false;
    setViewPort(viewPort());
    {
        const QScopedValueRollback<bool> inside(m_inViewPortChange, true);
        emit viewPortChanged();
    }
    updateDisplay();
    m_needsChart = false;
    m_needsImageMap = false;
    if (m_updateHold.interval() > 0)
        m_updateHold.start();
}

void QChartViewer::endUpdateHold()
{
    if (m_updateHeldBack)
        processUpdate();
}

void QChartViewer::updateDisplay()
{
    // A new size comes back here through the layout, and the end of a view-port change shows the chart anyway.
    if (!m_chart || m_updatingDisplay || m_inViewPortChange)
        return;
    const QScopedValueRollback<bool> updating(m_updatingDisplay, true);
    setFixedSize(m_chart->size());
    setPlotArea(m_chart->plotArea().area);
    setPixmap(QPixmap::fromImage(m_chart->picture(devicePixelRatioF())));
}

void QChartViewer::paintEvent(QPaintEvent *event)
{
    // Whatever changed the density, the window or its screen, has all of the window painted.
    if (m_chart && pixmap(Qt::ReturnByValue).devicePixelRatio() != devicePixelRatioF())
        updateDisplay();
    QLabel::paintEvent(event);
}

void QChartViewer::removeDynamicLayer(const QString &eventName)
{
    const auto is = [&eventName](const char *name) {
        return eventName.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    };
    if (is("now"))
        clearDynamicLayer();
    else if (is("mouseleaveplotarea"))
        m_dynamicLayerEnd = DynamicLayerEnd::PlotAreaLeft;
    else if (is("mouseleavechart"))
        m_dynamicLayerEnd = DynamicLayerEnd::ChartLeft;
}

int QChartViewer::plotAreaMouseX() const
{
    const QRect area = plotArea();
    return std::clamp(m_mousePosition.x(), area.x(), area.x() + std::max(0, area.width()));
}

bool QChartViewer::needsChart() const
{
    return m_needsChart;
}

bool QChartViewer::needsImageMap() const
{
    return m_needsImageMap;
}

QChartViewer::MouseUsage QChartViewer::mouseUsage() const
{
    return m_usage;
}

void QChartViewer::setMouseUsage(MouseUsage usage)
{
    m_usage = usage;
    endDrag();
    showCursorShape();
}

void QChartViewer::setZoomInRatio(double ratio)
{
    m_zoomInRatio = ratio;
}

void QChartViewer::setZoomOutRatio(double ratio)
{
    m_zoomOutRatio = ratio;
}

void QChartViewer::setMinimumDrag(int pixels)
{
    m_minimumDrag = pixels;
}

void QChartViewer::setUpdateInterval(int ms)
{
    m_updateHold.setInterval(ms);
    if (ms > 0)
        return;
    m_updateHold.stop();
    endUpdateHold();
}

void QChartViewer::setSelectionBorder(const QColor &colour, int width)
{
    m_selection.setBorder(colour, width);
}

void QChartViewer::setClock(MouseMoveThrottle::Clock clock)
{
    m_moves.setClock(std::move(clock));
}

void QChartViewer::clearDynamicLayer()
{
    m_dynamicLayerEnd = DynamicLayerEnd::Never;
    if (!m_chart)
        return;
    m_chart->dynamicLayer().clear();
    updateDisplay();
}

void QChartViewer::removeDynamicLayerTiedTo(DynamicLayerEnd end)
{
    if (m_dynamicLayerEnd == end)
        clearDynamicLayer();
}
