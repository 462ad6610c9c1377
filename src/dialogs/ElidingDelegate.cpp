#include "dialogs/ElidingDelegate.h"

#include "dialogs/PlainToolTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

QString ElidingDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    // A text that ends right before a tab stop would leave no gap.
    return QStyledItemDelegate::displayText(value, locale).replace(QLatin1Char('\t'), QStringLiteral("  \t"));
}

QSize ElidingDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    return {0, QStyledItemDelegate::sizeHint(option, index).height()};
}

bool ElidingDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                                const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QString tip = index.data(Qt::ToolTipRole).toString();
    if (QStyledItemDelegate::sizeHint(option, index).width() > option.rect.width())
        tip.prepend(index.data(Qt::DisplayRole).toString() + QLatin1Char('\n'));
    // A tool tip looks like the widget it is for: that must not be a list without a background.
    QToolTip::showText(event->globalPos(), plainToolTip(tip), view->window());
    return true;
}
