#pragma once

#include <QString>

/// The rows that one logger adds to the recording: its readings, and the row without values that ends them.
class RecordedSeries
{
public:
    /// @p startMs stands in for the time of the last reading while there is none.
    RecordedSeries(const QString &serialNumber, qint64 startMs);

    /// Queues a reading; times are milliseconds since the epoch.
    void add(qint64 timeMs, double value1, double value2);
    /// Queues a row without values one second after the last reading, so that a chart shows a gap.
    void close();

private:
    const QString m_serialNumber;
    qint64 m_lastMs;
};
