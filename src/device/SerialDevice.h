#pragma once

#include "device/AbstractDevice.h"
#include "device/ReplyGuard.h"
#include "device/SignalDepth.h"

#include <QPointer>
#include <QSerialPort>

class LoggerConversation;

/// The link to a USB logger, which shows up as a serial port.
/// A port that fails while open closes itself once from the event loop, and its name counts as unknown until the next
/// setDeviceInfo(): by the time it is opened again that name may belong to another logger.
/// A logger that exceeds replyBounds is cut off: what it sent is dropped and the port closed, but its name stays.
class SerialDevice : public QObject, public AbstractDevice
{
    Q_OBJECT
    Q_INTERFACES(AbstractDevice)

public:
    explicit SerialDevice(QObject *parent = nullptr);
    ~SerialDevice() override;

    bool isOpen() override;
    void close() override;
    /// Without a port name this is a failed open: false and disconnected().
    bool open() override;
    void write() override;
    /// The port's current name, which is the stored one only after open().
    QString deviceName() override;
    int deviceType() override;
    bool connect(const char *signal, const QObject *receiver, const char *method) override;
    bool disconnect(const char *signal, const QObject *receiver, const char *method) override;
    /// @p port is not used.
    void setDeviceInfo(const QString &address, quint16 port) override;

    /// Always 0: a failed write surfaces as disconnected().
    qint64 writeCommand(const QByteArray &bytes);
    /// Tells it, not owned, from now on what this link sends and hears.
    void setConversation(LoggerConversation *conversation);

signals:
    /// Once for each open(); also before a failing one, which disconnected() follows at once.
    void connected();
    /// The port failed, could not be opened or took no bytes, or its logger was cut off; once for a port that fails
    /// while open.
    void disconnected();
    /// What one notification of the port carried, without echo, spaces and carriage returns.
    void readyRead(const QString &text);

public slots:
    void readData();
    void serialDeleted();
    void serialError(QSerialPort::SerialPortError error);

private:
    bool openPort();
    void closePort();
    void closeFailedPort();
    void cutOff();
    void reportError(QSerialPort::SerialPortError error);

    const int m_deviceType = 1;
    QString m_portName;
    QPointer<QSerialPort> m_port;
    LoggerConversation *m_conversation = nullptr;
    ReplyGuard m_guard;
    SignalDepth m_depth;
    bool m_connectedReported = false;
    bool m_closePending = false;
    bool m_portNameStale = false;
};
