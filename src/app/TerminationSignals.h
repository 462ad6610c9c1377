#pragma once

#include <QObject>
#include <memory>

/// Turns the system's requests to end the program (SIGTERM, SIGINT, and SIGHUP unless that was ignored before)
/// into a signal on the event loop. A closed pipe behind the diagnostics no longer ends the program.
/// At most one object of this class may exist at a time.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

    /// Whether a request has come, be it delivered or still waiting for the event loop.
    bool wasRequested() const;

signals:
    void terminationRequested();

private:
    class Private;
    std::unique_ptr<Private> d;
};
