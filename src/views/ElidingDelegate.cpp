#include "views/ElidingDelegate.h"

#include "dialogs/PlainToolTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

QSize ElidingDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return {0, QStyledItemDelegate::sizeHint(option, index).height()};
}

bool ElidingDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    const int wanted = QStyledItemDelegate::sizeHint(option, index).width();
    if (event->type() != QEvent::ToolTip || wanted <= option.rect.width())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString name = index.data(Qt::DisplayRole).toString();
    const QString tip = index.data(Qt::ToolTipRole).toString();
    QToolTip::showText(event->globalPos(), plainToolTip(name + QLatin1Char('\n') + tip), view->viewport());
    return true;
}
