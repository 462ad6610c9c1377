#include "device/ChannelAlarms.h"

#include "store/PendingRow.h"

#include <cmath>
#include <limits>

namespace {

/// Limits are kept as floats: a value that rounds to its limit is still within range.
bool isOutside(double value, float min, float max)
{
    if (isNoValue(value) || min == max)
        return false;
    if (std::abs(value) > static_cast<double>(std::numeric_limits<float>::max()))
        return true;
    const float rounded = static_cast<float>(value);
    return min > rounded || rounded > max;
}

} // namespace

void ChannelAlarms::judge(const AlarmRange &range, double value1, double value2)
{
    m_channel1 = isOutside(value1, range.min1, range.max1);
    m_channel2 = isOutside(value2, range.min2, range.max2);
}

void ChannelAlarms::clear()
{
    m_channel1 = false;
    m_channel2 = false;
}
