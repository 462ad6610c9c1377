#pragma once

#include <QtGlobal>

#include <array>

/// Any number of durations in little memory: how many, the longest, and percentiles to within a hundredth.
class Durations
{
public:
    void add(qint64 nanoseconds);
    qint64 count() const { return m_count; }
    double maxMs() const;
    /// The duration that @p share (0 to 1) of all do not exceed; 0 without any.
    double percentileMs(double share) const;

private:
    // Each bound is a hundredth above the one before, from a microsecond to more than ten seconds.
    static constexpr int buckets = 1700;

    std::array<quint32, buckets> m_counts{};
    qint64 m_count = 0;
    qint64 m_max = 0;
};
