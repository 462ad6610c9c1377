#pragma once

#include "views/ChannelChart.h"
#include "views/chart/NoValue.h"
#include "views/chart/XYChart.h"

#include <QImage>
#include <cmath>

// What the tests of the channel chart and of its cursor share.

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

/// A colour seen through another: @p share of 1 is the upper one alone.
inline QColor blended(const QColor &lower, const QColor &upper, double share)
{
    const auto mix = [share](int a, int b) {
        return qRound(a + (b - a) * share);
    };
    return {mix(lower.red(), upper.red()), mix(lower.green(), upper.green()), mix(lower.blue(), upper.blue())};
}

/// What 0x80 as the transparency of a colour leaves of it.
constexpr double halfShare = 127.0 / 255;

inline bool isNear(const QColor &a, const QColor &b, int tolerance = 1)
{
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

/// The smallest rectangle around all device pixels of a colour.
inline QRect extentOf(const QImage &image, const QRect &within, const QColor &colour)
{
    QRect extent;
    const QRect area = within & image.rect();
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) == colour)
                extent |= QRect(x, y, 1, 1);
        }
    }
    return extent;
}
