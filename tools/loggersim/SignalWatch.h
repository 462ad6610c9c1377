#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace loggersim {

/// Turns SIGTERM and SIGINT into a Qt signal. One at a time; the previous handlers return with its destruction.
class SignalWatch : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatch(QObject *parent = nullptr);
    ~SignalWatch() override;

signals:
    /// @p fromTerminal: a key was pressed, so that every program of the terminal has got it.
    void received(int number, bool fromTerminal);

private:
    void slotReadable();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace loggersim
