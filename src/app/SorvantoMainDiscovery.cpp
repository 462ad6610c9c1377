#include "app/SorvantoMain.h"

#include "app/Logging.h"
#include "device/Discovery.h"

#include <QNetworkDatagram>
#include <QUdpSocket>

namespace {

// A flood must leave the event loop time for everything else; what is left is read at its next turn.
constexpr int datagramsPerTurn = 64;

/// The send socket is bound before it is connected: only so can the receive socket share its port afterwards. One that
/// was bound stays valid where no network leads to the broadcast address; connected it is not.
bool connectToLoggers(QUdpSocket &socket, const QHostAddress &local)
{
    socket.bind(local, 0, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint);
    socket.connectToHost(broadcastAddressOf(local), discoveryPort, QIODevice::ReadWrite);
    return socket.isValid() && socket.state() == QAbstractSocket::ConnectedState;
}

} // namespace

void SorvantoMain::broadcastDevice()
{
    closeDiscoverySockets();
    auto *sending = new QUdpSocket(this);
    m_sndUdpSocket = sending;
    connect(sending, &QObject::destroyed, this, &SorvantoMain::slotSndUdpSocketDeleted);
    auto *receiving = new QUdpSocket(this);
    m_rcvUdpSocket = receiving;
    connect(receiving, &QUdpSocket::readyRead, this, &SorvantoMain::readPendingDatagrams);
    connect(receiving, &QObject::destroyed, this, &SorvantoMain::slotRcvUdpSocketDeleted);

    QHostAddress local;
    if (!findLocalIpv4Address(local)) {
        qCDebug(lcApp) << "[ERROR] SorvantoMain::broadcastDevice : can't get local ip address.";
        showTimedMessage(QStringLiteral("WARNING"), QStringLiteral("Cannot Get Local IP address.\nPlease retry."));
        return;
    }
    qCDebug(lcApp).noquote() << "SorvantoMain::broadcastDevice : local ip address :" << local.toString();
    if (!connectToLoggers(*sending, local)) {
        qCDebug(lcApp) << "[ERROR] SorvantoMain::broadcastDevice : m_sndUdpSocket->isValid() : false";
        showTimedMessage(QStringLiteral("WARNING"), QStringLiteral("UDP Send Socket Down.\nPlease retry."));
        return;
    }

    const quint16 replyPort = sending->localPort();
    qCDebug(lcApp) << "SorvantoMain::broadcastDevice : m_sndUdpSocket->localPort :" << replyPort;
    const bool bound = receiving->bind(local, replyPort, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint);
    qCDebug(lcApp) << "SorvantoMain::broadcastDevice : m_rcvUdpSocket->bind :" << bound;
    const qint64 written = sending->write(discoveryRequest());
    qCDebug(lcApp) << "SorvantoMain::broadcastDevice : m_sndUdpSocket->write :" << written;
    sending->disconnectFromHost();
}

/// Deleted later, because this may run inside a signal of the receive socket.
void SorvantoMain::closeDiscoverySockets()
{
    for (QPointer<QUdpSocket> *member : {&m_rcvUdpSocket, &m_sndUdpSocket}) {
        QUdpSocket *socket = std::exchange(*member, nullptr);
        if (!socket)
            continue;
        socket->abort();
        socket->close();
        socket->deleteLater();
    }
}

void SorvantoMain::slotSndUdpSocketDeleted()
{
    qCDebug(lcApp) << "SorvantoMain::slotSndUdpSocketDeleted";
}

void SorvantoMain::slotRcvUdpSocketDeleted()
{
    qCDebug(lcApp) << "SorvantoMain::slotRcvUdpSocketDeleted";
}

void SorvantoMain::readPendingDatagrams()
{
    qCDebug(lcApp) << "SorvantoMain::readPendingDatagrams()";
    for (int cnt = 0; cnt < datagramsPerTurn && m_rcvUdpSocket && m_rcvUdpSocket->hasPendingDatagrams(); ++cnt) {
        const QNetworkDatagram datagram = m_rcvUdpSocket->receiveDatagram();
        const QByteArray bytes = datagram.data();
        qCDebug(lcApp).nospace() << "SorvantoMain::readPendingDatagrams : cnt : " << cnt << ", size : " << bytes.size();
        qCDebug(lcApp) << datagram.senderAddress().toString() << bytes;
        if (!isDiscoveryReply(bytes))
            continue;
        if (const auto reply = decodeDiscoveryReply(bytes))
            mergeDiscovered(*reply);
        else
            qCDebug(lcApp) << "[ERROR] SorvantoMain::readPendingDatagrams : reply too short, size :" << bytes.size();
    }
    // What is left is read at the next turn; a list made anew at each of them would be of no use to anybody.
    if (!m_rcvUdpSocket || !m_rcvUdpSocket->hasPendingDatagrams())
        refreshFoundDevices();
    qCDebug(lcApp).nospace() << "SorvantoMain::readPendingDatagrams m_availDeviceList size :[" << m_availDevices.size()
                             << "]";
}

void SorvantoMain::mergeDiscovered(const DiscoveryReply &reply)
{
    qCDebug(lcApp).noquote() << "ipaddr :" << reply.ipAddress;
    qCDebug(lcApp).noquote() << "macaddr :" << reply.macAddress;
    qCDebug(lcApp) << "usedhcp :" << reply.usesDhcp;
    qCDebug(lcApp) << "portnumber :" << reply.announcedPort;
    m_availDevices.mergeNetwork(reply);
}
