#include "servedcheck/ServedCheck.h"

#include <algorithm>
#include <limits>

namespace servedcheck {

namespace {

constexpr qint64 settleSeconds = 5;
/// The polls of a round go out to all loggers at once; they arrive within this time.
constexpr qint64 togetherMs = 60;

enum class Verdict { NotRecorded, Recorded, Undecided };

/// What the recording must hold of a logger for one second.
struct Due
{
    int rows = 0;
    int undecided = 0; ///< may be rows as well
};

bool areTogether(qint64 a, qint64 b)
{
    return qAbs(a - b) <= togetherMs;
}

/// Whether one of the polls of a round that were @p answered must have been the record poll.
Verdict judge(const PollRound &round, const std::vector<qint64> &answered)
{
    if (answered.empty())
        return Verdict::NotRecorded;
    if (answered.size() > round.refreshesMs.size())
        return Verdict::Recorded;
    const bool mayBeRecord = std::any_of(answered.begin(), answered.end(),
                                         [&round](qint64 polled) { return areTogether(polled, round.pollMs); });
    const bool mayBeRefreshes = std::all_of(answered.begin(), answered.end(), [&round](qint64 polled) {
        return std::any_of(round.refreshesMs.begin(), round.refreshesMs.end(),
                           [polled](qint64 refresh) { return areTogether(polled, refresh); });
    });
    if (mayBeRecord == mayBeRefreshes)
        return Verdict::Undecided;
    return mayBeRecord ? Verdict::Recorded : Verdict::NotRecorded;
}

/// Whether the first of the polls that were @p answered in a round belongs to the round before. One that was asked
/// while the connection was being made is sent late, and may come in with the next; its row has the time at which it
/// was asked.
bool beginsWithALateOne(const PollRound &round, const std::vector<qint64> &answered)
{
    return answered.size() > round.refreshesMs.size() + 1 && answered.front() <= round.pollMs + togetherMs;
}

/// The polls that belong to each of the rounds.
std::vector<std::vector<qint64>> byRound(const std::vector<PollRound> &rounds, const std::vector<qint64> &polledMs)
{
    std::vector<std::vector<qint64>> polls(rounds.size());
    const auto begins = [](qint64 polled, const PollRound &round) {
        return polled < round.pollMs - roundLeadMs;
    };
    for (const qint64 polled : polledMs) {
        const auto next = std::upper_bound(rounds.begin(), rounds.end(), polled, begins);
        if (next != rounds.begin())
            polls[size_t(std::distance(rounds.begin(), next)) - 1].push_back(polled);
    }
    return polls;
}

/// The value of @p key, or an empty one.
template <typename Map>
typename Map::mapped_type valueOf(const Map &map, const typename Map::key_type &key)
{
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type() : found->second;
}

void note(std::vector<qint64> &seconds, qint64 second, int times)
{
    seconds.insert(seconds.end(), size_t(qMax(0, times)), second);
}

Tally compareRows(const std::map<qint64, Due> &dues, const std::map<qint64, int> &rows, qint64 firstSecond)
{
    Tally tally;
    for (auto row = rows.lower_bound(firstSecond); row != rows.end(); ++row) {
        const Due due = valueOf(dues, row->first);
        tally.recorded += row->second;
        note(tally.extra, row->first, row->second - due.rows - due.undecided);
    }
    for (const auto &[second, due] : dues) {
        note(tally.lost, second, due.rows - valueOf(rows, second));
        note(tally.undecided, second, due.undecided);
    }
    return tally;
}

} // namespace

void ServedCheck::addPoll(const QString &key, qint64 polledMs)
{
    m_polls[key].push_back(polledMs);
}

void ServedCheck::addRow(const QString &key, qint64 second)
{
    ++m_rows[key][second];
}

std::vector<PollRound> ServedCheck::countedRounds(const QString &reference) const
{
    qint64 first = std::numeric_limits<qint64>::max();
    for (const auto &[key, rows] : m_rows)
        first = qMin(first, rows.begin()->first);
    std::vector<PollRound> rounds = pollRounds(valueOf(m_polls, reference));
    const auto counts = std::find_if(rounds.begin(), rounds.end(), [first](const PollRound &round) {
        return round.second() - settleSeconds >= first;
    });
    rounds.erase(rounds.begin(), counts);
    return rounds;
}

int ServedCheck::refreshes(const QString &reference) const
{
    size_t count = 0;
    for (const PollRound &round : countedRounds(reference))
        count += round.refreshesMs.size();
    return int(count);
}

std::map<QString, Tally> ServedCheck::compare(const QString &reference) const
{
    const std::vector<PollRound> rounds = countedRounds(reference);
    std::map<QString, Tally> tallies;
    for (const auto &[key, polls] : m_polls)
        tallies[key] = compare(rounds, key);
    for (const auto &[key, rows] : m_rows)
        tallies[key] = compare(rounds, key);
    return tallies;
}

Tally ServedCheck::compare(const std::vector<PollRound> &rounds, const QString &key) const
{
    if (rounds.empty())
        return {};
    const std::vector<std::vector<qint64>> answered = byRound(rounds, valueOf(m_polls, key));
    const std::map<qint64, int> rows = valueOf(m_rows, key);
    std::map<qint64, Due> dues;
    size_t answers = 0;
    for (size_t i = 0; i < rounds.size(); ++i) {
        const Verdict verdict = judge(rounds[i], answered[i]);
        Due &due = dues[rounds[i].second()];
        due.rows += verdict == Verdict::Recorded ? 1 : 0;
        due.undecided += verdict == Verdict::Undecided ? 1 : 0;
        answers += answered[i].size();
        // An answer too many may as well be one that was asked for again, so that its row is no duty.
        const bool hasNext = i + 1 < rounds.size();
        if (answered[i].empty() && hasNext && beginsWithALateOne(rounds[i + 1], answered[i + 1]))
            due.rows = qMin(1, valueOf(rows, rounds[i].second()));
    }
    Tally tally = compareRows(dues, rows, rounds.front().second());
    tally.answers = int(answers);
    return tally;
}

} // namespace servedcheck
