#pragma once

#include "loggersim/AlarmMemory.h"
#include "loggersim/Curve.h"
#include "loggersim/Fault.h"
#include "loggersim/Reply.h"

#include "device/AvailDevice.h"

#include <QObject>

namespace loggersim {

/// One software logger, whatever it is reached through: what it answers to which command, what it does wrong, and
/// what it has served so far.
class SimLogger : public QObject
{
    Q_OBJECT

public:
    SimLogger(InterfaceKind kind, const QString &key, const Climate &climate, quint32 seed, QObject *parent = nullptr);

    QString key() const { return m_key; }
    InterfaceKind kind() const { return m_kind; }
    /// "USB" or "network".
    QString kindText() const;
    Climate climate() const { return m_climate; }
    /// Where a station reaches it: serial port name or IPv4 text; empty for a USB logger that is not plugged in.
    virtual QString address() const = 0;
    /// The TCP port; 0 for a USB logger.
    virtual quint16 port() const = 0;
    /// Stations it is connected with.
    virtual int connectionCount() const = 0;

    Fault fault() const { return m_fault; }
    bool suffersFrom(FaultKind kind) const { return m_fault.kind == kind; }
    /// Neither reads nor writes for now.
    bool isDeaf() const { return suffersFrom(FaultKind::Stall) || suffersFrom(FaultKind::Vanish); }
    void setFault(const Fault &fault);

    /// Takes one command with its line end. Nothing when the logger keeps silent.
    std::optional<Reply> answer(const QByteArray &command);
    /// A reading that nobody asked for, as one line of a reply.
    QByteArray unaskedReading();

    /// To be called once a well-formed reading with these values has wholly been written to the station; @p polledMs as
    /// in Reply.
    void countServed(const QByteArray &values, qint64 polledMs);
    quint64 served() const { return m_served; }
    /// Commands received, polls and others, answered or not.
    quint64 commands() const { return m_commands; }

    Curve &curve() { return m_curve; }
    const AlarmMemory &alarms() const { return m_alarms; }

signals:
    void faultChanged();
    /// Any command, answered or not, as soon as it has been read.
    void commandReceived();
    /// A station has got this reading: "21.50,45.10", "----" for a missing value. It asked for it at @p polledMs.
    void readingServed(const QByteArray &values, qint64 polledMs);

private:
    Reply alarmReply(const QByteArray &command);
    QByteArray pollCommand() const { return m_kind == UsbInterface ? "ATCD" : "ATDC"; }

    const InterfaceKind m_kind;
    const QString m_key;
    const Climate m_climate;
    Curve m_curve;
    Fault m_fault;
    AlarmMemory m_alarms;
    quint64 m_served = 0;
    quint64 m_commands = 0;
};

} // namespace loggersim
