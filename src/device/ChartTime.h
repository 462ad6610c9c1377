#pragma once

#include <QtGlobal>

/// A moment on the time scale of the chart history: Unix seconds, shown as local time.
constexpr double chartTime2(qint64 unixSeconds)
{
    return static_cast<double>(unixSeconds);
}
