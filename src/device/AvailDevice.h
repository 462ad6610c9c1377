#pragma once

#include "device/LinkKind.h"

#include <QString>

constexpr quint16 defaultDevicePort = 23;

/// One logger that can be reached right now.
struct AvailDevice
{
    QString key;     ///< serial number (USB) or MAC address as 12 upper-case hexadecimal digits (network)
    QString address; ///< serial port name or IPv4 text
    quint16 port = defaultDevicePort;
    qint32 kind = NoInterface;
};
