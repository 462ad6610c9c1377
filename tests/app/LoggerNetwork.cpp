#include "LoggerNetwork.h"

#include "device/Discovery.h"

#include <QProcess>
#include <QTest>
#include <QtEndian>
#include <arpa/inet.h>
#include <array>
#include <fcntl.h>
#include <linux/sock_diag.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

QByteArray bytesOf(quint32 number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof number);
}

} // namespace

InLoggerNetwork::InLoggerNetwork() : m_ownNetwork(::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC))
{
    const int loggers = ::open(qgetenv("SORVANTO_LOGGER_NETWORK").constData(), O_RDONLY | O_CLOEXEC);
    if (m_ownNetwork < 0 || loggers < 0 || ::setns(loggers, CLONE_NEWNET) != 0)
        qFatal("the loggers' network cannot be entered; run under in-network-namespace, or through CTest");
    ::close(loggers);
}

InLoggerNetwork::~InLoggerNetwork()
{
    if (::setns(m_ownNetwork, CLONE_NEWNET) != 0)
        qFatal("there is no way back into the station's network");
    ::close(m_ownNetwork);
}

bool runIp(const QStringList &commands)
{
    QProcess ip;
    ip.setProcessChannelMode(QProcess::ForwardedChannels);
    ip.start(QStringLiteral("ip"), {QStringLiteral("-batch"), QStringLiteral("-")});
    ip.write(commands.join(QLatin1Char('\n')).toLatin1() + '\n');
    ip.closeWriteChannel();
    return ip.waitForFinished() && ip.exitStatus() == QProcess::NormalExit && ip.exitCode() == 0;
}

QByteArray discoveryReply(quint64 mac, const QString &address, quint32 port)
{
    QByteArray reply = QByteArrayLiteral("OSTRIVANE").leftJustified(12, '\0');
    reply += bytesOf(qToBigEndian(QHostAddress(address).toIPv4Address()));
    for (int shift = 40; shift >= 0; shift -= 8)
        reply += static_cast<char>(mac >> shift);
    reply += QByteArray("\0\1", 2);
    return reply + bytesOf(qToLittleEndian(port));
}

Answerer::Answerer()
{
    const InLoggerNetwork scope;
    if (!m_socket.bind(QHostAddress::AnyIPv4, discoveryPort, QUdpSocket::ShareAddress))
        qFatal("nobody can hear the station's search");
}

QNetworkDatagram Answerer::hear()
{
    if (!QTest::qWaitFor([this] { return m_socket.hasPendingDatagrams(); }))
        return {};
    const QNetworkDatagram search = m_socket.receiveDatagram();
    m_station = search.senderAddress();
    m_stationPort = static_cast<quint16>(search.senderPort());
    return search;
}

void Answerer::answer(const QByteArray &datagram)
{
    m_socket.writeDatagram(datagram, m_station, m_stationPort);
}

Flood::Flood(const QHostAddress &station, quint16 port, const QUdpSocket &receiver, int count,
             std::function<QByteArray(int)> datagramAt)
    : m_datagramAt(std::move(datagramAt))
{
    const InLoggerNetwork scope;
    const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const auto receiverDescriptor = static_cast<int>(receiver.socketDescriptor());
    m_thread = std::thread([=] { send(socket, receiverDescriptor, station, port, count); });
}

Flood::~Flood()
{
    m_stop = true;
    m_thread.join();
}

void Flood::send(int socket, int receiver, const QHostAddress &station, quint16 port, int count)
{
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(port);
    target.sin_addr.s_addr = htonl(station.toIPv4Address());
    const auto isHalfFull = [receiver] {
        std::array<quint32, SK_MEMINFO_VARS> memory{};
        socklen_t size = sizeof memory;
        ::getsockopt(receiver, SOL_SOCKET, SO_MEMINFO, memory.data(), &size);
        return memory[SK_MEMINFO_RMEM_ALLOC] > memory[SK_MEMINFO_RCVBUF] / 2;
    };
    for (int i = 0; i < count && !m_stop; ++i) {
        while (isHalfFull() && !m_stop)
            ::sched_yield();
        const QByteArray datagram = m_datagramAt(i);
        ::sendto(socket, datagram.constData(), static_cast<size_t>(datagram.size()), 0,
                 reinterpret_cast<const sockaddr *>(&target), sizeof target);
    }
    ::close(socket);
    m_over = true;
}
