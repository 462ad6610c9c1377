#pragma once

#include <QStyledItemDelegate>

/// Lets a list's rows be no wider than the list, so that long texts get an ellipsis; such a row's tool tip begins with
/// the whole text. Tool tips show their text letter by letter. Columns that a tab parts never touch.
class ElidingDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant &value, const QLocale &locale) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
};
