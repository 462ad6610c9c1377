#pragma once

#include <QFrame>

/// A frame that reports presses, drags and double clicks; positions are global.
class TopCustomFrame : public QFrame
{
    Q_OBJECT

public:
    using QFrame::QFrame;

signals:
    void customClick(const QPoint &globalPosition);
    void customMove(const QPoint &globalPosition);
    void customDoubleClick();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};
