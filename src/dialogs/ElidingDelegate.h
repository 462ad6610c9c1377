#pragma once

#include <QFont>
#include <QStyledItemDelegate>
#include <optional>

class QAbstractItemView;

/// Lets a list's rows be no wider than the list, so that long texts get an ellipsis; such a row's tool tip begins with
/// the whole text. Tool tips show their text letter by letter. What stands behind a tab is a second column, at the same
/// place in all rows and never touched by the first one.
class ElidingDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    /// For the view that it belongs to, which has its model already.
    explicit ElidingDelegate(QAbstractItemView *view);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event, QAbstractItemView *view, const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;

private:
    /// Of the widest texts in each column.
    struct Widths
    {
        QFont font;
        qreal first;
        qreal second;
    };

    const Widths &widths(const QAbstractItemModel &model, const QFont &font) const;
    int stopOfSecondColumn(const QAbstractItemModel &model, const QFont &font, qreal width) const;
    QStyleOptionViewItem fitted(const QStyleOptionViewItem &option, const QModelIndex &index) const;

    mutable std::optional<Widths>
        m_widths; ///< until a row changes; hundreds of rows would be measured for each one drawn
};
