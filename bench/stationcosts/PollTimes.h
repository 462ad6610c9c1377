#pragma once

#include <QtGlobal>

#include <vector>

/// When polls reach the loggers, against a grid of whole seconds from the first of them on. The grid is laid through
/// the earliest arrival relative to its second, so that none is early and each lateness is the time beyond the best.
class PollTimes
{
public:
    void add(qint64 monotonicNanoseconds);

    /// Seconds from the first to the last, both included.
    qint64 seconds() const { return m_first.empty() ? 0 : m_second + 1; }
    qint64 polls() const { return qint64(m_offsets.size()); }
    double latestMs() const;
    /// Lateness that @p share (0 to 1) of all polls do not exceed.
    double percentileMs(double share) const;
    /// By how much the earliest poll of the last quarter came later, relative to its second, than that of the first:
    /// what merely delays single polls does not show.
    double driftMs() const;

private:
    std::vector<double> sortedOffsets() const;

    qint64 m_start = 0;
    qint64 m_secondBegan = 0;
    qint64 m_second = 0;
    std::vector<double> m_offsets; ///< milliseconds from the grid through the very first poll
    std::vector<double> m_first;   ///< the same, of each second's first poll
};
