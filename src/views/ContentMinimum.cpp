#include "views/ContentMinimum.h"

#include <QEvent>
#include <QLayout>
#include <QWidget>

ContentMinimum::ContentMinimum(QWidget *widget) : QObject(widget), m_widget(widget), m_least(widget->minimumSize())
{
    m_widget->installEventFilter(this);
}

bool ContentMinimum::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest && m_widget->layout())
        m_widget->setMinimumSize(m_least.expandedTo(m_widget->layout()->totalMinimumSize()));
    return false;
}
