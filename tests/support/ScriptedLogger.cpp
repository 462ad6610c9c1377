#include "support/ScriptedLogger.h"

#include <algorithm>
#include <utility>

ScriptedLogger::ScriptedLogger(QObject *parent) : QObject(parent)
{
    setReply(QByteArrayLiteral("ATDC 21.50,45.10\r\n"));
    connect(&m_server, &QTcpServer::newConnection, this, &ScriptedLogger::acceptConnection);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("no port to listen on");
    m_port = m_server.serverPort();
}

QString ScriptedLogger::address() const
{
    return QHostAddress(QHostAddress::LocalHost).toString();
}

quint16 ScriptedLogger::port() const
{
    return m_port;
}

void ScriptedLogger::setScript(Script script)
{
    m_script = std::move(script);
}

void ScriptedLogger::setReply(const QByteArray &reply)
{
    setScript([reply](const QByteArray &) { return QList<QByteArray>{reply}; });
}

void ScriptedLogger::setSilent()
{
    setScript([](const QByteArray &) { return QList<QByteArray>(); });
}

void ScriptedLogger::setCloseAfterReply(bool on)
{
    m_closeAfterReply = on;
}

void ScriptedLogger::send(const QByteArray &bytes)
{
    for (const QPointer<QTcpSocket> &socket : std::as_const(m_sockets)) {
        if (socket) {
            socket->write(bytes);
            socket->flush();
        }
    }
}

void ScriptedLogger::dropConnections()
{
    const QList<QPointer<QTcpSocket>> sockets = m_sockets;
    for (const QPointer<QTcpSocket> &socket : sockets) {
        if (socket)
            socket->disconnectFromHost();
    }
}

void ScriptedLogger::stopListening()
{
    m_server.close();
}

bool ScriptedLogger::listenAgain()
{
    return m_server.listen(QHostAddress::LocalHost, m_port);
}

QByteArray ScriptedLogger::received() const
{
    return m_received;
}

QList<QByteArray> ScriptedLogger::commands() const
{
    QList<QByteArray> lines = QByteArray(m_received).replace("\r\n", "\n").split('\n');
    lines.removeAll(QByteArray());
    return lines;
}

int ScriptedLogger::accepted() const
{
    return m_accepted;
}

int ScriptedLogger::openConnections() const
{
    return static_cast<int>(std::count_if(m_sockets.cbegin(), m_sockets.cend(), [](const QPointer<QTcpSocket> &socket) {
        return socket && socket->state() == QAbstractSocket::ConnectedState;
    }));
}

void ScriptedLogger::acceptConnection()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        // Not a child of the server's, which closes for a while without its connections.
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_sockets << socket;
        ++m_accepted;
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            socket->deleteLater();
            emit connectionClosed();
        });
        emit connectionAccepted();
    }
}

void ScriptedLogger::answer(QTcpSocket *socket)
{
    const QByteArray command = socket->readAll();
    m_received += command;
    const QList<QByteArray> pieces = m_script(command);
    for (const QByteArray &piece : pieces) {
        socket->write(piece);
        socket->flush();
    }
    if (m_closeAfterReply && !pieces.isEmpty())
        socket->disconnectFromHost();
    emit commandReceived();
}
