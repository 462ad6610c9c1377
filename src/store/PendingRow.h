#pragma once

#include <QString>

/// Stands for a missing reading in histories, alarm inputs and recorded rows.
constexpr double noValue = 1.7e308;

inline bool isNoValue(double value)
{
    return value == noValue;
}

/// One reading of one device on its way into the recording.
struct PendingRow
{
    QString serial;
    double channel1 = noValue;
    double channel2 = noValue;
    quint32 time = 0; ///< Unix seconds of the poll
};
