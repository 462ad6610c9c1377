#include "servedcheck/PollRounds.h"

#include <algorithm>
#include <array>

namespace servedcheck {

namespace {

constexpr qint64 beatMs = 1000;
constexpr qint64 binMs = 20;

/// Where in the second most polls come: record polls are by far the most frequent.
qint64 phaseOf(const std::vector<qint64> &polledMs)
{
    std::array<int, beatMs / binMs> bins{};
    for (const qint64 polled : polledMs)
        ++bins[size_t(polled % beatMs / binMs)];
    return std::distance(bins.begin(), std::max_element(bins.begin(), bins.end())) * binMs + binMs / 2;
}

bool isOnBeat(qint64 polledMs, qint64 phaseMs)
{
    const qint64 distance = (polledMs - phaseMs + beatMs) % beatMs;
    return std::min(distance, beatMs - distance) <= roundLeadMs / 2;
}

/// The polls of a round; the record poll is the one nearest to the beat, or the first of all when it was late.
PollRound roundOf(std::vector<qint64> polledMs, qint64 expectedMs)
{
    auto record = std::min_element(polledMs.begin(), polledMs.end(), [expectedMs](qint64 a, qint64 b) {
        return qAbs(a - expectedMs) < qAbs(b - expectedMs);
    });
    if (qAbs(*record - expectedMs) > roundLeadMs)
        record = polledMs.begin();
    const qint64 pollMs = *record;
    polledMs.erase(record);
    return {pollMs, polledMs};
}

} // namespace

std::vector<PollRound> pollRounds(const std::vector<qint64> &polledMs)
{
    const qint64 phaseMs = phaseOf(polledMs);
    auto next =
        std::find_if(polledMs.begin(), polledMs.end(), [phaseMs](qint64 polled) { return isOnBeat(polled, phaseMs); });
    std::vector<PollRound> rounds;
    for (qint64 expectedMs = next == polledMs.end() ? 0 : *next; next != polledMs.end(); expectedMs += beatMs) {
        std::vector<qint64> polls;
        for (; next != polledMs.end() && *next < expectedMs + beatMs - roundLeadMs; ++next)
            polls.push_back(*next);
        if (polls.empty())
            continue;
        rounds.push_back(roundOf(polls, expectedMs));
        // Both clocks may drift apart in the course of hours.
        if (qAbs(rounds.back().pollMs - expectedMs) <= roundLeadMs)
            expectedMs = rounds.back().pollMs;
    }
    return rounds;
}

} // namespace servedcheck
