#include "device/usb/DeviceProperty.h"

#include <algorithm>
#include <cstddef>

namespace {

using Bytes = std::vector<std::uint8_t>;

enum class RegistryType : std::uint32_t {
    None = 0,
    Text = 1,
    ExpandableText = 2,
    Binary = 3,
    Number = 4,
    BigEndianNumber = 5,
    TextList = 7
};

enum class DevicePropertyType : std::uint32_t {
    Byte = 3,
    SignedNumber = 4,
    UnsignedNumber = 5,
    Text = 18,
    Binary = 4099,
    TextList = 8210
};

/// All characters, the zeros among them too; the odd byte at the end is half a character and dropped.
std::u16string characters(const Bytes &bytes)
{
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
    return text;
}

/// Windows does not promise the terminator: without one the text ends where the bytes end.
std::u16string terminatedText(const Bytes &bytes)
{
    const std::u16string text = characters(bytes);
    return text.substr(0, text.find(u'\0'));
}

/// An empty item ends the list.
std::vector<std::u16string> textList(const Bytes &bytes)
{
    const std::u16string text = characters(bytes);
    std::vector<std::u16string> items;
    std::size_t begin = 0;
    while (begin < text.size() && text[begin] != u'\0') {
        const std::size_t end = std::min(text.find(u'\0', begin), text.size());
        items.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return items;
}

/// The first four bytes, from the least significant on; nothing when there are fewer.
PropertyValue number(const Bytes &bytes)
{
    if (bytes.size() < 4)
        return {};
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return static_cast<std::int32_t>(value);
}

PropertyValue bigEndianNumber(Bytes bytes)
{
    if (bytes.size() < 4)
        return {};
    std::reverse(bytes.begin(), bytes.begin() + 4);
    return number(bytes);
}

std::u16string digits(std::int32_t number)
{
    const std::string text = std::to_string(number);
    return {text.begin(), text.end()};
}

} // namespace

PropertyValue registryValue(const RawProperty &property)
{
    switch (static_cast<RegistryType>(property.type)) {
    case RegistryType::Text:
    case RegistryType::ExpandableText:
        return terminatedText(property.bytes);
    case RegistryType::None:
    case RegistryType::Binary:
        return characters(property.bytes);
    case RegistryType::Number:
        return number(property.bytes);
    case RegistryType::BigEndianNumber:
        return bigEndianNumber(property.bytes);
    case RegistryType::TextList:
        return textList(property.bytes);
    }
    return {};
}

PropertyValue devicePropertyValue(const RawProperty &property)
{
    switch (static_cast<DevicePropertyType>(property.type)) {
    case DevicePropertyType::Text:
        return terminatedText(property.bytes);
    case DevicePropertyType::Byte:
    case DevicePropertyType::Binary:
        return characters(property.bytes);
    case DevicePropertyType::SignedNumber:
    case DevicePropertyType::UnsignedNumber:
        return number(property.bytes);
    case DevicePropertyType::TextList:
        return textList(property.bytes);
    }
    return {};
}

std::u16string textOf(const PropertyValue &value)
{
    if (const auto *text = std::get_if<std::u16string>(&value))
        return *text;
    if (const auto *number = std::get_if<std::int32_t>(&value))
        return digits(*number);
    const std::vector<std::u16string> items = listOf(value);
    return items.size() == 1 ? items.front() : std::u16string();
}

std::vector<std::u16string> listOf(const PropertyValue &value)
{
    if (const auto *items = std::get_if<std::vector<std::u16string>>(&value))
        return *items;
    if (const auto *text = std::get_if<std::u16string>(&value))
        return {*text};
    return {};
}
