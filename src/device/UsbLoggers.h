#pragma once

#include "device/usb/UsbLoggerRules.h"

#include <QList>
#include <QString>
#include <vector>

/// One attached USB logger.
struct UsbLogger
{
    QString portName;
    QString serialNumber;
};
inline bool operator==(const UsbLogger &a, const UsbLogger &b)
{
    return a.portName == b.portName && a.serialNumber == b.serialNumber;
}

/// Those of the loggers that the system tells of whose serial number can be a key. Why one is left out is logged once,
/// as long as it is told of at every call.
QList<UsbLogger> usableUsbLoggers(const std::vector<FoundUsbLogger> &found);

/// The attached loggers in enumeration order, as far as they are usable; empty when there are none or the system cannot
/// be asked.
QList<UsbLogger> findUsbLoggers();
