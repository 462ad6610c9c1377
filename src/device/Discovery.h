#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QString>
#include <optional>

/// What a network logger tells of itself in answer to the broadcast.
struct DiscoveryReply
{
    QString ipAddress;
    QString macAddress; ///< 12 upper-case hexadecimal digits
    quint8 usesDhcp = 0;
    quint32 announcedPort = 0; ///< as sent; only its low 16 bits are a TCP port
};

constexpr quint16 discoveryPort = 50000;
/// Bytes of a complete reply.
constexpr int discoveryReplySize = 28;

/// The datagram that asks every logger of the network to answer.
QByteArray discoveryRequest();
/// Whether a datagram carries the loggers' marker before its first zero byte.
bool isDiscoveryReply(const QByteArray &datagram);
/// The fields of a reply; nothing when it is shorter than discoveryReplySize.
std::optional<DiscoveryReply> decodeDiscoveryReply(const QByteArray &datagram);

/// The first IPv4 address of an interface that is up, running and neither loopback nor point-to-point.
bool findLocalIpv4Address(QHostAddress &out);
/// The broadcast address of the /24 network around @p local, whatever the real mask.
QHostAddress broadcastAddressOf(const QHostAddress &local);
