#pragma once

#include <QStyledItemDelegate>

/// Lets a list's rows be no wider than the list, so that long texts get an ellipsis; such a row's tool tip begins with
/// the whole text. Tool tips show their text letter by letter. What stands behind a tab is a second column, at the same
/// place in all rows and never touched by the first one.
class ElidingDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    QStyleOptionViewItem fitted(const QStyleOptionViewItem &option, const QModelIndex &index) const;
};
