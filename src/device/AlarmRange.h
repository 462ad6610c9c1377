#pragma once

#include <QString>

/// The range within which a channel is silent, both channels; a channel whose minimum equals its maximum never alarms.
struct AlarmRange
{
    float min1 = 0;
    float max1 = 0;
    float min2 = 0;
    float max2 = 0;
};

inline bool operator==(const AlarmRange &a, const AlarmRange &b)
{
    return a.min1 == b.min1 && a.max1 == b.max1 && a.min2 == b.min2 && a.max2 == b.max2;
}

inline bool operator!=(const AlarmRange &a, const AlarmRange &b)
{
    return !(a == b);
}

/// What a network logger can be given to sound an alarm of its own.
struct AlarmSettings
{
    AlarmRange range;
    QString buzzerRule = QStringLiteral("OFF");
};
