#pragma once

#include "device/usb/DeviceProperty.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// What makes a USB device a logger and how it tells its port and its serial number; free of the toolkit like the
// decoding of properties, so that the rules are the same wherever they are compiled.

/// Whether the ids, as hexadecimal text in either case, are those of a logger.
bool isUsbLogger(std::u16string_view vendorId, std::u16string_view productId);
/// The serial number within a USB description; a description without the marker is taken as it is.
std::u16string serialNumberFromDescription(std::u16string description);

/// One attached logger; neither text is empty.
struct FoundUsbLogger
{
    std::u16string portName;
    std::u16string serialNumber;
};
/// Nothing when there is no port to poll the logger at or no serial number to tell it from others.
std::optional<FoundUsbLogger> foundUsbLogger(std::u16string portName, std::u16string description);

struct UsbIds
{
    std::u16string vendor;
    std::u16string product;
};
/// The ids within a hardware id such as USB\VID_04D8&PID_000A&REV_0100; empty when it names none.
UsbIds usbIdsOf(std::u16string_view hardwareId);
/// COM7 for "USB Communications Port (COM7)"; empty when the name tells no port.
std::u16string portNameFromFriendlyName(std::u16string_view friendlyName);

/// The numbers are those of SetupAPI.
enum class RegistryProperty : std::uint32_t { HardwareIds = 1, FriendlyName = 12, LocationInformation = 13 };

/// What Windows knows of one device; every property is read when it is asked for.
class UsbDeviceProperties
{
public:
    virtual ~UsbDeviceProperties() = default;
    /// Nothing when the device does not have the property.
    virtual std::optional<RawProperty> registryProperty(RegistryProperty property) const = 0;
    /// The description that the device itself gave on the bus; nothing when it gave none.
    virtual std::optional<RawProperty> busReportedDescription() const = 0;
};
/// The logger that the device is; nothing when it is none.
std::optional<FoundUsbLogger> usbLoggerOf(const UsbDeviceProperties &device);
