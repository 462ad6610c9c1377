#include "device/Discovery.h"

#include <QNetworkInterface>
#include <QtEndian>

namespace {

constexpr int requestSize = 50;
constexpr int ipAddressOffset = 12;
constexpr int macAddressOffset = 16;
constexpr int macAddressSize = 6;
constexpr int dhcpOffset = 23;
constexpr int portOffset = 24;

bool leadsToLocalNetwork(const QNetworkInterface &interface)
{
    const QNetworkInterface::InterfaceFlags flags = interface.flags();
    return interface.isValid() && flags.testFlag(QNetworkInterface::IsUp) &&
           flags.testFlag(QNetworkInterface::IsRunning) && !flags.testFlag(QNetworkInterface::IsLoopBack) &&
           !flags.testFlag(QNetworkInterface::IsPointToPoint);
}

} // namespace

QByteArray discoveryRequest()
{
    return QByteArray(requestSize, '\x01');
}

bool isDiscoveryReply(const QByteArray &datagram)
{
    const int textEnd = datagram.indexOf('\0');
    return datagram.mid(0, textEnd).contains("OSTRIVANE");
}

std::optional<DiscoveryReply> decodeDiscoveryReply(const QByteArray &datagram)
{
    if (datagram.size() < discoveryReplySize)
        return std::nullopt;
    const char *bytes = datagram.constData();
    DiscoveryReply reply;
    reply.ipAddress = QHostAddress(qFromBigEndian<quint32>(bytes + ipAddressOffset)).toString();
    reply.macAddress = QString::fromLatin1(datagram.mid(macAddressOffset, macAddressSize).toHex().toUpper());
    reply.usesDhcp = static_cast<quint8>(bytes[dhcpOffset]);
    reply.announcedPort = qFromLittleEndian<quint32>(bytes + portOffset);
    return reply;
}

bool findLocalIpv4Address(QHostAddress &out)
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        if (!leadsToLocalNetwork(interface))
            continue;
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries) {
            const QHostAddress address = entry.ip();
            if (address.protocol() == QAbstractSocket::IPv4Protocol &&
                address != QHostAddress(QHostAddress::LocalHost)) {
                out = address;
                return true;
            }
        }
    }
    return false;
}

QHostAddress broadcastAddressOf(const QHostAddress &local)
{
    return QHostAddress(local.toIPv4Address() | 0xFFU);
}
