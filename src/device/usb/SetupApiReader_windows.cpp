#include "device/usb/SetupApiReader_windows.h"

// The system's headers want the first of these before the others.
#include <windows.h>

#include <devpropdef.h>
#include <setupapi.h>

namespace {

constexpr GUID usbDeviceInterface = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};
constexpr DEVPROPKEY busReportedDescriptionKey = {
    {0x540B947E, 0x8B40, 0x45BC, {0xA8, 0xA2, 0x6A, 0x0B, 0x89, 0x4C, 0xBD, 0xA2}}, 4};

/// Asks once for the size and once for the data; @p ask is (type, buffer, size of the buffer, size needed).
template <typename Ask>
std::optional<RawProperty> rawProperty(Ask ask)
{
    DWORD type = 0;
    DWORD size = 0;
    if (!ask(&type, nullptr, 0, &size) && GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return std::nullopt;
    RawProperty property;
    property.bytes.resize(size);
    if (!ask(&type, property.bytes.data(), size, &size))
        return std::nullopt;
    property.type = type;
    property.bytes.resize(size);
    return property;
}

class SetupApiDevice : public UsbDeviceProperties
{
public:
    SetupApiDevice(HDEVINFO devices, const SP_DEVINFO_DATA &device) : m_devices(devices), m_device(device) {}

    std::optional<RawProperty> registryProperty(RegistryProperty property) const override
    {
        return rawProperty([this, property](DWORD *type, BYTE *buffer, DWORD bufferSize, DWORD *size) {
            return SetupDiGetDeviceRegistryPropertyW(m_devices, &m_device, static_cast<DWORD>(property), type, buffer,
                                                     bufferSize, size);
        });
    }

    std::optional<RawProperty> busReportedDescription() const override
    {
        return rawProperty([this](DWORD *type, BYTE *buffer, DWORD bufferSize, DWORD *size) {
            return SetupDiGetDevicePropertyW(m_devices, &m_device, &busReportedDescriptionKey, type, buffer, bufferSize,
                                             size, 0);
        });
    }

private:
    HDEVINFO m_devices;
    // SetupAPI takes even the device to read from as a pointer to a variable.
    mutable SP_DEVINFO_DATA m_device;
};

} // namespace

std::vector<FoundUsbLogger> readUsbLoggers()
{
    std::vector<FoundUsbLogger> loggers;
    const HDEVINFO devices =
        SetupDiGetClassDevsW(&usbDeviceInterface, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    if (devices == INVALID_HANDLE_VALUE)
        return loggers;
    SP_DEVINFO_DATA device = {};
    device.cbSize = sizeof device;
    for (DWORD index = 0; SetupDiEnumDeviceInfo(devices, index, &device); ++index) {
        if (auto logger = usbLoggerOf(SetupApiDevice(devices, device)))
            loggers.push_back(std::move(*logger));
    }
    SetupDiDestroyDeviceInfoList(devices);
    return loggers;
}
