#include "device/UsbLoggers.h"

#include <libudev.h>
#include <memory>
#include <optional>

namespace {

struct Unref
{
    void operator()(udev *context) const { udev_unref(context); }
    void operator()(udev_enumerate *enumeration) const { udev_enumerate_unref(enumeration); }
    void operator()(udev_device *device) const { udev_device_unref(device); }
};
template <typename T>
using Handle = std::unique_ptr<T, Unref>;

std::u16string attribute(udev_device *device, const char *name)
{
    return QString::fromUtf8(udev_device_get_sysattr_value(device, name)).toStdU16String();
}

std::u16string portNameOf(udev_device *terminal)
{
    const QString node = QString::fromUtf8(udev_device_get_devnode(terminal));
    const QLatin1String folder("/dev/");
    return (node.startsWith(folder) ? node.mid(folder.size()) : node).toStdU16String();
}

std::optional<FoundUsbLogger> loggerAt(udev_device *terminal)
{
    // Belongs to the terminal, so it is not released here.
    udev_device *usb = udev_device_get_parent_with_subsystem_devtype(terminal, "usb", "usb_device");
    if (!usb || !isUsbLogger(attribute(usb, "idVendor"), attribute(usb, "idProduct")))
        return std::nullopt;
    return foundUsbLogger(portNameOf(terminal), attribute(usb, "product"));
}

std::vector<FoundUsbLogger> attachedLoggers()
{
    std::vector<FoundUsbLogger> loggers;
    const Handle<udev> context(udev_new());
    const Handle<udev_enumerate> enumeration(context ? udev_enumerate_new(context.get()) : nullptr);
    // Without the pattern every virtual console (tty0 to tty63) would be read as well, which takes milliseconds.
    if (!enumeration || udev_enumerate_add_match_subsystem(enumeration.get(), "tty") < 0 ||
        udev_enumerate_add_match_sysname(enumeration.get(), "tty[A-Z]*") < 0 ||
        udev_enumerate_scan_devices(enumeration.get()) < 0)
        return loggers;

    udev_list_entry *entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumeration.get()))
    {
        const Handle<udev_device> terminal(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        if (!terminal)
            continue;
        if (auto logger = loggerAt(terminal.get()))
            loggers.push_back(std::move(*logger));
    }
    return loggers;
}

} // namespace

QList<UsbLogger> findUsbLoggers()
{
    return usableUsbLoggers(attachedLoggers());
}
