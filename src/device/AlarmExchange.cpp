#include "device/AlarmExchange.h"

namespace {

QString limitCommand(const char *name, float limit)
{
    return QLatin1String(name) + QLatin1Char(' ') + QString::number(static_cast<double>(limit), 'f', 2) +
           QLatin1String("\r\n");
}

/// A line end in the rule, which a project from elsewhere may hold, would begin a command of its own.
QString oneLine(QString rule)
{
    return rule.remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
}

} // namespace

void AlarmExchange::start()
{
    ++m_number;
    m_state = State::Min1;
}

void AlarmExchange::stop()
{
    m_state = State::Idle;
}

bool AlarmExchange::isRunning() const
{
    return m_state != State::Idle;
}

bool AlarmExchange::isAtFirstCommand() const
{
    return m_state == State::Min1;
}

bool AlarmExchange::isAtRule() const
{
    return m_state == State::Rule;
}

QString AlarmExchange::command(const AlarmSettings &settings) const
{
    switch (m_state) {
    case State::Min1:
        return limitCommand("ATBMIN1", settings.range.min1);
    case State::Max1:
        return limitCommand("ATBMAX1", settings.range.max1);
    case State::Min2:
        return limitCommand("ATBMIN2", settings.range.min2);
    case State::Max2:
        return limitCommand("ATBMAX2", settings.range.max2);
    case State::Rule:
        return QStringLiteral("ATBAL %1\r\n").arg(oneLine(settings.buzzerRule));
    case State::Set:
        return QStringLiteral("ATBSET\r\n");
    case State::Idle:
        break;
    }
    return {};
}

AlarmExchange::Progress AlarmExchange::takeReply(const QString &reply)
{
    if (reply != QLatin1String("OK")) {
        m_state = State::Idle;
        return Progress::Refused;
    }
    if (m_state == State::Set) {
        m_state = State::Idle;
        return Progress::Done;
    }
    m_state = static_cast<State>(static_cast<int>(m_state) + 1);
    return Progress::NextCommand;
}
