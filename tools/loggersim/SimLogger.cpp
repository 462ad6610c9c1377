#include "loggersim/SimLogger.h"

#include <QDateTime>

namespace loggersim {

SimLogger::SimLogger(InterfaceKind kind, const QString &key, const Climate &climate, quint32 seed, QObject *parent)
    : QObject(parent), m_kind(kind), m_key(key), m_climate(climate), m_curve(climate, seed)
{
}

QString SimLogger::kindText() const
{
    return m_kind == UsbInterface ? QStringLiteral("USB") : QStringLiteral("network");
}

void SimLogger::setFault(const Fault &fault)
{
    m_fault = fault;
    emit faultChanged();
}

void SimLogger::countServed(const QByteArray &values, qint64 polledMs)
{
    ++m_served;
    emit readingServed(values, polledMs);
}

std::optional<Reply> SimLogger::answer(const QByteArray &command)
{
    ++m_commands;
    emit commandReceived();
    const QByteArray text = command.endsWith("\r\n") ? command.chopped(2) : QByteArray();
    Reply reply;
    if (text == pollCommand())
        reply = pollReply(m_fault, pollCommand(), m_curve.next().toText());
    else if (m_kind == NetworkInterface && AlarmMemory::isAlarmCommand(text))
        reply = alarmReply(text);
    else
        reply.pieces = QByteArrayList{"ERR\r\n"};
    if (suffersFrom(FaultKind::Silent))
        return std::nullopt;
    if (suffersFrom(FaultKind::Slow))
        reply.delayMs = m_fault.number;
    reply.polledMs = QDateTime::currentMSecsSinceEpoch();
    reply.closeAfter = suffersFrom(FaultKind::CloseAfter);
    return reply;
}

Reply SimLogger::alarmReply(const QByteArray &command)
{
    const bool refused =
        suffersFrom(FaultKind::AlarmError) && (m_fault.text.isEmpty() || command.startsWith(m_fault.text.toLatin1()));
    m_alarms.note(command);
    const bool done = !refused && m_alarms.execute(command);
    Reply reply;
    reply.pieces = QByteArrayList{done ? "OK\r\n" : "ERR\r\n"};
    return reply;
}

QByteArray SimLogger::unaskedReading()
{
    return pollCommand() + ' ' + m_curve.next().toText() + "\r\n";
}

} // namespace loggersim
