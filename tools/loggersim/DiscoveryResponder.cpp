#include "loggersim/DiscoveryResponder.h"
#include "loggersim/NetworkLogger.h"

#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QtEndian>

namespace loggersim {

namespace {

const char identification[] = "OSTRIVANE";
constexpr int identificationSize = 12;

/// A logger that listens on every address tells the one in the asker's own network.
QHostAddress addressFor(const NetworkLogger &logger, const QHostAddress &asker)
{
    const QHostAddress any(QHostAddress::AnyIPv4);
    if (logger.hostAddress() != any && logger.hostAddress() != QHostAddress(QHostAddress::Any))
        return logger.hostAddress();
    const auto interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries) {
            if (entry.prefixLength() >= 0 && asker.isInSubnet(entry.ip(), entry.prefixLength()))
                return entry.ip();
        }
    }
    return asker;
}

template <typename Number>
QByteArray bytesOf(Number number)
{
    return QByteArray(reinterpret_cast<const char *>(&number), sizeof number);
}

} // namespace

DiscoveryResponder::DiscoveryResponder(QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QUdpSocket::readyRead, this, &DiscoveryResponder::slotRead);
}

bool DiscoveryResponder::bind(const QHostAddress &address, quint16 port)
{
    return m_socket.bind(address, port, QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint);
}

QString DiscoveryResponder::errorString() const
{
    return m_socket.errorString();
}

quint16 DiscoveryResponder::port() const
{
    return m_socket.localPort();
}

void DiscoveryResponder::add(const NetworkLogger *logger)
{
    m_loggers.append(logger);
}

QByteArray DiscoveryResponder::replyOf(const NetworkLogger &logger, const QHostAddress &asker)
{
    QByteArray reply = QByteArray(identification).leftJustified(identificationSize, '\0');
    reply += bytesOf(qToBigEndian(addressFor(logger, asker).toIPv4Address()));
    reply += QByteArray::fromHex(logger.key().toLatin1());
    const char unused = 0;
    const char usesDhcp = 1;
    reply += unused;
    reply += usesDhcp;
    return reply + bytesOf(qToLittleEndian(quint32(logger.port())));
}

void DiscoveryResponder::slotRead()
{
    while (m_socket.hasPendingDatagrams()) {
        const QNetworkDatagram question = m_socket.receiveDatagram();
        // Another logger's answer that went astray must not start an endless exchange.
        if (question.data().startsWith(identification) || question.senderPort() <= 0)
            continue;
        for (const NetworkLogger *logger : qAsConst(m_loggers)) {
            if (!logger->suffersFrom(FaultKind::Vanish))
                m_socket.writeDatagram(replyOf(*logger, question.senderAddress()), question.senderAddress(),
                                       static_cast<quint16>(question.senderPort()));
        }
    }
}

} // namespace loggersim
