#pragma once

#include "project/DeviceEntry.h"

#include <QList>
#include <memory>
#include <vector>

/// Closes a device's link and takes it off its views before it goes.
struct DeviceRelease
{
    void operator()(ConfiguredDevice *device) const;
};
using OwnedDevice = std::unique_ptr<ConfiguredDevice, DeviceRelease>;

/// The devices of the open project, in its order; their only owner.
class ProjectDevices
{
public:
    /// Devices become children of @p parent, which must outlive them.
    explicit ProjectDevices(QObject *parent) : m_parent(parent) {}

    /// For devices that are loaded or adopted from then on; unset, it is their own.
    void setClock(const ConfiguredDevice::Clock &clock) { m_clock = clock; }

    QList<ConfiguredDevice *> all() const;
    int size() const { return int(m_devices.size()); }
    /// Null when the project has no such device.
    ConfiguredDevice *find(const QString &key) const;
    /// The same for USB loggers only: a network device may carry the same key.
    ConfiguredDevice *findUsb(const QString &key) const;
    QList<DeviceEntry> entries() const;
    bool anyAlarm() const;

    /// Makes the devices of a project file; of entries with one key the last counts.
    void load(const QList<DeviceEntry> &entries, bool keepConnection);
    /// Takes over the devices that were chosen, in that order; those of its own that are not among them go.
    void adopt(const QList<ConfiguredDevice *> &chosen);
    void clear();

private:
    ConfiguredDevice *own(ConfiguredDevice *device);

    QObject *const m_parent;
    ConfiguredDevice::Clock m_clock;
    std::vector<OwnedDevice> m_devices;
};
