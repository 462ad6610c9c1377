#pragma once

#include "servedcheck/PollRounds.h"

#include <QString>

#include <map>

namespace servedcheck {

/// How the recording of one logger compares with what it served.
struct Tally
{
    int answers = 0;  ///< to polls of any kind
    int recorded = 0; ///< rows
    // The Unix seconds, ascending, of:
    std::vector<qint64> lost;  ///< record polls that were answered and have no row
    std::vector<qint64> extra; ///< rows beyond one for each record poll that was answered
    std::vector<qint64>
        undecided; ///< answers to a single poll that may have been of either kind: both were sent at once
};

/// Compares the polls that were answered with the rows of a recording made every second: each record poll that was
/// answered has one row, of its second, and nothing else has. On the wire both kinds of poll are the same; they are
/// told apart by the rounds of the station.
class ServedCheck
{
public:
    /// Of the logger with that key, in Unix milliseconds, ascending.
    void addPoll(const QString &key, qint64 polledMs);
    /// In Unix seconds.
    void addRow(const QString &key, qint64 second);

    /// @p reference is the key of a network logger that has answered every poll. The first five
    /// seconds of the recording do not count: the first poll follows the opening of the project, not the beat.
    std::map<QString, Tally> compare(const QString &reference) const;
    /// How many times the display was refreshed in the time that counts.
    int refreshes(const QString &reference) const;

private:
    std::vector<PollRound> countedRounds(const QString &reference) const;
    Tally compare(const std::vector<PollRound> &rounds, const QString &key) const;

    std::map<QString, std::vector<qint64>> m_polls;
    std::map<QString, std::map<qint64, int>> m_rows;
};

} // namespace servedcheck
