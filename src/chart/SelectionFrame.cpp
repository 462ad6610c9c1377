#include "chart/SelectionFrame.h"

#include <QLabel>

SelectionFrame::SelectionFrame(QWidget *parent) : m_parent(parent) {}

void SelectionFrame::setBorder(const QColor &colour, int width)
{
    m_colour = colour;
    m_width = width;
}

void SelectionFrame::show(const QRect &rectangle)
{
    if (!m_edges.front())
        create();
    const QRect left(rectangle.topLeft(), QSize(m_width, rectangle.height()));
    const QRect top(rectangle.topLeft(), QSize(rectangle.width(), m_width));
    m_edges[0]->setGeometry(left);
    m_edges[1]->setGeometry(left.translated(rectangle.width() - m_width, 0));
    m_edges[2]->setGeometry(top);
    m_edges[3]->setGeometry(top.translated(0, rectangle.height() - m_width));
    for (QLabel *edge : m_edges) {
        QPalette palette = edge->palette();
        palette.setColor(QPalette::Window, m_colour);
        edge->setPalette(palette);
        edge->show();
    }
}

void SelectionFrame::hide()
{
    for (QLabel *edge : m_edges) {
        if (edge)
            edge->hide();
    }
}

void SelectionFrame::create()
{
    for (QLabel *&edge : m_edges) {
        edge = new QLabel(m_parent);
        edge->setAutoFillBackground(true);
        edge->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
}
