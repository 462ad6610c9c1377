#pragma once

#include <QObject>
#include <QSize>

class QWidget;

/// Keeps a widget as large as its layout needs: a minimum size from its form alone would let the contents overlap.
/// Belongs to the widget; the minimum size it finds at first stays the least.
class ContentMinimum : public QObject
{
    Q_OBJECT

public:
    explicit ContentMinimum(QWidget *widget);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *const m_widget;
    const QSize m_least;
};
