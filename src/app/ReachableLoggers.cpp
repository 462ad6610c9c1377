#include "app/ReachableLoggers.h"

#include "app/Logging.h"

#include <QSet>

#include <algorithm>
#include <utility>

QList<AvailDevice *> ReachableLoggers::all() const
{
    QList<AvailDevice *> records;
    records.reserve(int(m_records.size()));
    for (const auto &record : m_records)
        records.append(record.get());
    return records;
}

QList<AvailDevice *> ReachableLoggers::usb() const
{
    QList<AvailDevice *> records;
    for (const auto &record : m_records) {
        if (linkKind(record->kind).isPluggedIn)
            records.append(record.get());
    }
    return records;
}

AvailDevice *ReachableLoggers::find(const QString &key) const
{
    return m_index.value(key);
}

QStringList ReachableLoggers::vanished(const QList<UsbLogger> &found) const
{
    QStringList keys;
    for (const auto &record : m_records) {
        const bool isFound = std::any_of(found.cbegin(), found.cend(), [&record](const UsbLogger &logger) {
            return logger.serialNumber == record->key;
        });
        if (linkKind(record->kind).isPluggedIn && !isFound)
            keys.append(record->key);
    }
    return keys;
}

bool ReachableLoggers::mergeUsb(const QList<UsbLogger> &found)
{
    bool changed = false;
    const QList<UsbLogger> loggers = firstOfEachKey(found);
    for (const UsbLogger &logger : loggers) {
        AvailDevice *record = find(logger.serialNumber);
        if (record && record->address == logger.portName)
            continue;
        if (!record)
            record = &add(logger.serialNumber, UsbInterface);
        record->address = logger.portName;
        changed = true;
    }
    return changed;
}

/// A device with two ports, or two devices with the same mark: taken turn by turn, they would move at every scan.
QList<UsbLogger> ReachableLoggers::firstOfEachKey(const QList<UsbLogger> &found)
{
    QList<UsbLogger> first;
    QList<UsbLogger> doubles;
    QSet<QString> keys;
    for (const UsbLogger &logger : found) {
        if (!keys.contains(logger.serialNumber)) {
            keys.insert(logger.serialNumber);
            first.append(logger);
            continue;
        }
        doubles.append(logger);
        if (!m_doubles.contains(logger))
            qCDebug(lcApp).noquote().nospace() << "ReachableLoggers::mergeUsb : [ERROR] another logger of the key ["
                                               << logger.serialNumber << "] at [" << logger.portName << "]";
    }
    m_doubles = doubles;
    return first;
}

void ReachableLoggers::mergeNetwork(const DiscoveryReply &reply)
{
    AvailDevice *record = find(reply.macAddress);
    if (!record && size() >= mostRecords) {
        if (!std::exchange(m_hasOverflowed, true))
            qCWarning(lcApp).noquote().nospace() << "ReachableLoggers::mergeNetwork : [ERROR] more than " << mostRecords
                                                 << " loggers answer, those beyond are left out";
        return;
    }
    if (!record)
        record = &add(reply.macAddress, NetworkInterface);
    record->address = reply.ipAddress;
    record->port = static_cast<quint16>(reply.announcedPort);
}

void ReachableLoggers::removeUsb()
{
    const QList<AvailDevice *> leaving = usb();
    for (const AvailDevice *record : leaving)
        m_index.remove(record->key);
    m_records.erase(std::remove_if(m_records.begin(), m_records.end(),
                                   [](const auto &record) { return linkKind(record->kind).isPluggedIn; }),
                    m_records.end());
}

void ReachableLoggers::clear()
{
    m_index.clear();
    m_records.clear();
    m_hasOverflowed = false;
}

AvailDevice &ReachableLoggers::add(const QString &key, InterfaceKind kind)
{
    m_records.push_back(std::make_unique<AvailDevice>(AvailDevice{key, {}, defaultDevicePort, kind}));
    m_index.insert(key, m_records.back().get());
    return *m_records.back();
}
