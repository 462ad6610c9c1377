#include "stationcosts/PollTimes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qint64 nsPerSecond = 1000000000;
constexpr double nsPerMs = 1e6;

} // namespace

void PollTimes::add(qint64 monotonicNanoseconds)
{
    if (m_first.empty())
        m_start = m_secondBegan = monotonicNanoseconds;
    // Against the second before, so that a drift does not make a poll count for another second.
    const auto passed = qint64(std::round(double(monotonicNanoseconds - m_secondBegan) / nsPerSecond));
    m_second += passed;
    const double offset = double(monotonicNanoseconds - m_start - m_second * nsPerSecond) / nsPerMs;
    m_offsets.push_back(offset);
    if (passed > 0 || m_first.empty()) {
        m_secondBegan = monotonicNanoseconds;
        m_first.push_back(offset);
    }
}

double PollTimes::latestMs() const
{
    return percentileMs(1);
}

double PollTimes::percentileMs(double share) const
{
    const std::vector<double> offsets = sortedOffsets();
    if (offsets.empty())
        return 0;
    const auto index = size_t(std::ceil(share * double(offsets.size())));
    return offsets.at(std::max<size_t>(index, 1) - 1) - offsets.front();
}

double PollTimes::driftMs() const
{
    const auto quarter = std::ptrdiff_t(m_first.size() / 4);
    if (quarter == 0)
        return 0;
    return *std::min_element(m_first.end() - quarter, m_first.end()) -
           *std::min_element(m_first.begin(), m_first.begin() + quarter);
}

std::vector<double> PollTimes::sortedOffsets() const
{
    std::vector<double> offsets = m_offsets;
    std::sort(offsets.begin(), offsets.end());
    return offsets;
}
