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

void RecordedSeries::add(qint64 timeMs, double value1, double value2)
{
    InsertSerialData::enqueue({m_serialNumber, value1, value2, recordedSecond(timeMs)});
    m_lastMs = timeMs;
}

void RecordedSeries::close()
{
    if (const auto last = std::exchange(m_lastMs, std::nullopt))
        InsertSerialData::enqueue({m_serialNumber, noValue, noValue, recordedSecond(*last + 1000)});
}
