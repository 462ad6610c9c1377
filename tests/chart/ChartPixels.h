#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <cstdlib>

// How tests look at the picture of a chart.

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
