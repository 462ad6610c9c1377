#pragma once

#include "device/usb/UsbLoggerRules.h"

#include <QList>
#include <QString>

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

inline UsbLogger usbLogger(const FoundUsbLogger &logger)
{
    return {QString::fromStdU16String(logger.portName), QString::fromStdU16String(logger.serialNumber)};
}

/// The attached loggers in enumeration order; empty when there are none or the system cannot be asked.
QList<UsbLogger> findUsbLoggers();
