#include "servedcheck/PollRounds.h"

#include <algorithm>
#include <array>

namespace servedcheck {

namespace {

constexpr qint64 beatMs = 1000;
constexpr qint64 binMs = 20;
/// So many rounds of a single poll, each as far off the beat as the one before, are the beat: display polls come
/// seldom.
constexpr int roundsOffBeat = 3;

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

/// Where the beat goes on to after a round, as both clocks may drift apart in the course of hours; it may also have
/// been lost to display polls while record polls were late.
class Beat
{
public:
    /// The time from which the next round is expected a beat later.
    qint64 after(const PollRound &round, qint64 expectedMs)
    {
        if (qAbs(round.pollMs - expectedMs) <= roundLeadMs) {
            m_offBeat = 0;
            return round.pollMs;
        }
        const bool isNext = round.refreshesMs.empty() && qAbs(round.pollMs - m_lastMs - beatMs) <= binMs;
        m_offBeat = round.refreshesMs.empty() ? (isNext ? m_offBeat : 0) + 1 : 0;
        m_lastMs = round.pollMs;
        return m_offBeat >= roundsOffBeat ? round.pollMs : expectedMs;
    }

private:
    qint64 m_lastMs = 0;
    int m_offBeat = 0;
};

} // namespace

std::vector<PollRound> pollRounds(const std::vector<qint64> &polledMs)
{
    const qint64 phaseMs = phaseOf(polledMs);
    auto next =
        std::find_if(polledMs.begin(), polledMs.end(), [phaseMs](qint64 polled) { return isOnBeat(polled, phaseMs); });
    std::vector<PollRound> rounds;
    Beat beat;
    for (qint64 expectedMs = next == polledMs.end() ? 0 : *next; next != polledMs.end(); expectedMs += beatMs) {
        std::vector<qint64> polls;
        for (; next != polledMs.end() && *next < expectedMs + beatMs - roundLeadMs; ++next)
            polls.push_back(*next);
        if (polls.empty())
            continue;
        rounds.push_back(roundOf(polls, expectedMs));
        expectedMs = beat.after(rounds.back(), expectedMs);
    }
    return rounds;
}

} // namespace servedcheck
