#pragma once

#include <QDateTime>
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
    quint32 time = 0;  ///< Unix seconds of the poll
    qint64 number = 0; ///< grows with every row queued; names the row in the spool
};

/// A number for a row that comes after the one with number @p before, or after all that an earlier run has given.
inline qint64 numberAfter(qint64 before)
{
    constexpr qint64 microseconds = 1000;
    return qMax(before + 1, QDateTime::currentMSecsSinceEpoch() * microseconds);
}
