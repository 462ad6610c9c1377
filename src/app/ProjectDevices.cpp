#include "app/ProjectDevices.h"

#include "app/Logging.h"

#include <algorithm>
#include <utility>

void DeviceRelease::operator()(ConfiguredDevice *device) const
{
    device->detachViews();
    device->closeDevice();
    delete device;
}

QList<ConfiguredDevice *> ProjectDevices::all() const
{
    QList<ConfiguredDevice *> devices;
    devices.reserve(size());
    for (const OwnedDevice &device : m_devices)
        devices.append(device.get());
    return devices;
}

ConfiguredDevice *ProjectDevices::find(const QString &key) const
{
    const auto found = std::find_if(m_devices.cbegin(), m_devices.cend(),
                                    [&key](const OwnedDevice &device) { return device->serialNumber() == key; });
    return found == m_devices.cend() ? nullptr : found->get();
}

ConfiguredDevice *ProjectDevices::findUsb(const QString &key) const
{
    ConfiguredDevice *device = find(key);
    return device && linkKind(device->interfaceKind()).isPluggedIn ? device : nullptr;
}

QList<DeviceEntry> ProjectDevices::entries() const
{
    QList<DeviceEntry> all;
    for (const OwnedDevice &device : m_devices)
        all.append(entryOf(*device));
    return all;
}

bool ProjectDevices::anyAlarm() const
{
    return std::any_of(m_devices.cbegin(), m_devices.cend(), [](const OwnedDevice &device) {
        return device->alarmOnChannel1() || device->alarmOnChannel2();
    });
}

void ProjectDevices::load(const QList<DeviceEntry> &entries, bool keepConnection)
{
    for (const DeviceEntry &entry : entries) {
        ConfiguredDevice *device = find(entry.serialNumber);
        qCDebug(lcApp).noquote() << (device ? "ConfiguredDevice :" : "new ConfiguredDevice :") << entry.serialNumber
                                 << entry.port;
        if (!device)
            device = own(new ConfiguredDevice(entry.serialNumber, entry.interfaceKind));
        configure(*device, entry, keepConnection);
    }
}

void ProjectDevices::adopt(const QList<ConfiguredDevice *> &chosen)
{
    std::vector<OwnedDevice> before = std::exchange(m_devices, {});
    for (ConfiguredDevice *device : chosen) {
        const auto kept = std::find_if(before.begin(), before.end(),
                                       [device](const OwnedDevice &candidate) { return candidate.get() == device; });
        own(kept == before.end() ? device : kept->release());
    }
}

ConfiguredDevice *ProjectDevices::own(ConfiguredDevice *device)
{
    m_devices.emplace_back(device);
    device->setParent(m_parent);
    if (m_clock)
        device->setClock(m_clock);
    return device;
}

void ProjectDevices::clear()
{
    // Nobody may meet a device on its way out in the list.
    const std::vector<OwnedDevice> leaving = std::exchange(m_devices, {});
}
