#include "stationcosts/Durations.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double step = 1.01;
constexpr double nsPerMs = 1e6;
constexpr double nsPerUs = 1e3;

} // namespace

void Durations::add(qint64 nanoseconds)
{
    const double microseconds = std::max(1.0, double(nanoseconds) / nsPerUs);
    const int bucket = std::min(buckets - 1, int(std::log(microseconds) / std::log(step)));
    ++m_counts.at(size_t(bucket));
    ++m_count;
    m_max = std::max(m_max, nanoseconds);
}

double Durations::maxMs() const
{
    return double(m_max) / nsPerMs;
}

double Durations::percentileMs(double share) const
{
    const auto wanted = qint64(std::ceil(share * double(m_count)));
    qint64 seen = 0;
    for (int bucket = 0; bucket < buckets && m_count > 0; ++bucket) {
        seen += m_counts.at(size_t(bucket));
        if (seen >= wanted)
            return std::min(maxMs(), std::pow(step, bucket + 1) * nsPerUs / nsPerMs);
    }
    return maxMs();
}
