#pragma once

#include <QColor>
#include <QRect>
#include <array>

class QLabel;
class QWidget;

/// The rectangle that follows the mouse while a zoom is being dragged: four labels on a widget, created when first
/// shown.
class SelectionFrame
{
public:
    explicit SelectionFrame(QWidget *parent);

    void setBorder(const QColor &colour, int width);
    void show(const QRect &rectangle);
    void hide();

private:
    void create();

    QWidget *m_parent;
    QColor m_colour = Qt::black;
    int m_width = 2;
    std::array<QLabel *, 4> m_edges{};
};
