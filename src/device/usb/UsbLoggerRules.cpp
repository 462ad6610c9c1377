#include "device/usb/UsbLoggerRules.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::u16string_view seriesMarker = u"ZP_SERIES__";

/// All that the rules look for is ASCII; other letters stay as they are.
std::u16string upperCased(std::u16string_view text)
{
    std::u16string upper(text);
    for (char16_t &c : upper) {
        if (c >= u'a' && c <= u'z')
            c = static_cast<char16_t>(c - u'a' + u'A');
    }
    return upper;
}

bool contains(std::u16string_view text, std::u16string_view part)
{
    return text.find(part) != std::u16string_view::npos;
}

void removeAll(std::u16string &text, std::u16string_view part)
{
    for (std::size_t at = text.find(part); at != std::u16string::npos; at = text.find(part, at))
        text.erase(at, part.size());
}

bool isWordCharacter(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'Z') || c == u'_';
}

/// The word characters from @p from on.
std::u16string wordAt(std::u16string_view upperText, std::size_t from)
{
    const auto begin = upperText.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, std::find_if_not(begin, upperText.end(), isWordCharacter)};
}

std::u16string registryText(const UsbDeviceProperties &device, RegistryProperty property)
{
    const auto raw = device.registryProperty(property);
    return raw ? textOf(registryValue(*raw)) : std::u16string();
}

/// Only the first hardware id counts.
UsbIds idsOf(const UsbDeviceProperties &device)
{
    const auto raw = device.registryProperty(RegistryProperty::HardwareIds);
    const auto hardwareIds = raw ? listOf(registryValue(*raw)) : std::vector<std::u16string>();
    return hardwareIds.empty() ? UsbIds() : usbIdsOf(hardwareIds.front());
}

std::u16string descriptionOf(const UsbDeviceProperties &device)
{
    std::u16string location = registryText(device, RegistryProperty::LocationInformation);
    if (contains(location, seriesMarker))
        return location;
    const auto raw = device.busReportedDescription();
    return raw ? textOf(devicePropertyValue(*raw)) : std::u16string();
}

} // namespace

bool isUsbLogger(std::u16string_view vendorId, std::u16string_view productId)
{
    return contains(upperCased(vendorId), u"04D8") && contains(upperCased(productId), u"000A");
}

std::u16string serialNumberFromDescription(std::u16string description)
{
    removeAll(description, seriesMarker);
    // Untyped data brings its terminator along, which is no part of a key.
    removeAll(description, std::u16string_view(u"\0", 1));
    return description;
}

std::optional<FoundUsbLogger> foundUsbLogger(std::u16string portName, std::u16string description)
{
    FoundUsbLogger logger{std::move(portName), serialNumberFromDescription(std::move(description))};
    if (logger.portName.empty() || logger.serialNumber.empty())
        return std::nullopt;
    return logger;
}

UsbIds usbIdsOf(std::u16string_view hardwareId)
{
    constexpr std::u16string_view vendorMark = u"VID_";
    constexpr std::u16string_view productMark = u"&PID_";
    const std::u16string text = upperCased(hardwareId);
    for (std::size_t at = text.find(vendorMark); at != std::u16string::npos; at = text.find(vendorMark, at + 1)) {
        const std::u16string vendor = wordAt(text, at + vendorMark.size());
        const std::size_t next = at + vendorMark.size() + vendor.size();
        if (vendor.empty() || text.compare(next, productMark.size(), productMark) != 0)
            continue;
        const std::u16string product = wordAt(text, next + productMark.size());
        if (!product.empty())
            return {vendor, product};
    }
    return {};
}

std::u16string portNameFromFriendlyName(std::u16string_view friendlyName)
{
    std::u16string name = upperCased(friendlyName);
    if (!contains(name, u"(COM") || !contains(name, u")"))
        return {};
    for (const std::u16string_view word : {u"COMMUNICATIONS", u"PORT", u" "})
        removeAll(name, word);
    const std::size_t begin = name.find(u"COM");
    if (begin == std::u16string::npos)
        return {};
    return name.substr(begin, name.find(u')', begin) - begin);
}

std::optional<FoundUsbLogger> usbLoggerOf(const UsbDeviceProperties &device)
{
    const UsbIds ids = idsOf(device);
    if (!isUsbLogger(ids.vendor, ids.product))
        return std::nullopt;
    std::u16string portName = portNameFromFriendlyName(registryText(device, RegistryProperty::FriendlyName));
    if (portName.empty())
        return std::nullopt;
    return foundUsbLogger(std::move(portName), descriptionOf(device));
}
