#pragma once

#include <QObject>
#include <QString>

/// The link to one logger: owns one transport, sends the poll and turns what arrives into one text reply.
class AbstractDevice
{
public:
    virtual ~AbstractDevice() = default;

    virtual bool isOpen() = 0;
    virtual void close() = 0;
    /// Opens, or starts opening, the transport at the stored address.
    virtual bool open() = 0;
    /// Sends the poll command of this kind of link.
    virtual void write() = 0;
    /// The transport's address: port name or host address.
    virtual QString deviceName() = 0;
    /// 1 serial, 2 network.
    virtual int deviceType() = 0;
    /// Connects one of the link object's own signals; signal and method in SIGNAL() and SLOT() form.
    virtual bool connect(const char *signal, const QObject *receiver, const char *method) = 0;
    virtual bool disconnect(const char *signal, const QObject *receiver, const char *method) = 0;
    /// Where the next open() goes to.
    virtual void setDeviceInfo(const QString &address, quint16 port) = 0;
};

Q_DECLARE_INTERFACE(AbstractDevice, "com.sorvanto.AbstractDevice")
