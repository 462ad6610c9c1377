#include "loggersim/NetworkLogger.h"
#include "loggersim/Conversation.h"
#include "loggersim/PortBlocker.h"

#include <QDebug>
#include <QTcpSocket>
#include <utility>

namespace loggersim {

namespace {

constexpr qint64 readBufferSize = 64 * 1024;

} // namespace

NetworkLogger::NetworkLogger(const QString &key, const Climate &climate, quint32 seed, QObject *parent)
    : SimLogger(NetworkInterface, key, climate, seed, parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &NetworkLogger::slotConnection);
    connect(this, &SimLogger::faultChanged, this, &NetworkLogger::slotFaultChanged);
}

NetworkLogger::~NetworkLogger()
{
    dropConnections();
}

bool NetworkLogger::listen(const QHostAddress &address, quint16 port)
{
    m_address = address;
    m_port = port;
    return open();
}

QString NetworkLogger::errorString() const
{
    return m_server.errorString();
}

QString NetworkLogger::address() const
{
    return m_address.toString();
}

int NetworkLogger::connectionCount() const
{
    return m_connections.size();
}

void NetworkLogger::slotConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection())
        greet(socket);
}

void NetworkLogger::greet(QTcpSocket *socket)
{
    socket->setParent(this);
    socket->setReadBufferSize(readBufferSize);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_connections.append(socket);
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        m_connections.removeOne(socket);
        socket->deleteLater();
    });
    auto *talk = new Conversation(socket, this, socket);
    connect(talk, &Conversation::finished, socket, &QTcpSocket::disconnectFromHost);
}

void NetworkLogger::slotFaultChanged()
{
    moveTo(suffersFrom(FaultKind::Refuse)   ? Door::Refusing
           : suffersFrom(FaultKind::Vanish) ? Door::Unreachable
                                            : Door::Open);
}

void NetworkLogger::moveTo(Door door)
{
    if (door == m_door)
        return;
    if (m_door != Door::Open && !open())
        qWarning().noquote() << "loggersim:" << key() << "cannot listen again:" << errorString();
    m_door = door;
    if (door == Door::Refusing)
        refuse();
    else if (door == Door::Unreachable)
        vanish();
}

bool NetworkLogger::open()
{
    // What was connected before a power cut is dead afterwards.
    dropConnections();
    m_placeholder.reset();
    m_server.close();
    m_blocker.reset();
    if (!m_server.listen(m_address, m_port))
        return false;
    m_port = m_server.serverPort();
    return true;
}

void NetworkLogger::refuse()
{
    dropConnections();
    m_server.close();
    // Bound but not listening: the system refuses, and gives the port to nobody else meanwhile.
    m_placeholder = std::make_unique<QTcpSocket>();
    m_placeholder->bind(m_address, m_port, QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint);
}

void NetworkLogger::vanish()
{
    slotConnection();
    m_server.pauseAccepting();
    m_blocker = std::make_unique<PortBlocker>(m_server.socketDescriptor());
}

void NetworkLogger::dropConnections()
{
    const QList<QTcpSocket *> connections = std::exchange(m_connections, {});
    for (QTcpSocket *socket : connections) {
        socket->disconnect(this);
        socket->abort();
        socket->deleteLater();
    }
}

} // namespace loggersim
