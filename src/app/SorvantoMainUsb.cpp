#include "app/SorvantoMain.h"

#include "app/Logging.h"

void SorvantoMain::checkConnection()
{
    const QList<UsbLogger> found = findUsbLoggers();
    m_usbPresent = !found.isEmpty();
    dropVanishedLoggers(found);
    if (m_availDevices.mergeUsb(found))
        m_usbPresentBefore = false;

    if (m_usbPresent != m_usbPresentBefore) {
        if (m_usbPresent)
            openOstrivaneDevices();
        else
            closeSerialDevices();
        refreshFoundDevices();
    } else {
        reopenClosedUsbDevices();
    }
    m_usbPresentBefore = m_usbPresent;
}

/// A port that was stored, or seen by an earlier scan, may be another logger's by now: only this scan hands out ports.
void SorvantoMain::openUsbDevicesAnew()
{
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices) {
        if (linkKind(device->interfaceKind()).isPluggedIn)
            device->forgetPort();
    }
    m_usbPresentBefore = false;
    checkConnection();
}

void SorvantoMain::dropVanishedLoggers(const QList<UsbLogger> &found)
{
    const QStringList vanished = m_availDevices.vanished(found);
    for (const QString &key : vanished) {
        if (ConfiguredDevice *device = m_devices.findUsb(key))
            device->forgetPort();
    }
    if (!vanished.isEmpty())
        closeSerialDevices();
}

/// Every port is let go before the first is opened: loggers may have changed places.
void SorvantoMain::openOstrivaneDevices()
{
    if (!isProjectOpen())
        return;
    QList<std::pair<ConfiguredDevice *, const AvailDevice *>> present;
    const QList<AvailDevice *> records = m_availDevices.usb();
    for (const AvailDevice *record : records) {
        ConfiguredDevice *device = m_devices.findUsb(record->key);
        if (!device)
            continue;
        if (device->isOpen())
            device->releasePort();
        present.append({device, record});
    }
    for (const auto &[device, record] : std::as_const(present))
        openUsbDevice(device, *record);
    if (!present.isEmpty())
        slotUpdateProjectFile();
}

void SorvantoMain::openUsbDevice(ConfiguredDevice *device, const AvailDevice &record)
{
    device->setDeviceInfo(device->deviceName(), device->ch1Name(), device->ch2Name(), record.address,
                          defaultDevicePort);
    device->openDevice();
}

/// A quick replug that fell between two scans, or a port that refused its first opening.
void SorvantoMain::reopenClosedUsbDevices()
{
    if (!isProjectOpen())
        return;
    const QList<AvailDevice *> records = m_availDevices.usb();
    for (const AvailDevice *record : records) {
        ConfiguredDevice *device = m_devices.findUsb(record->key);
        if (device && !device->isOpen() && !device->opensWithNextPoll())
            openUsbDevice(device, *record);
    }
}

void SorvantoMain::closeSerialDevices()
{
    const QList<AvailDevice *> leaving = m_availDevices.usb();
    for (const AvailDevice *record : leaving)
        qCDebug(lcApp).noquote().nospace()
            << "closeSerialDevices:[" << record->address << "],serial no:[" << record->key << "]";
    m_availDevices.removeUsb();
}

void SorvantoMain::closeOstrivaneDevices()
{
    m_availDevices.clear();
}
