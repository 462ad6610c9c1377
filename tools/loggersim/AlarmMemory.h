#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <optional>

namespace loggersim {

/// The alarm limits and buzzer rule of a network logger, as it was told them.
struct AlarmSettings
{
    QByteArray min1 = "0.00";
    QByteArray max1 = "0.00";
    QByteArray min2 = "0.00";
    QByteArray max2 = "0.00";
    QByteArray rule = "OFF";

    /// The five texts, separated by blanks.
    QByteArray toText() const;
};

/// Takes the alarm commands: limits and rule wait until they are told to be stored.
class AlarmMemory
{
public:
    // Commands come without their line end.
    static bool isAlarmCommand(const QByteArray &command);
    void note(const QByteArray &command);
    /// False, and nothing changed, when the command is unknown or its argument no limit.
    bool execute(const QByteArray &command);

    /// Nothing until the first storing.
    std::optional<AlarmSettings> stored() const;
    /// Every command noted, oldest first; the newest thousand are kept.
    QByteArrayList received() const;

private:
    QByteArray *limit(const QByteArray &name);

    AlarmSettings m_told;
    std::optional<AlarmSettings> m_stored;
    QByteArrayList m_received;
};

} // namespace loggersim
