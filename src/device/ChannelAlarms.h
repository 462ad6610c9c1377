#pragma once

#include "device/AlarmRange.h"

/// Which of a logger's channels are out of their range.
class ChannelAlarms
{
public:
    /// A value that is noValue is never out of range.
    void judge(const AlarmRange &range, double value1, double value2);
    void clear();

    bool isOnChannel1() const { return m_channel1; }
    bool isOnChannel2() const { return m_channel2; }

private:
    bool m_channel1 = false;
    bool m_channel2 = false;
};
