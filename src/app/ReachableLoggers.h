#pragma once

#include "device/AvailDevice.h"
#include "device/Discovery.h"
#include "device/UsbLoggers.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <memory>
#include <vector>

/// Every logger in reach, one record a key, in the order in which they were first seen.
class ReachableLoggers
{
public:
    /// Twice what the network of a search has addresses for. Whoever makes up more of them does not fill the device
    /// manager's list until the window stands still.
    static constexpr int mostRecords = 512;

    /// The records belong to this list; a scan or a search may remove any of them.
    QList<AvailDevice *> all() const;
    QList<AvailDevice *> usb() const;
    AvailDevice *find(const QString &key) const;
    int size() const { return int(m_records.size()); }

    /// The keys of USB records that are not among the found: a logger is gone even when another came in its place.
    QStringList vanished(const QList<UsbLogger> &found) const;
    /// Takes over what a scan has found; of several with one key the first counts. True when a logger is new or has
    /// moved to another port.
    bool mergeUsb(const QList<UsbLogger> &found);
    /// A logger beyond mostRecords is left out.
    void mergeNetwork(const DiscoveryReply &reply);

    void removeUsb();
    void clear();

private:
    QList<UsbLogger> firstOfEachKey(const QList<UsbLogger> &found);
    AvailDevice &add(const QString &key, InterfaceKind kind);

    std::vector<std::unique_ptr<AvailDevice>> m_records;
    QHash<QString, AvailDevice *> m_index; // by key
    QList<UsbLogger> m_doubles;            ///< of the newest scan: known, and logged
    bool m_hasOverflowed = false;
};
