#include "dialogs/ElidingDelegate.h"

#include "dialogs/PlainToolTip.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QToolTip>
#include <cmath>

namespace {

/// Where a style sets the tab stops of a row's text.
constexpr qreal tabDistance = 80;
constexpr qreal columnGap = 10;

const QStyle *styleOf(const QStyleOptionViewItem &option)
{
    return option.widget ? option.widget->style() : QApplication::style();
}

qreal widthForText(const QStyleOptionViewItem &option)
{
    const QStyle *style = styleOf(option);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
    return style->subElementRect(QStyle::SE_ItemViewItemText, &option, option.widget).width() - 2 * margin;
}

QString firstColumn(const QString &text)
{
    return text.section(QLatin1Char('\t'), 0, 0);
}

QString secondColumn(const QString &text)
{
    return text.section(QLatin1Char('\t'), 1);
}

qreal widest(QString (*column)(const QString &), const QAbstractItemModel &model, const QFontMetricsF &metrics)
{
    qreal width = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        width = qMax(width, metrics.horizontalAdvance(column(model.index(row, 0).data().toString())));
    return width;
}

/// @p name and as many tabs as lead from its end to the tab stop.
QString upToStop(QString name, int stop, const QFontMetricsF &metrics)
{
    constexpr qreal unsure = 2;
    // What ends about at a tab stop may end on either side of it when it is drawn.
    if (std::fmod(metrics.horizontalAdvance(name) + unsure, tabDistance) < 2 * unsure)
        name += QLatin1String("  ");
    const int passed = int(metrics.horizontalAdvance(name) / tabDistance);
    return name + QString(stop - passed, QLatin1Char('\t'));
}

} // namespace

ElidingDelegate::ElidingDelegate(QAbstractItemView *view) : QStyledItemDelegate(view)
{
    const auto forget = [this] {
        m_widths.reset();
    };
    const QAbstractItemModel *model = view->model();
    connect(model, &QAbstractItemModel::dataChanged, this, forget);
    connect(model, &QAbstractItemModel::rowsInserted, this, forget);
    connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
    connect(model, &QAbstractItemModel::modelReset, this, forget);
}

const ElidingDelegate::Widths &ElidingDelegate::widths(const QAbstractItemModel &model, const QFont &font) const
{
    if (!m_widths || m_widths->font != font) {
        const QFontMetricsF metrics(font);
        m_widths = Widths{font, widest(firstColumn, model, metrics), widest(secondColumn, model, metrics)};
    }
    return *m_widths;
}

/// The tab stop, counted from 1, that leaves room for the first columns of all rows, unless the second ones would be
/// cut for it; those get half of the row at most.
int ElidingDelegate::stopOfSecondColumn(const QAbstractItemModel &model, const QFont &font, qreal width) const
{
    const Widths &texts = widths(model, font);
    const qreal wanted = std::ceil((texts.first + columnGap) / tabDistance);
    const qreal last = std::floor(qMax(width - texts.second, width / 2) / tabDistance);
    return int(qMax(qMin(wanted, last), 1.0));
}

/// The row as it is drawn: with a text that fits.
QStyleOptionViewItem ElidingDelegate::fitted(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QFontMetricsF metrics(row.font);
    const qreal width = widthForText(row);
    if (!row.text.contains(QLatin1Char('\t'))) {
        row.text = metrics.elidedText(row.text, row.textElideMode, width);
        return row;
    }
    const int stop = stopOfSecondColumn(*index.model(), row.font, width);
    const qreal second = stop * tabDistance;
    const QString first = metrics.elidedText(firstColumn(row.text), row.textElideMode, second - columnGap);
    row.text =
        upToStop(first, stop, metrics) + metrics.elidedText(secondColumn(row.text), row.textElideMode, width - second);
    return row;
}

void ElidingDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QStyleOptionViewItem row = fitted(option, index);
    styleOf(row)->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
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
    const QString text = index.data(Qt::DisplayRole).toString();
    const QChar ellipsis(0x2026);
    if (fitted(option, index).text.count(ellipsis) > text.count(ellipsis))
        tip.prepend(text + QLatin1Char('\n'));
    // A tool tip looks like the widget it is for: that must not be a list without a background.
    QToolTip::showText(event->globalPos(), plainToolTip(tip), view->window());
    return true;
}
