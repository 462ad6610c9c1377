#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

/// The logger's end of a serial line, a pseudo terminal: the link under test opens portName().
class SerialLine : public QObject
{
    Q_OBJECT

public:
    explicit SerialLine(QObject *parent = nullptr);
    ~SerialLine() override;

    /// Empty when the system gave none.
    QString portName() const;
    /// Everything the other end has sent so far.
    QByteArray received() const;
    void send(const QByteArray &bytes);
    /// The cable is pulled: the port of the other end fails from now on.
    void unplug();

signals:
    void bytesReceived();

private:
    void readBytes();

    int m_master = -1;
    int m_slave = -1; ///< held open, or the master reports an end of file whenever nobody else is there
    QString m_portName;
    QByteArray m_received;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
