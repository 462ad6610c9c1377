#pragma once

#include <QString>

/// What a channel measures; the numbers are those of project files.
enum ChannelUnit { UndefinedUnit = 0, CelsiusUnit = 1, FahrenheitUnit = 2, HumidityUnit = 3, CustomUnit = 4 };

/// The unit of a stored code; UndefinedUnit for any code that is none.
ChannelUnit channelUnitFromCode(int code);
/// The text of the unit in lists of choices: "Undefined", "Temperature(°C)", …
QString channelTypeText(ChannelUnit unit);
/// The text beside a value: "°C", "%RH", the custom text, or nothing.
QString unitText(ChannelUnit unit, const QString &customText);
