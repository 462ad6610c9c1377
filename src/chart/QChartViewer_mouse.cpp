#include "chart/QChartViewer.h"

#include <QMetaMethod>
#include <QMouseEvent>
#include <algorithm>
#include <cstdlib>

void QChartViewer::mouseMoveEvent(QMouseEvent *event)
{
    m_moves.take(event);
}

void QChartViewer::handleMove(QMouseEvent *event)
{
    m_mousePosition = event->pos();
    m_mouseOverWidget = true;
    continueDrag();
    emit mouseMove(event);
    if (isInExtendedPlotArea(m_mousePosition)) {
        m_mouseInExtendedPlotArea = true;
        emit mouseMovePlotArea(event);
    } else if (m_mouseInExtendedPlotArea) {
        leavePlotArea(event);
    }
    emit mouseMoveChart(event);
    showCursorShape();
}

void QChartViewer::leavePlotArea(QEvent *event)
{
    m_mouseInExtendedPlotArea = false;
    emit mouseLeavePlotArea(event);
    removeDynamicLayerTiedTo(DynamicLayerEnd::PlotAreaLeft);
}

void QChartViewer::leaveEvent(QEvent *event)
{
    // The mouse is elsewhere by now.
    m_moves.drop();
    m_mouseOverWidget = false;
    if (m_mouseInExtendedPlotArea)
        leavePlotArea(event);
    emit mouseLeaveChart(event);
    removeDynamicLayerTiedTo(DynamicLayerEnd::ChartLeft);
}

void QChartViewer::wheelEvent(QWheelEvent *event)
{
    static const QMetaMethod wheelSignal = QMetaMethod::fromSignal(&QChartViewer::mouseWheel);
    const bool wanted = isSignalConnected(wheelSignal);
    event->setAccepted(wanted);
    if (wanted)
        emit mouseWheel(event);
}

void QChartViewer::mousePressEvent(QMouseEvent *event)
{
    m_moves.flush();
    if (event->button() != Qt::LeftButton)
        return;
    m_pressed = true;
    m_mousePosition = event->pos();
    m_pressPosition = event->pos();
    m_viewPortAtPress = viewPort();
    m_dragStarted = m_usage != MouseUsage::Default && isInPlotArea(event->pos());
    showCursorShape();
}

void QChartViewer::mouseReleaseEvent(QMouseEvent *event)
{
    m_moves.flush();
    if (event->button() != Qt::LeftButton || !m_pressed)
        return;
    m_pressed = false;
    m_mousePosition = event->pos();
    if (m_dragStarted) {
        const bool moved = m_dragMoving;
        endDrag();
        zoomAfterDrag(moved);
        updateViewPort(true, true);
    }
    showCursorShape();
    if ((m_mousePosition - m_pressPosition).manhattanLength() < m_minimumDrag)
        emit clicked(event);
}

/// How far the mouse was dragged in the direction that counts; where both do, a scroll may go either way, but a
/// rectangle needs both.
int QChartViewer::dragLength() const
{
    const QPoint distance = m_mousePosition - m_pressPosition;
    const int x = std::abs(distance.x());
    const int y = std::abs(distance.y());
    switch (m_usage == MouseUsage::Scroll ? scrollDirection() : zoomDirection()) {
    case Direction::Horizontal:
        return x;
    case Direction::Vertical:
        return y;
    case Direction::Both:
        break;
    }
    return m_usage == MouseUsage::Scroll ? std::max(x, y) : std::min(x, y);
}

void QChartViewer::continueDrag()
{
    if (!m_dragStarted)
        return;
    if (m_usage == MouseUsage::Scroll) {
        // Once it moves it follows the mouse back to where it began, too.
        m_dragMoving = m_dragMoving || dragLength() >= m_minimumDrag;
        if (m_dragMoving && scrollFrom(m_viewPortAtPress, m_mousePosition - m_pressPosition))
            updateViewPort(true, false);
    } else if (m_usage == MouseUsage::ZoomIn) {
        m_dragMoving = dragLength() >= m_minimumDrag;
        if (m_dragMoving)
            m_selection.show(draggedRectangle());
        else
            m_selection.hide();
    }
}

void QChartViewer::endDrag()
{
    m_dragStarted = false;
    m_dragMoving = false;
    m_selection.hide();
}

void QChartViewer::zoomAfterDrag(bool moved)
{
    if (m_usage == MouseUsage::ZoomOut)
        zoomAt(m_pressPosition, m_zoomOutRatio);
    else if (m_usage == MouseUsage::ZoomIn && moved)
        zoomTo(draggedRectangle());
    else if (m_usage == MouseUsage::ZoomIn)
        zoomAt(m_pressPosition, m_zoomInRatio);
}

/// Within the plot area, and all of it in the direction that is not zoomed.
QRect QChartViewer::draggedRectangle() const
{
    const QRect area = plotArea();
    const QRect dragged(
        QPoint(std::min(m_pressPosition.x(), m_mousePosition.x()), std::min(m_pressPosition.y(), m_mousePosition.y())),
        QSize(std::abs(m_pressPosition.x() - m_mousePosition.x()),
              std::abs(m_pressPosition.y() - m_mousePosition.y())));
    QRect rectangle = dragged.intersected(area);
    if (zoomDirection() == Direction::Horizontal)
        rectangle = QRect(rectangle.x(), area.y(), rectangle.width(), area.height());
    else if (zoomDirection() == Direction::Vertical)
        rectangle = QRect(area.x(), rectangle.y(), area.width(), rectangle.height());
    return rectangle;
}

void QChartViewer::showCursorShape()
{
    if (m_usage == MouseUsage::Default || !(m_dragStarted || isInPlotArea(m_mousePosition)))
        unsetCursor();
    else if (m_usage == MouseUsage::Scroll)
        setCursor(m_dragStarted ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    else
        setCursor(Qt::CrossCursor);
}
