#pragma once

#include "device/LoggerConversation.h"
#include "store/PendingRow.h"

#include <QString>
#include <optional>
#include <vector>

/// The rows that one logger adds to the recording: its readings, and the row without values that ends them.
class RecordedSeries
{
public:
    explicit RecordedSeries(const QString &serialNumber) : m_serialNumber(serialNumber) {}

    using Readings = std::vector<LoggerConversation::TimedReading>;
    /// Queues those of the readings that are for the record. @p held, in place of those of the last call, are shown
    /// while it is open which polls they answer: ended meanwhile, the program will record them as they stand here.
    void add(const Readings &readings, const Readings &held);
    /// Queues a row without values one second after the last reading, so that a chart shows a gap; nothing when there
    /// is no reading since the last such row.
    void close();

private:
    std::vector<PendingRow> rowsOf(const Readings &readings) const;

    const QString m_serialNumber;
    std::vector<qint64> m_held;     ///< the numbers of their rows
    std::optional<qint64> m_lastMs; ///< while the series is open
};
