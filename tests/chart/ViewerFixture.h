#pragma once

#include "chart/QChartViewer.h"
#include "chart/XYChart.h"

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

/// A viewer with a chart of 300 x 150 whose plot area is 200 x 100 at (50, 20), a mouse over it and a clock that the
/// test moves.
class ViewerFixture
{
public:
    static std::unique_ptr<chart::XYChart> makeChart(const QColor &background = QColor(10, 20, 30), int width = 300)
    {
        auto picture = std::make_unique<chart::XYChart>(width, 150, background);
        chart::PlotArea area;
        area.area = QRect(50, 20, 200, 100);
        picture->setPlotArea(area);
        return picture;
    }

    ViewerFixture() : chart(makeChart())
    {
        viewer.setClock([this] { return now; });
        viewer.setChart(chart.get());
    }

    void send(QEvent::Type type, const QPoint &at, Qt::MouseButton button = Qt::NoButton,
              Qt::MouseButtons buttons = Qt::NoButton)
    {
        QMouseEvent event(type, at, at, viewer.mapToGlobal(at), button, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(&viewer, &event);
    }
    /// However soon after the last move.
    void move(const QPoint &at) { send(QEvent::MouseMove, at); }
    /// Late enough after the last move to be handled at once.
    void moveTo(const QPoint &at)
    {
        now += 300;
        move(at);
    }
    void press(const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonPress, at, button, button);
    }
    void release(const QPoint &at, Qt::MouseButton button = Qt::LeftButton)
    {
        send(QEvent::MouseButtonRelease, at, button);
    }
    void drag(const QPoint &from, const QPoint &to)
    {
        press(from);
        moveTo(to);
        release(to);
    }
    void leave()
    {
        QEvent event(QEvent::Leave);
        QCoreApplication::sendEvent(&viewer, &event);
    }

    QImage shown() const { return viewer.pixmap(Qt::ReturnByValue).toImage(); }

    qint64 now = 1000;
    QChartViewer viewer;
    std::unique_ptr<chart::XYChart> chart;
};
