#pragma once

#include <QHostAddress>
#include <QList>
#include <QUdpSocket>

namespace loggersim {

class NetworkLogger;

/// Answers the station's search: one datagram a network logger, sent back to where the question came from.
/// Loggers that have vanished do not answer.
class DiscoveryResponder : public QObject
{
    Q_OBJECT

public:
    explicit DiscoveryResponder(QObject *parent = nullptr);

    /// Port 0 lets the system choose one. False when the port cannot be had; errorString() says why.
    bool bind(const QHostAddress &address, quint16 port);
    QString errorString() const;
    quint16 port() const;

    /// Not owned; must outlive the responder.
    void add(const NetworkLogger *logger);
    /// The datagram that @p logger sends to @p asker.
    static QByteArray replyOf(const NetworkLogger &logger, const QHostAddress &asker);

private:
    void slotRead();

    QUdpSocket m_socket;
    QList<const NetworkLogger *> m_loggers;
};

} // namespace loggersim
