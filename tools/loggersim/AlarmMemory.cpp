#include "loggersim/AlarmMemory.h"

#include <QtNumeric>

namespace loggersim {

namespace {

constexpr int receivedMax = 1000;

bool isLimit(const QByteArray &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && qIsFinite(value);
}

} // namespace

QByteArray AlarmSettings::toText() const
{
    return QByteArrayList{min1, max1, min2, max2, rule}.join(' ');
}

bool AlarmMemory::isAlarmCommand(const QByteArray &command)
{
    return command.startsWith("ATB");
}

QByteArray *AlarmMemory::limit(const QByteArray &name)
{
    if (name == "ATBMIN1")
        return &m_told.min1;
    if (name == "ATBMAX1")
        return &m_told.max1;
    if (name == "ATBMIN2")
        return &m_told.min2;
    return name == "ATBMAX2" ? &m_told.max2 : nullptr;
}

void AlarmMemory::note(const QByteArray &command)
{
    if (m_received.size() == receivedMax)
        m_received.removeFirst();
    m_received.append(command);
}

bool AlarmMemory::execute(const QByteArray &command)
{
    if (command == "ATBSET") {
        m_stored = m_told;
        return true;
    }
    const int blank = command.indexOf(' ');
    const QByteArray name = command.left(blank);
    const QByteArray argument = blank < 0 ? QByteArray() : command.mid(blank + 1);
    if (name == "ATBAL") {
        if (!argument.isEmpty())
            m_told.rule = argument;
        return !argument.isEmpty();
    }
    QByteArray *target = limit(name);
    if (!target || !isLimit(argument))
        return false;
    *target = argument;
    return true;
}

std::optional<AlarmSettings> AlarmMemory::stored() const
{
    return m_stored;
}

QByteArrayList AlarmMemory::received() const
{
    return m_received;
}

} // namespace loggersim
