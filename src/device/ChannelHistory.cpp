#include "device/ChannelHistory.h"

#include "store/PendingRow.h"

#include <algorithm>

namespace {

void shiftIn(History &history, double newest)
{
    std::copy(history.begin() + 1, history.end(), history.begin());
    history.back() = newest;
}

} // namespace

ChannelHistory::ChannelHistory()
{
    m_times.fill(noValue);
    m_channel1.fill(noValue);
    m_channel2.fill(noValue);
    m_intervals.fill(noValue);
}

void ChannelHistory::add(double time, double value1, double value2, qint32 intervalMs)
{
    if (m_times.back() == time) {
        m_channel1.back() = value1;
        m_channel2.back() = value2;
        return;
    }
    shiftIn(m_times, time);
    shiftIn(m_channel1, value1);
    shiftIn(m_channel2, value2);
    shiftIn(m_intervals, intervalMs);
}
