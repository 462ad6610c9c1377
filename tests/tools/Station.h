#pragma once

#include "loggersim/NetworkLogger.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

/// Talks to a network logger as a station would; collects what it hears.
class Station : public QTcpSocket
{
public:
    Station()
    {
        connect(this, &QTcpSocket::readyRead, this, [this] {
            ++pieces;
            received += readAll();
        });
    }

    /// Connects and waits until the logger has taken the connection.
    bool reach(const loggersim::NetworkLogger &logger)
    {
        const int before = logger.connectionCount();
        connectToHost(logger.hostAddress(), logger.port());
        return QTest::qWaitFor([&] { return state() == ConnectedState && logger.connectionCount() > before; });
    }

    /// One line of answer; empty when none came.
    QByteArray ask(const QByteArray &command)
    {
        received.clear();
        pieces = 0;
        write(command);
        QSignalSpy heard(this, &QTcpSocket::readyRead);
        while (!received.endsWith('\n')) {
            if (!heard.wait())
                return {};
        }
        return received;
    }

    QByteArray received;
    int pieces = 0;
};
