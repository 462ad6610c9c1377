#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

// What Windows tells about a device, free of the toolkit and of the system's headers: the same code runs in the
// station, in the small program that lists loggers, and in the tests of every platform.

/// A property as Windows hands it out: a type number and bytes, which need not fit together.
struct RawProperty
{
    std::uint32_t type = 0;
    std::vector<std::uint8_t> bytes;
};

/// Nothing where a property tells neither text nor a number.
using PropertyValue = std::variant<std::monostate, std::int32_t, std::u16string, std::vector<std::u16string>>;

/// The value of a property whose type is one of the registry.
PropertyValue registryValue(const RawProperty &property);
/// The value of a property whose type is one of the device property system.
PropertyValue devicePropertyValue(const RawProperty &property);

/// A number in decimal digits, of a list its only item; empty for nothing and for longer lists.
std::u16string textOf(const PropertyValue &value);
/// A text is a list of one; empty for nothing and for numbers.
std::vector<std::u16string> listOf(const PropertyValue &value);
