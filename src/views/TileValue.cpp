#include "views/TileValue.h"

#include <QEvent>
#include <QPainter>
#include <QStyleOption>

TileValue::TileValue(QWidget *parent) : ResizeLabel(parent) {}

bool TileValue::event(QEvent *event)
{
    const bool done = ResizeLabel::event(event);
    // The style takes it away each time it looks up the style sheet.
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::Polish)
        setAttribute(Qt::WA_OpaquePaintEvent);
    return done;
}

void TileValue::paintParent(QPainter &painter) const
{
    const QWidget *parent = parentWidget();
    QStyleOption option;
    option.initFrom(parent);
    painter.translate(-pos());
    parent->style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, parent);
    painter.translate(pos());
}

void TileValue::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintParent(painter);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(contentsRect(), int(alignment()) | Qt::TextForceLeftToRight, text());
}
