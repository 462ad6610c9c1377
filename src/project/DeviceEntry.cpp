#include "project/DeviceEntry.h"

#include <tuple>

namespace {

auto fields(const DeviceEntry &entry)
{
    return std::tie(entry.name, entry.ch1Name, entry.ch2Name, entry.serialNumber, entry.interfaceKind, entry.address,
                    entry.port, entry.ch1Unit, entry.ch2Unit, entry.range, entry.ch1CustomUnit, entry.ch2CustomUnit,
                    entry.buzzerAlarm, entry.dashboardNumber);
}

} // namespace

bool operator==(const DeviceEntry &a, const DeviceEntry &b)
{
    return fields(a) == fields(b);
}

bool operator!=(const DeviceEntry &a, const DeviceEntry &b)
{
    return !(a == b);
}

DeviceEntry entryOf(const ConfiguredDevice &device)
{
    DeviceEntry entry;
    entry.name = device.deviceName();
    entry.ch1Name = device.ch1Name();
    entry.ch2Name = device.ch2Name();
    entry.serialNumber = device.serialNumber();
    entry.interfaceKind = device.interfaceKind();
    entry.address = device.address();
    entry.port = device.port();
    entry.ch1Unit = device.ch1Unit();
    entry.ch2Unit = device.ch2Unit();
    entry.range = device.alarmRange();
    entry.ch1CustomUnit = device.ch1CustomUnit();
    entry.ch2CustomUnit = device.ch2CustomUnit();
    entry.buzzerAlarm = device.buzzerAlarm();
    entry.dashboardNumber = device.dashboardNumber();
    return entry;
}

void configure(ConfiguredDevice &device, const DeviceEntry &entry, bool keepConnection)
{
    device.setDeviceInfo(entry.name, entry.ch1Name, entry.ch2Name, entry.address, entry.port);
    device.setUnits(entry.ch1Unit, entry.ch2Unit);
    device.setAlarmRange(entry.range.min1, entry.range.max1, entry.range.min2, entry.range.max2);
    device.setCustomUnits(entry.ch1CustomUnit, entry.ch2CustomUnit);
    device.setBuzzerAlarm(entry.buzzerAlarm);
    device.setDashboardNumber(entry.dashboardNumber);
    device.setKeepConnection(keepConnection);
}
