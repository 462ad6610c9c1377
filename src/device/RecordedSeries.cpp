#include "device/RecordedSeries.h"

#include "store/InsertSerialData.h"

#include <utility>

void RecordedSeries::add(qint64 timeMs, double value1, double value2)
{
    InsertSerialData::enqueue({m_serialNumber, value1, value2, static_cast<quint32>(timeMs / 1000)});
    m_lastMs = timeMs;
}

void RecordedSeries::close()
{
    if (const auto last = std::exchange(m_lastMs, std::nullopt))
        InsertSerialData::enqueue({m_serialNumber, noValue, noValue, static_cast<quint32>((*last + 1000) / 1000)});
}
