#include "app/DeviceChanges.h"

#include "device/ChannelUnit.h"

#include <algorithm>

namespace {

QString rangeText(float min, float max)
{
    return QStringLiteral("%1..%2").arg(decimalLimit(min)).arg(decimalLimit(max));
}

QString shownUnit(int code, const QString &customText)
{
    return unitText(channelUnitFromCode(code), customText);
}

/// Adds what one device's change comes to.
class DeviceChange
{
public:
    DeviceChange(const DeviceEntry &before, const DeviceEntry &after, QList<JournalEvent> &events)
        : m_before(before), m_after(after), m_events(events)
    {
    }

    void tell()
    {
        tellText(JournalKind::NameChanged, {}, m_before.name, m_after.name);
        tellText(JournalKind::NameChanged, 1, m_before.ch1Name, m_after.ch1Name);
        tellText(JournalKind::NameChanged, 2, m_before.ch2Name, m_after.ch2Name);
        tellText(JournalKind::UnitChanged, 1, shownUnit(m_before.ch1Unit, m_before.ch1CustomUnit),
                 shownUnit(m_after.ch1Unit, m_after.ch1CustomUnit));
        tellText(JournalKind::UnitChanged, 2, shownUnit(m_before.ch2Unit, m_before.ch2CustomUnit),
                 shownUnit(m_after.ch2Unit, m_after.ch2CustomUnit));
        tellLimits(1, m_before.range.min1, m_before.range.max1, m_after.range.min1, m_after.range.max1);
        tellLimits(2, m_before.range.min2, m_before.range.max2, m_after.range.min2, m_after.range.max2);
        tellText(JournalKind::BuzzerChanged, {}, m_before.buzzerAlarm, m_after.buzzerAlarm, confirmation());
    }

private:
    void tellText(JournalKind kind, std::optional<int> channel, const QString &before, const QString &after,
                  const std::optional<QString> &text = {})
    {
        if (before == after)
            return;
        JournalEvent event{kind};
        event.key = m_after.serialNumber;
        event.channel = channel;
        event.oldText = before;
        event.newText = after;
        event.text = text;
        m_events.append(event);
    }

    void tellLimits(int channel, float oldMin, float oldMax, float min, float max)
    {
        const auto count = m_events.size();
        tellText(JournalKind::LimitsChanged, channel, rangeText(oldMin, oldMax), rangeText(min, max), confirmation());
        if (m_events.size() == count)
            return;
        m_events.last().low = decimalLimit(min);
        m_events.last().high = decimalLimit(max);
    }

    /// Limits of a logger that keeps them itself come into force with its confirmation only.
    QString confirmation() const
    {
        return linkKind(m_after.interfaceKind).takesAlarmSettings ? QStringLiteral("Confirmed by the logger.")
                                                                  : QStringLiteral("Kept by the station alone.");
    }

    const DeviceEntry &m_before;
    const DeviceEntry &m_after;
    QList<JournalEvent> &m_events;
};

const DeviceEntry *find(const QList<DeviceEntry> &entries, const QString &key)
{
    const auto found = std::find_if(entries.cbegin(), entries.cend(),
                                    [&key](const DeviceEntry &entry) { return entry.serialNumber == key; });
    return found == entries.cend() ? nullptr : &*found;
}

} // namespace

QList<JournalEvent> deviceChanges(const QList<DeviceEntry> &before, const QList<DeviceEntry> &after)
{
    QList<JournalEvent> events;
    for (const DeviceEntry &entry : before) {
        if (find(after, entry.serialNumber))
            continue;
        JournalEvent event{JournalKind::DeviceRemoved};
        event.key = entry.serialNumber;
        event.oldText = entry.name;
        events.append(event);
    }
    for (const DeviceEntry &entry : after) {
        if (const DeviceEntry *earlier = find(before, entry.serialNumber)) {
            DeviceChange(*earlier, entry, events).tell();
            continue;
        }
        JournalEvent event{JournalKind::DeviceAdded};
        event.key = entry.serialNumber;
        event.newText = entry.name;
        event.text = limitsText(entry.range, entry.buzzerAlarm);
        events.append(event);
    }
    return events;
}

double decimalLimit(float limit)
{
    constexpr int enoughDigits = 9;
    double decimal = static_cast<double>(limit);
    for (int digits = 6; digits <= enoughDigits; ++digits) {
        decimal = QString::number(static_cast<double>(limit), 'g', digits).toDouble();
        if (static_cast<float>(decimal) == limit)
            break;
    }
    return decimal;
}

QString limitsText(const AlarmRange &range, const QString &buzzerRule)
{
    return QStringLiteral("%1, %2, buzzer %3")
        .arg(rangeText(range.min1, range.max1), rangeText(range.min2, range.max2), buzzerRule);
}
