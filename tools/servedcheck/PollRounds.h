#pragma once

#include <QtGlobal>

#include <vector>

namespace servedcheck {

/// What a station that records every second asked its loggers from one of its record polls to the next.
struct PollRound
{
    qint64 pollMs = 0;               ///< of the record poll, in Unix milliseconds
    std::vector<qint64> refreshesMs; ///< of the display polls after it

    qint64 second() const { return pollMs / 1000; }
};

/// A poll that is sent for this round may come so much before the one that the round was found by.
constexpr qint64 roundLeadMs = 100;

/// The rounds of a station, found by the polls (@p polledMs, ascending) of one logger that has answered them all:
/// record polls follow a beat of one second, display polls do not.
std::vector<PollRound> pollRounds(const std::vector<qint64> &polledMs);

} // namespace servedcheck
