#pragma once

#include <QString>
#include <optional>

/// The rows that one logger adds to the recording: its readings, and the row without values that ends them.
class RecordedSeries
{
public:
    explicit RecordedSeries(const QString &serialNumber) : m_serialNumber(serialNumber) {}

    /// Queues a reading; times are milliseconds since the epoch.
    void add(qint64 timeMs, double value1, double value2);
    /// Queues a row without values one second after the last reading, so that a chart shows a gap; nothing when there
    /// is no reading since the last such row.
    void close();

private:
    const QString m_serialNumber;
    std::optional<qint64> m_lastMs; ///< while the series is open
};
