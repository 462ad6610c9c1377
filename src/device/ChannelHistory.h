#pragma once

#include "device/DeviceViews.h"

/// The newest samples of both channels, for the live chart; noValue where there is none yet.
class ChannelHistory
{
public:
    ChannelHistory();

    /// Appends a sample taken at the given data interval, or overwrites the newest if that is of the same time;
    /// @p time is a chartTime2() value.
    void add(double time, double value1, double value2, qint32 intervalMs);

    const History &times() const { return m_times; }
    const History &channel1() const { return m_channel1; }
    const History &channel2() const { return m_channel2; }
    /// The data interval in force at each sample, in milliseconds.
    const History &intervals() const { return m_intervals; }

private:
    History m_times;
    History m_channel1;
    History m_channel2;
    History m_intervals;
};
