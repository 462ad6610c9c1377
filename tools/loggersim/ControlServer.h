#pragma once

#include "loggersim/ControlCommands.h"

#include <QLocalServer>
#include <QObject>
#include <QSocketNotifier>
#include <memory>

namespace loggersim {

/// Takes control lines from a local socket and, when asked to, from the standard input.
class ControlServer : public QObject
{
    Q_OBJECT

public:
    explicit ControlServer(Fleet *fleet, QObject *parent = nullptr);

    /// False when the socket cannot be made; errorString() says why.
    bool listen(const QString &path);
    QString errorString() const;
    /// Answers go to the standard output.
    void listenOnStandardInput();

signals:
    void quitRequested();

private:
    void slotConnection();
    void slotStandardInput();
    /// Runs the complete lines at the start of @p input, takes them out and returns the answers.
    QByteArray answer(QByteArray &input) const;

    ControlCommands m_commands;
    QLocalServer m_server;
    QString m_error;
    std::unique_ptr<QSocketNotifier> m_standardInput;
    QByteArray m_standardLines;
};

} // namespace loggersim
