#pragma once

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>

/// A network logger on the loopback address that does what the test says.
class ScriptedLogger : public QObject
{
    Q_OBJECT

public:
    /// What is sent in answer to the bytes of one notification; each element is sent on its own, nothing for silence.
    using Script = std::function<QList<QByteArray>(const QByteArray &command)>;

    explicit ScriptedLogger(QObject *parent = nullptr);

    QString address() const;
    /// Stays the same over stopListening() and listenAgain().
    quint16 port() const;

    void setScript(Script script);
    /// Answers every command with @p reply.
    void setReply(const QByteArray &reply);
    /// Accepts and reads, but never answers.
    void setSilent();
    /// Closes the connection after each answer.
    void setCloseAfterReply(bool on);

    /// Sends without being asked.
    void send(const QByteArray &bytes);
    /// Closes its end of every connection.
    void dropConnections();
    /// Refuses connections; those that stand stay.
    void stopListening();
    bool listenAgain();

    QByteArray received() const;
    /// The commands in order of arrival, without their line ends.
    QList<QByteArray> commands() const;
    /// Connections accepted so far.
    int accepted() const;
    int openConnections() const;

signals:
    void commandReceived();
    void connectionAccepted();
    void connectionClosed();

private:
    void acceptConnection();
    void answer(QTcpSocket *socket);

    QTcpServer m_server;
    quint16 m_port = 0;
    Script m_script;
    bool m_closeAfterReply = false;
    QByteArray m_received;
    int m_accepted = 0;
    QList<QPointer<QTcpSocket>> m_sockets;
};
