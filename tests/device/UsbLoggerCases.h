#pragma once

#include "device/UsbLoggers.h"
#include "device/usb/DeviceProperty.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

/// One USB device of a case, as each system would tell of it.
struct UsbDeviceCase
{
    // For Linux; a null product is none.
    QByteArray vendorId;
    QByteArray productId;
    QByteArray product;
    QByteArray ttyName; ///< empty: the device has no serial port

    // For Windows; the bus-reported description is typed as a device property, the others as registry values.
    std::optional<RawProperty> hardwareIds;
    std::optional<RawProperty> friendlyName;
    std::optional<RawProperty> location;
    std::optional<RawProperty> busReported;
};

/// What is plugged in and which loggers a system finds then, in order.
struct UsbLoggerCase
{
    QString name;
    QList<UsbDeviceCase> devices;
    QList<UsbLogger> found;
};

enum class UsbSystem { Linux, Windows };

/// The table's cases that the system can show; ends the test program when the table cannot be read.
QList<UsbLoggerCase> usbLoggerCases(UsbSystem system);
/// Makes a data row of each case: its number within usbLoggerCases().
void addUsbLoggerCaseRows(UsbSystem system);
