#pragma once

#include "device/AbstractDevice.h"
#include "device/AvailDevice.h"
#include "device/ReplyGuard.h"
#include "device/SignalDepth.h"

#include <QPointer>
#include <QTcpSocket>

class LoggerConversation;

/// The link to a network logger over plain TCP; its address is an IP address text, host names are not looked up.
/// It never reconnects by itself: the next write() or open() does. While the buzzer flag is set it carries the exchange
/// of alarm settings instead of polls and passes replies on as they come. A logger that exceeds replyBounds is cut off:
/// what it sent is dropped and the connection closed.
class TelnetDevice : public QObject, public AbstractDevice
{
    Q_OBJECT
    Q_INTERFACES(AbstractDevice)

public:
    explicit TelnetDevice(QObject *parent = nullptr);
    ~TelnetDevice() override;

    /// Whether the connection stood when last heard of; a remote close goes unnoticed until the next write.
    bool isOpen() override;
    void close() override;
    /// Connects, or on a standing connection sends what is due. False when the address is no IP address.
    bool open() override;
    void write() override;
    QString deviceName() override;
    int deviceType() override;
    bool connect(const char *signal, const QObject *receiver, const char *method) override;
    bool disconnect(const char *signal, const QObject *receiver, const char *method) override;
    void setDeviceInfo(const QString &address, quint16 port) override;
    virtual quint16 port();

    /// The bytes accepted; 0 when there is no connection, which is then opened but the bytes are not sent.
    qint64 writeCommand(const QByteArray &bytes);

    /// Tells it, not owned, from now on what this link sends and hears.
    void setConversation(LoggerConversation *conversation);
    bool buzzerFlag() const;
    void setBuzzerFlag(bool on);
    bool keepConnection() const;
    void setKeepConnection(bool keep);

signals:
    /// What one notification of the socket carried: without carriage returns and, unless the buzzer flag is set,
    /// without echo and spaces.
    void readyRead(const QString &text);
    /// The connection stands and the buzzer flag is set: the exchange may send its first command.
    void writeStartSync();

public slots:
    void readData();
    void telnetDeleted();
    void telnetStateChanged(QAbstractSocket::SocketState state);
    void sockConnected();
    void sockError(QAbstractSocket::SocketError error);

private:
    bool startConnecting();
    void sendPoll();
    void sendWhatIsDue();
    void cutOff();
    bool closesAfterReply() const;
    QAbstractSocket::SocketState socketState() const;

    const int m_deviceType = 2;
    QString m_address;
    quint16 m_port = defaultDevicePort;
    QPointer<QTcpSocket> m_socket;
    bool m_connected = false;
    bool m_buzzerFlag = false;
    bool m_keepConnection = false;
    LoggerConversation *m_conversation = nullptr;
    ReplyGuard m_guard;
    SignalDepth m_depth;
};
