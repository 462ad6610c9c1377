#include "device/RecordedSeries.h"

#include "store/InsertSerialData.h"

#include <utility>

std::vector<PendingRow> RecordedSeries::rowsOf(const Readings &readings) const
{
    std::vector<PendingRow> rows;
    for (const LoggerConversation::TimedReading &reading : readings) {
        if (reading.isForRecord)
            rows.push_back({m_serialNumber, reading.value1, reading.value2, quint32(reading.timeMs / 1000)});
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
        InsertSerialData::enqueue({m_serialNumber, noValue, noValue, static_cast<quint32>((*last + 1000) / 1000)});
}
