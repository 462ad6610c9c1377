#pragma once

#include "device/DeviceViews.h"

/// The newest samples of both channels, for the live chart; noValue where there is none yet.
class ChannelHistory
{
public:
    ChannelHistory();

    /// Appends a sample, or overwrites the newest if that is of the same time; @p time is a chartTime2() value.
    void add(double time, double value1, double value2);

    const History &times() const { return m_times; }
    const History &channel1() const { return m_channel1; }
    const History &channel2() const { return m_channel2; }

private:
    History m_times;
    History m_channel1;
    History m_channel2;
};
