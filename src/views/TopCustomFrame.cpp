#include "views/TopCustomFrame.h"

#include <QMouseEvent>

namespace {

QPoint globalPosition(const QMouseEvent *event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event->globalPosition().toPoint();
#else
    return event->globalPos();
#endif
}

} // namespace

void TopCustomFrame::mousePressEvent(QMouseEvent *event)
{
    emit customClick(globalPosition(event));
}

void TopCustomFrame::mouseMoveEvent(QMouseEvent *event)
{
    emit customMove(globalPosition(event));
}

void TopCustomFrame::mouseDoubleClickEvent(QMouseEvent *)
{
    emit customDoubleClick();
}
