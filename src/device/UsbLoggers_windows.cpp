#include "device/UsbLoggers.h"
#include "device/usb/SetupApiReader_windows.h"

QList<UsbLogger> findUsbLoggers()
{
    QList<UsbLogger> loggers;
    for (const FoundUsbLogger &logger : readUsbLoggers())
        loggers.append(usbLogger(logger));
    return loggers;
}
