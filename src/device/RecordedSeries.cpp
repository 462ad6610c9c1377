#include "device/RecordedSeries.h"

#include "store/InsertSerialData.h"

RecordedSeries::RecordedSeries(const QString &serialNumber, qint64 startMs)
    : m_serialNumber(serialNumber), m_lastMs(startMs)
{
}

void RecordedSeries::add(qint64 timeMs, double value1, double value2)
{
    InsertSerialData::enqueue({m_serialNumber, value1, value2, static_cast<quint32>(timeMs / 1000)});
    m_lastMs = timeMs;
}

void RecordedSeries::close()
{
    InsertSerialData::enqueue({m_serialNumber, noValue, noValue, static_cast<quint32>((m_lastMs + 1000) / 1000)});
}
