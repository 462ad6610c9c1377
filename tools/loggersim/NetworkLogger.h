#pragma once

#include "loggersim/SimLogger.h"

#include <QHostAddress>
#include <QTcpServer>
#include <memory>

class QTcpSocket;

namespace loggersim {

class PortBlocker;

/// A logger behind a TCP port; any number of stations may be connected at a time.
class NetworkLogger : public SimLogger
{
    Q_OBJECT

public:
    NetworkLogger(const QString &key, const Climate &climate, quint32 seed, QObject *parent = nullptr);
    ~NetworkLogger() override;

    /// Port 0 lets the system choose one. False when the port cannot be had; errorString() says why.
    bool listen(const QHostAddress &address, quint16 port);
    QString errorString() const;

    QHostAddress hostAddress() const { return m_address; }
    QString address() const override;
    quint16 port() const override { return m_port; }
    int connectionCount() const override;

private:
    enum class Door { Open, Refusing, Unreachable };

    void slotConnection();
    void slotFaultChanged();
    void moveTo(Door door);
    bool open();
    void refuse();
    void vanish();
    void dropConnections();
    void greet(QTcpSocket *socket);

    QTcpServer m_server;
    QHostAddress m_address;
    quint16 m_port = 0;
    Door m_door = Door::Open;
    QList<QTcpSocket *> m_connections;
    std::unique_ptr<QTcpSocket> m_placeholder;
    std::unique_ptr<PortBlocker> m_blocker;
};

} // namespace loggersim
