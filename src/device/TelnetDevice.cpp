#include "device/TelnetDevice.h"

#include "device/DataInterval.h"
#include "device/LoggerConversation.h"
#include "device/Logging.h"
#include "device/WireText.h"

#include <QHostAddress>
#include <QNetworkProxy>

TelnetDevice::TelnetDevice(QObject *parent) : QObject(parent), m_socket(new QTcpSocket(this))
{
    // Loggers stand in the local network; a proxy set for the desktop does not lead to them.
    m_socket->setProxy(QNetworkProxy::NoProxy);
    // However much a logger sends, the others get their turn; one byte more than it may send tells that it does.
    m_socket->setReadBufferSize(replyBounds::bytesPerPoll + 1);
    m_socket->setSocketOption(QAbstractSocket::KeepAliveOption, 0);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);

    QObject::connect(m_socket, &QTcpSocket::readyRead, this, &TelnetDevice::readData);
    QObject::connect(m_socket, &QTcpSocket::stateChanged, this, &TelnetDevice::telnetStateChanged);
    QObject::connect(m_socket, &QTcpSocket::errorOccurred, this, &TelnetDevice::sockError);
    QObject::connect(m_socket, &QObject::destroyed, this, &TelnetDevice::telnetDeleted);
    QObject::connect(m_socket, &QTcpSocket::connected, this, &TelnetDevice::sockConnected);
}

TelnetDevice::~TelnetDevice()
{
    logDevice() << "TelnetDevice::~TelnetDevice : [" << m_address << "]";
    TelnetDevice::close();
    if (!m_socket)
        return;
    QTcpSocket *socket = m_socket;
    QObject::disconnect(socket, nullptr, this, nullptr);
    m_socket.clear();
    releaseTransport(socket, m_depth);
}

bool TelnetDevice::isOpen()
{
    return m_connected;
}

void TelnetDevice::close()
{
    logDevice() << "TelnetDevice::close : buzzer flag :" << m_buzzerFlag << " [" << m_address << "]";
    if (QTcpSocket *socket = m_socket) {
        socket->abort();
        socket->close();
    }
    m_connected = false;
}

bool TelnetDevice::open()
{
    const QAbstractSocket::SocketState state = socketState();
    const bool valid = m_socket && m_socket->isValid();
    logDevice() << "TelnetDevice::open : buzzer flag :" << m_buzzerFlag << " " << m_address << "] [" << state
                << "] valid : " << valid;
    if (!m_socket)
        return false;
    if (state == QAbstractSocket::UnconnectedState)
        return startConnecting();
    if (state == QAbstractSocket::ConnectedState)
        sendWhatIsDue();
    return valid;
}

bool TelnetDevice::startConnecting()
{
    const QHostAddress target(m_address);
    if (target.isNull()) {
        logDevice() << "[ERROR] TelnetDevice::open : [" << m_address << "] is not an IP address";
        return false;
    }
    m_socket->connectToHost(target, m_port, QIODevice::ReadWrite);
    return m_socket && m_socket->isValid();
}

void TelnetDevice::write()
{
    logDevice() << "TelnetDevice::write : buzzer flag :" << m_buzzerFlag << " [" << m_address << "] : ["
                << socketState() << "] : " << m_connected;
    sendWhatIsDue();
}

void TelnetDevice::sendWhatIsDue()
{
    if (m_buzzerFlag)
        emit writeStartSync();
    else
        sendPoll();
}

void TelnetDevice::sendPoll()
{
    writeCommand(QByteArrayLiteral("ATDC\r\n"));
}

qint64 TelnetDevice::writeCommand(const QByteArray &bytes)
{
    if (!m_socket)
        return 0;
    const QAbstractSocket::SocketState state = socketState();
    logDevice() << "TelnetDevice::writeCommand : [" << m_address << "] buzzer flag :" << m_buzzerFlag << " [" << state
                << "] :" << bytes;
    if (state == QAbstractSocket::UnconnectedState) {
        open();
        return 0;
    }
    if (state != QAbstractSocket::ConnectedState)
        return 0;
    const qint64 written = m_socket->write(bytes);
    if (written > 0)
        m_guard.pollSent();
    if (m_conversation && written > 0)
        m_conversation->linkSent(bytes);
    if (written != bytes.size())
        logDevice() << "[ERROR] TelnetDevice::writeCommand : [" << m_address << "] buzzer flag :" << m_buzzerFlag
                    << " written : " << written;
    return written;
}

