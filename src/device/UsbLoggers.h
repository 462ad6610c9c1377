#pragma once

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

/// The attached loggers in enumeration order; empty when there are none or the system cannot be asked.
QList<UsbLogger> findUsbLoggers();
