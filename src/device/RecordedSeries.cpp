#include "device/RecordedSeries.h"

#include "store/InsertSerialData.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

/// The last second that a recording can hold is in 2106; what comes later must not stand in 1970.
quint32 recordedSecond(qint64 timeMs)
{
    return static_cast<quint32>(std::clamp<qint64>(timeMs / 1000, 0, std::numeric_limits<quint32>::max()));
}

} // namespace

std::vector<PendingRow> RecordedSeries::rowsOf(const Readings &readings) const
{
    std::vector<PendingRow> rows;
    for (const LoggerConversation::TimedReading &reading : readings) {
        if (reading.isForRecord)
            rows.push_back({m_serialNumber, reading.value1, reading.value2, recordedSecond(reading.timeMs)});
    }
    return rows;
}

void RecordedSeries::add(const Readings &readings, const Readings &held)
{
    const std::vector<PendingRow> rows = rowsOf(readings);
    const std::vector<PendingRow> heldRows = rowsOf(held);
    if (!rows.empty() || !heldRows.empty() || !m_held.empty())
        m_held = InsertSerialData::enqueue(rows, m_held, heldRows);
    for (const LoggerConversation::TimedReading &reading : readings) {
        if (reading.isForRecord)
            m_lastMs = reading.timeMs;
    }
}

void RecordedSeries::close()
{
    if (const auto last = std::exchange(m_lastMs, std::nullopt))
        InsertSerialData::enqueue({m_serialNumber, noValue, noValue, recordedSecond(*last + 1000)});
}
