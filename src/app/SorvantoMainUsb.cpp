#include "app/SorvantoMain.h"

#include "app/Logging.h"
#include "device/ConfiguredDevice.h"

#include <algorithm>

void SorvantoMain::checkConnection()
{
    const QList<UsbLogger> found = findUsbLoggers();
    m_usbPresent = !found.isEmpty();
    dropVanishedLoggers(found);
    mergeUsbLoggers(found);

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
    for (ConfiguredDevice *device : std::as_const(m_configuredDevices)) {
        if (device->interfaceKind() == UsbInterface)
            device->forgetPort();
    }
    m_usbPresentBefore = false;
    checkConnection();
}

/// Loggers are told apart by their serial number: one that is missing is gone even when another came in its place.
void SorvantoMain::dropVanishedLoggers(const QList<UsbLogger> &found)
{
    bool anyVanished = false;
    for (const AvailDevice *record : std::as_const(m_serialDeviceList)) {
        const bool present = std::any_of(found.cbegin(), found.cend(), [record](const UsbLogger &logger) {
            return logger.serialNumber == record->key;
        });
        if (present)
            continue;
        anyVanished = true;
        if (ConfiguredDevice *device = usbDeviceOf(record->key))
            device->forgetPort();
    }
    if (anyVanished)
        closeSerialDevices();
}

/// A network device may carry the same key as a USB logger; the watch has no say in it.
ConfiguredDevice *SorvantoMain::usbDeviceOf(const QString &key) const
{
    ConfiguredDevice *device = deviceOf(key);
    return device && device->interfaceKind() == UsbInterface ? device : nullptr;
}

void SorvantoMain::mergeUsbLoggers(const QList<UsbLogger> &found)
{
    for (const UsbLogger &logger : found) {
        if (AvailDevice *record = availDeviceOf(logger.serialNumber)) {
            if (record->address != logger.portName) {
                record->address = logger.portName;
                m_usbPresentBefore = false;
            }
            continue;
        }
        AvailDevice *record = addAvailDevice(logger.serialNumber, UsbInterface);
        record->address = logger.portName;
        m_serialDeviceList.append(record);
        m_usbPresentBefore = false;
    }
}

/// Every port is let go before the first is opened: loggers may have changed places.
void SorvantoMain::openOstrivaneDevices()
{
    if (!m_bIsProjectOpen)
        return;
    QList<std::pair<ConfiguredDevice *, const AvailDevice *>> present;
    for (const AvailDevice *record : std::as_const(m_serialDeviceList)) {
        ConfiguredDevice *device = usbDeviceOf(record->key);
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
    if (!m_bIsProjectOpen)
        return;
    for (const AvailDevice *record : std::as_const(m_serialDeviceList)) {
        ConfiguredDevice *device = usbDeviceOf(record->key);
        if (device && !device->isOpen() && !device->opensWithNextPoll())
            openUsbDevice(device, *record);
    }
}

void SorvantoMain::closeSerialDevices()
{
    for (AvailDevice *record : std::as_const(m_serialDeviceList)) {
        qCDebug(lcApp).noquote().nospace()
            << "closeSerialDevices:[" << record->address << "],serial no:[" << record->key << "]";
        if (!m_availDeviceList.removeOne(record))
            qCDebug(lcApp).noquote() << "closeSerialDevices() m_availDeviceList.removeOne false :";
        m_availDeviceIndex.remove(record->key);
        delete record;
    }
    m_serialDeviceList.clear();
}

void SorvantoMain::closeOstrivaneDevices()
{
    for (AvailDevice *record : std::as_const(m_availDeviceList)) {
        if (record->kind == UsbInterface && !m_serialDeviceList.removeOne(record))
            qCDebug(lcApp).noquote() << "closeOstrivaneDevices() m_serialDeviceList.removeOne false :";
        delete record;
    }
    m_availDeviceList.clear();
    m_availDeviceIndex.clear();
    m_serialDeviceList.clear();
}
