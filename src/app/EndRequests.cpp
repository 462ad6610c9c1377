#include "app/EndRequests.h"

#include <QEvent>
#include <QGuiApplication>

EndRequests::EndRequests(QObject *parent) : QObject(parent)
{
    connect(&m_signals, &TerminationSignals::terminationRequested, this, &EndRequests::made);
    QCoreApplication::instance()->installEventFilter(this);
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    // Or the windows are closed when the session is only about to end, which it may not do after all.
    QGuiApplication::setFallbackSessionManagementEnabled(false);
#endif
}

bool EndRequests::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::Quit || watched != QCoreApplication::instance())
        return false;
    m_hasSessionEnded = true;
    emit made();
    return true;
}
