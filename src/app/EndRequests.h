#pragma once

#include "app/TerminationSignals.h"

#include <QObject>

/// Everything from outside that asks the program to end: the system's signals and the end of the desktop session. The
/// toolkit's own answer to the latter, to close whatever windows there are and to quit, does not come to pass: it knows
/// of no loop that is still to run.
/// At most one object of this class may exist at a time.
class EndRequests : public QObject
{
    Q_OBJECT

public:
    explicit EndRequests(QObject *parent = nullptr);

    /// Whether a request has come; a signal counts before the event loop delivers it.
    bool wasMade() const { return m_hasSessionEnded || m_signals.wasRequested(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void made();

private:
    TerminationSignals m_signals;
    bool m_hasSessionEnded = false;
};
