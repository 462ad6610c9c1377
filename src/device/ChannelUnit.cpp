#include "device/ChannelUnit.h"

ChannelUnit channelUnitFromCode(int code)
{
    return code >= CelsiusUnit && code <= CustomUnit ? static_cast<ChannelUnit>(code) : UndefinedUnit;
}

QString channelTypeText(ChannelUnit unit)
{
    switch (unit) {
    case CelsiusUnit:
        return QStringLiteral("Temperature(\u00B0C)");
    case FahrenheitUnit:
        return QStringLiteral("Temperature(\u00B0F)");
    case HumidityUnit:
        return QStringLiteral("Humidity(%)");
    case CustomUnit:
        return QStringLiteral("Custom");
    case UndefinedUnit:
        break;
    }
    return QStringLiteral("Undefined");
}

QString unitText(ChannelUnit unit, const QString &customText)
{
    switch (unit) {
    case CelsiusUnit:
        return QStringLiteral("\u00B0C");
    case FahrenheitUnit:
        return QStringLiteral("\u00B0F");
    case HumidityUnit:
        return QStringLiteral("%RH");
    case CustomUnit:
        return customText;
    case UndefinedUnit:
        break;
    }
    return {};
}
