#pragma once

#include "device/AlarmRange.h"
#include "device/AvailDevice.h"

/// What the project file and the option dialogs say about one logger.
struct DeviceSettings
{
    QString name;
    QString ch1Name;
    QString ch2Name;
    QString address; ///< the serial port's name, or the IP address as text
    quint16 port = defaultDevicePort;
    qint32 ch1Unit = 0;
    qint32 ch2Unit = 0;
    QString ch1CustomUnit;
    QString ch2CustomUnit;
    AlarmSettings alarm;        ///< in force
    AlarmSettings pendingAlarm; ///< last entered, and sent to a network logger
    int dashboardNumber = 0;
    bool keepConnection = false;
};
