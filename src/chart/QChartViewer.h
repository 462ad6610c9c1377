#pragma once

#include "chart/MouseMoveThrottle.h"
#include "chart/SelectionFrame.h"
#include "chart/ViewPort.h"

#include <QLabel>
#include <QTimer>

namespace chart {
class XYChart;
}

/// Shows a chart and turns what the mouse does over it into signals, zooming and scrolling. What is to be shown is
/// asked for by viewPortChanged(); the handler builds a chart for the view port and hands it over with setChart().
///
/// The viewer owns no chart. Whoever hands one over keeps it until another has been handed over or the viewer is gone.
class QChartViewer : public QLabel, public chart::ViewPort
{
    Q_OBJECT

public:
    enum class MouseUsage { Default = 0, Scroll = 1, ZoomIn = 3, ZoomOut = 4 };

    explicit QChartViewer(QWidget *parent = nullptr);

    /// Shows the chart; while a view-port change is being processed, as soon as that has ended. Null shows nothing.
    virtual void setChart(chart::XYChart *picture);
    /// The chart last handed over, also while a view-port change is being processed.
    virtual chart::XYChart *chart() const;
    /// False while the mouse is outside the widget, otherwise whether it was last in the extended plot area.
    virtual bool isMouseOnPlotArea() const;
    /// Emits viewPortChanged() and shows the chart, at once or, shortly after the last time, when the update interval
    /// is over. Ignored inside viewPortChanged().
    virtual void updateViewPort(bool chartNeeded, bool imageMapNeeded);
    /// Shows the chart as it is now, its dynamic layer included, sharp on the screen that the viewer is on. On a screen
    /// of another density that happens by itself.
    virtual void updateDisplay();
    /// Clears the dynamic layer "now", or at the next "mouseleaveplotarea" or "mouseleavechart", in any case of
    /// letters.
    virtual void removeDynamicLayer(const QString &eventName);
    /// Where the mouse was last, within the plot area.
    virtual int plotAreaMouseX() const;

    // What the update under way was asked for; both stay set until the chart has been shown.
    bool needsChart() const;
    bool needsImageMap() const;

    MouseUsage mouseUsage() const;
    void setMouseUsage(MouseUsage usage);
    void setZoomInRatio(double ratio);
    void setZoomOutRatio(double ratio);
    /// How far the mouse must move for a drag, in pixels.
    void setMinimumDrag(int pixels);
    /// In milliseconds; 0: no update is held back.
    void setUpdateInterval(int ms);
    void setSelectionBorder(const QColor &colour, int width);
    /// Replaces the clock that mouse moves are thinned out by.
    void setClock(MouseMoveThrottle::Clock clock);

signals:
    void viewPortChanged();
    /// The left button was pressed and released without a drag.
    void clicked(QMouseEvent *event);
    void mouseMove(QMouseEvent *event);
    /// Wheel events stay with the viewer only while something is connected.
    void mouseWheel(QWheelEvent *event);
    void mouseMoveChart(QMouseEvent *event);
    void mouseLeaveChart(QEvent *event);
    void mouseMovePlotArea(QMouseEvent *event);
    void mouseLeavePlotArea(QEvent *event);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /// When the dynamic layer is to go.
    enum class DynamicLayerEnd { Never, PlotAreaLeft, ChartLeft };

    void processUpdate();
    void endUpdateHold();

    void handleMove(QMouseEvent *event);
    void leavePlotArea(QEvent *event);
    void clearDynamicLayer();
    void removeDynamicLayerTiedTo(DynamicLayerEnd end);
    void showCursorShape();

    int dragLength() const;
    void continueDrag();
    void endDrag();
    void zoomAfterDrag(bool moved);
    QRect draggedRectangle() const;

    chart::XYChart *m_chart = nullptr;
    DynamicLayerEnd m_dynamicLayerEnd = DynamicLayerEnd::Never;
    bool m_inViewPortChange = false;
    bool m_updatingDisplay = false;
    bool m_needsChart = false;
    bool m_needsImageMap = false;
    bool m_updateHeldBack = false;
    QTimer m_updateHold;

    MouseUsage m_usage = MouseUsage::Default;
    double m_zoomInRatio = 2.0;
    double m_zoomOutRatio = 0.5;
    int m_minimumDrag = 5;
    SelectionFrame m_selection;

    MouseMoveThrottle m_moves;
    QPoint m_mousePosition;
    bool m_mouseOverWidget = false;
    bool m_mouseInExtendedPlotArea = false;

    bool m_pressed = false;
    bool m_dragStarted = false;
    bool m_dragMoving = false;
    QPoint m_pressPosition;
    QRectF m_viewPortAtPress;
};