QString TelnetDevice::deviceName()
{
    return m_address;
}

int TelnetDevice::deviceType()
{
    return m_deviceType;
}

bool TelnetDevice::connect(const char *signal, const QObject *receiver, const char *method)
{
    return QObject::connect(this, signal, receiver, method);
}

bool TelnetDevice::disconnect(const char *signal, const QObject *receiver, const char *method)
{
    return QObject::disconnect(this, signal, receiver, method);
}

void TelnetDevice::setDeviceInfo(const QString &address, quint16 port)
{
    logDevice() << "TelnetDevice::setDeviceInfo : [" << address << "] : [" << port << "]";
    m_address = address;
    m_port = port;
}

quint16 TelnetDevice::port()
{
    return m_port;
}

void TelnetDevice::setConversation(LoggerConversation *conversation)
{
    m_conversation = conversation;
}

bool TelnetDevice::buzzerFlag() const
{
    return m_buzzerFlag;
}

void TelnetDevice::setBuzzerFlag(bool on)
{
    m_buzzerFlag = on;
}

bool TelnetDevice::keepConnection() const
{
    return m_keepConnection;
}

void TelnetDevice::setKeepConnection(bool keep)
{
    m_keepConnection = keep;
}

void TelnetDevice::readData()
{
    const SignalDepth::Scope scope(m_depth);
    if (!m_socket)
        return;
    const QByteArray bytes = m_socket->readAll();
    if (!m_guard.admits(bytes)) {
        cutOff();
        return;
    }
    if (m_conversation)
        m_conversation->linkHeard(bytes);
    QString text = wireText(bytes);
    if (!m_buzzerFlag) {
        if (closesAfterReply())
            close();
        if (!text.contains(QLatin1String("ATDC"))) {
            logDevice() << "[ERROR] TelnetDevice::readData no 'ATDC' : buzzer flag :" << m_buzzerFlag << " ["
                        << m_address << "] :" << text;
            return;
        }
        text.remove(QLatin1Char(' '));
        text.remove(QLatin1String("ATDC"));
    }
    logDevice() << "TelnetDevice::readData : buzzer flag :" << m_buzzerFlag << " [" << m_address << "] :" << text;
    emit readyRead(text);
}

/// The next poll connects anew.
void TelnetDevice::cutOff()
{
    if (const QString complaint = m_guard.takeComplaint(); !complaint.isEmpty())
        warnDevice() << "[ERROR] TelnetDevice::readData : [" << m_address << "] : [" << m_port << "] : " << complaint;
    close();
}

bool TelnetDevice::closesAfterReply() const
{
    return dataIntervalMs > 1000 && (dataIntervalMs > 60000 || !m_keepConnection);
}

void TelnetDevice::telnetDeleted()
{
    logDevice() << "TelnetDevice::telnetDeleted : [" << m_address << "]";
    m_connected = false;
}

void TelnetDevice::telnetStateChanged(QAbstractSocket::SocketState state)
{
    logDevice() << "TelnetDevice::telnetStateChanged : buzzer flag :" << m_buzzerFlag << " [" << m_address << "] : ["
                << state << "]";
    if (m_conversation && state == QAbstractSocket::ConnectingState)
        m_conversation->linkOpening();
    if (m_conversation && state == QAbstractSocket::UnconnectedState)
        m_conversation->linkClosed(false);
}

void TelnetDevice::sockConnected()
{
    const SignalDepth::Scope scope(m_depth);
    logDevice() << "#### TelnetDevice::sockConnected : buzzer flag :" << m_buzzerFlag << " [" << m_address << "]";
    m_connected = true;
    if (m_socket)
        m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1); // set before the connection it is dropped
    sendWhatIsDue();
}

void TelnetDevice::sockError(QAbstractSocket::SocketError error)
{
    const SignalDepth::Scope scope(m_depth);
    const bool isKnown = error >= QAbstractSocket::UnknownSocketError && error <= QAbstractSocket::ProxyProtocolError;
    if (!isKnown || error == QAbstractSocket::RemoteHostClosedError)
        return;
    logDevice() << "TelnetDevice::sockError : [" << m_address << "] buzzer flag :" << m_buzzerFlag << " ["
                << static_cast<int>(error) << "]";
    m_connected = false;
    close();
}

QAbstractSocket::SocketState TelnetDevice::socketState() const
{
    return m_socket ? m_socket->state() : QAbstractSocket::UnconnectedState;
}
