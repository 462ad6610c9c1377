#pragma once

#include "../chart/ChartPixels.h"
#include "chart/NoValue.h"
#include "chart/XYChart.h"
#include "views/ChannelChart.h"

#include <cmath>

constexpr double newestTime = 1700000000;
constexpr qint32 tenSeconds = 10000;
constexpr QSize chartLabel(800, 180);

inline const ChannelLine channel1{QStringLiteral("CH1"), QColor(255, 0, 0)};
inline const ChannelLine channel2{QStringLiteral("CH2"), QColor(0, 204, 0)};

/// A sample every so many seconds, the last at newestTime.
inline History timesEvery(int seconds)
{
    History times;
    for (int i = 0; i < historyLength; ++i)
        times[size_t(i)] = newestTime - double(historyLength - 1 - i) * seconds;
    return times;
}

inline History allOf(double value)
{
    History history;
    history.fill(value);
    return history;
}

inline History wave()
{
    History values;
    for (int i = 0; i < historyLength; ++i)
        values[size_t(i)] = 20 + 3 * std::sin(i / 15.0);
    return values;
}
