#include "device/UsbLoggers.h"
#include "device/usb/SetupApiReader_windows.h"

QList<UsbLogger> findUsbLoggers()
{
    return usableUsbLoggers(readUsbLoggers());
}
