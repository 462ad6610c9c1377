#include "device/SerialDevice.h"

#include "device/LoggerConversation.h"
#include "device/Logging.h"
#include "device/WireText.h"

#include <QSignalBlocker>
#include <utility>

namespace {

/// The number an error goes by in the log, whichever generation of the toolkit reports it.
int numberOf(QSerialPort::SerialPortError error)
{
    switch (error) {
    case QSerialPort::WriteError:
        return 7;
    case QSerialPort::ReadError:
        return 8;
    case QSerialPort::ResourceError:
        return 9;
    case QSerialPort::UnsupportedOperationError:
        return 10;
    case QSerialPort::UnknownError:
        return 11;
    case QSerialPort::TimeoutError:
        return 12;
    default:
        return static_cast<int>(error);
    }
}

/// What a logger that hangs has not taken would hold up the closing, what it still sends would answer the next poll.
void clearQueues(QSerialPort &port)
{
    const QSignalBlocker quiet(port);
    port.clear();
}

} // namespace

SerialDevice::SerialDevice(QObject *parent) : QObject(parent), m_port(new QSerialPort(this))
{
    m_port->setBaudRate(QSerialPort::Baud115200);
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setStopBits(QSerialPort::OneStop);
    // One byte more than a logger may send tells that it does.
    m_port->setReadBufferSize(replyBounds::bytesPerPoll + 1);

    QObject::connect(m_port, &QSerialPort::readyRead, this, &SerialDevice::readData);
    QObject::connect(m_port, &QSerialPort::errorOccurred, this, &SerialDevice::serialError);
    QObject::connect(m_port, &QObject::destroyed, this, &SerialDevice::serialDeleted);
}

SerialDevice::~SerialDevice()
{
    logDevice() << "SerialDevice::~SerialDevice : [" << m_portName << "]";
    if (!m_port)
        return;
    QSerialPort *port = m_port;
    QObject::disconnect(port, nullptr, this, nullptr);
    closePort();
    m_port.clear();
    releaseTransport(port, m_depth);
}

bool SerialDevice::isOpen()
{
    return m_port && m_port->isOpen();
}

void SerialDevice::close()
{
    logDevice() << "SerialDevice::close : [" << m_portName << "]";
    closePort();
}

bool SerialDevice::open()
{
    closeFailedPort();
    if (m_portNameStale)
        m_portName.clear();
    logDevice() << "SerialDevice::open : [" << m_portName << "]";
    if (!m_port || m_portName.isEmpty()) {
        logDevice() << "[ERROR] SerialDevice::open : no port to open";
        emit disconnected();
        return false;
    }
    return openPort();
}

bool SerialDevice::openPort()
{
    const QPointer<SerialDevice> self(this);
    m_connectedReported = false;
    m_port->setPortName(m_portName);
    const bool ok = m_port->open(QIODevice::ReadWrite);
    // The owner may have deleted this link on what the port reported.
    if (self && ok && !m_connectedReported) {
        m_connectedReported = true;
        emit connected();
    }
    return ok;
}

void SerialDevice::write()
{
    writeCommand(QByteArrayLiteral("ATCD\r\n"));
}

qint64 SerialDevice::writeCommand(const QByteArray &bytes)
{
    if (!m_port)
        return 0;
    const QPointer<SerialDevice> self(this);
    // A closed port takes nothing; asking it would only add the toolkit's own warning to every poll.
    const qint64 written = m_port->isOpen() ? m_port->write(bytes) : 0;
    if (!self)
        return 0;
    if (written < 1) {
        logDevice() << "[ERROR] SerialDevice::writeCommand : [" << m_portName << "] :" << bytes;
        emit disconnected();
    } else {
        m_guard.pollSent();
        logDevice() << "SerialDevice::writeCommand : [" << m_portName << "] :" << bytes;
        if (m_conversation)
            m_conversation->linkSent(bytes);
    }
    return 0;
}

void SerialDevice::setConversation(LoggerConversation *conversation)
{
    m_conversation = conversation;
}

QString SerialDevice::deviceName()
{
    return m_port ? m_port->portName() : QString();
}

int SerialDevice::deviceType()
{
    return m_deviceType;
}

bool SerialDevice::connect(const char *signal, const QObject *receiver, const char *method)
{
    return QObject::connect(this, signal, receiver, method);
}

bool SerialDevice::disconnect(const char *signal, const QObject *receiver, const char *method)
{
    return QObject::disconnect(this, signal, receiver, method);
}

void SerialDevice::setDeviceInfo(const QString &address, quint16 port)
{
    Q_UNUSED(port)
    m_portName = address;
    m_portNameStale = false;
}

void SerialDevice::readData()
{
    const SignalDepth::Scope scope(m_depth);
    if (!m_port)
        return;
    const QByteArray bytes = m_port->readAll();
    if (!m_guard.admits(bytes)) {
        cutOff();
        return;
    }
    if (m_conversation)
        m_conversation->linkHeard(bytes);
    QString text = wireText(bytes);
    if (!text.contains(QLatin1String("ATCD"))) {
        logDevice() << "[ERROR] SerialDevice::readData no 'ATCD' : [" << m_portName << "] :" << text;
        return;
    }
    text.remove(QLatin1Char(' '));
    text.remove(QLatin1String("ATCD"));
    logDevice() << "SerialDevice::readData : [" << m_portName << "] :" << text;
    emit readyRead(text);
}

/// What still waits in the system answers no poll to come.
void SerialDevice::cutOff()
{
    if (const QString complaint = m_guard.takeComplaint(); !complaint.isEmpty())
        warnDevice() << "[ERROR] SerialDevice::readData : [" << m_portName << "] : " << complaint;
    m_port->clear(QSerialPort::Input);
    close();
    emit disconnected();
}

void SerialDevice::serialDeleted()
{
    logDevice() << "SerialDevice::serialDeleted : [" << m_portName << "]";
    m_closePending = false;
}

void SerialDevice::serialError(QSerialPort::SerialPortError error)
{
    const SignalDepth::Scope scope(m_depth);
    switch (error) {
    case QSerialPort::NoError:
        m_connectedReported = true;
        emit connected();
        break;
    case QSerialPort::WriteError:
    case QSerialPort::ReadError:
    case QSerialPort::ResourceError:
        // An unplugged port reports its error again and again until it is closed, which it cannot be in here.
        if (m_closePending)
            break;
        if (isOpen()) {
            m_closePending = true;
            m_portNameStale = true;
            QMetaObject::invokeMethod(this, &SerialDevice::closeFailedPort, Qt::QueuedConnection);
        }
        reportError(error);
        break;
    case QSerialPort::DeviceNotFoundError:
    case QSerialPort::PermissionError:
    case QSerialPort::OpenError:
    case QSerialPort::UnsupportedOperationError:
    case QSerialPort::UnknownError:
    case QSerialPort::TimeoutError:
        reportError(error);
        break;
    default:
        break;
    }
}

void SerialDevice::reportError(QSerialPort::SerialPortError error)
{
    logDevice() << "SerialDevice::serialError : [" << m_portName << "] err : " << numberOf(error);
    emit disconnected();
}

void SerialDevice::closePort()
{
    const bool hasFailed = std::exchange(m_closePending, false);
    QSerialPort *port = m_port;
    if (port && port->isOpen()) {
        if (!hasFailed)
            clearQueues(*port);
        port->close();
    }
    if (m_conversation)
        m_conversation->linkClosed(true);
}

void SerialDevice::closeFailedPort()
{
    if (m_closePending)
        close();
}
