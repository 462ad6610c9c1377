#pragma once

#include <QHostAddress>
#include <QNetworkDatagram>
#include <QUdpSocket>
#include <atomic>
#include <functional>
#include <thread>

// The two networks that the script in-network-namespace makes: the station's, in which the test runs, and the loggers'.

/// The calling thread is in the loggers' network for one scope; sockets and programs made meanwhile stay there.
class InLoggerNetwork
{
public:
    InLoggerNetwork();
    ~InLoggerNetwork();
    InLoggerNetwork(const InLoggerNetwork &) = delete;
    InLoggerNetwork &operator=(const InLoggerNetwork &) = delete;

private:
    int m_ownNetwork;
};

/// Has the program "ip" carry out these commands in the calling thread's network.
bool runIp(const QStringList &commands);

/// What a logger answers to the search.
QByteArray discoveryReply(quint64 mac, const QString &address, quint32 port = 23);

/// Somebody in the loggers' network who hears the station's search and answers whatever a test likes.
class Answerer
{
public:
    Answerer();

    /// Waits for the next search and remembers where it came from; an invalid datagram when none came.
    QNetworkDatagram hear();
    /// To where the last search came from.
    void answer(const QByteArray &datagram);
    quint16 stationPort() const { return m_stationPort; }
    QHostAddress station() const { return m_station; }

private:
    QUdpSocket m_socket;
    QHostAddress m_station;
    quint16 m_stationPort = 0;
};

/// Sends datagrams from the loggers' network out of a thread of its own, as fast as the station takes them: its
/// buffer is never empty and never overflows.
class Flood
{
public:
    /// @p datagramAt is called in that thread. @p receiver is the station's socket, which must stay for as long.
    Flood(const QHostAddress &station, quint16 port, const QUdpSocket &receiver, int count,
          std::function<QByteArray(int)> datagramAt);
    ~Flood();

    bool isOver() const { return m_over; }

private:
    void send(int socket, int receiver, const QHostAddress &station, quint16 port, int count);

    std::function<QByteArray(int)> m_datagramAt;
    std::atomic<bool> m_over{false};
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};
