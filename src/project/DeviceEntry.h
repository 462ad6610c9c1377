#pragma once

#include "device/ConfiguredDevice.h"

#include <QString>

/// One device as a project file keeps it.
struct DeviceEntry
{
    QString name;
    QString ch1Name;
    QString ch2Name;
    QString serialNumber;
    int interfaceKind = NetworkInterface;
    QString address;
    quint16 port = defaultDevicePort;
    int ch1Unit = 0;
    int ch2Unit = 0;
    AlarmRange range;
    QString ch1CustomUnit;
    QString ch2CustomUnit;
    QString buzzerAlarm = QStringLiteral("OFF");
    int dashboardNumber = 0;
};
bool operator==(const DeviceEntry &a, const DeviceEntry &b);
bool operator!=(const DeviceEntry &a, const DeviceEntry &b);

/// What the project file keeps of @p device.
DeviceEntry entryOf(const ConfiguredDevice &device);
/// Gives @p device the entry's settings; its identity and kind stay.
void configure(ConfiguredDevice &device, const DeviceEntry &entry, bool keepConnection);
