#pragma once

#include "support/RecordedRows.h"

#include <QList>
#include <QMultiMap>
#include <QSet>
#include <QStringList>

#include <functional>
#include <vector>

class ServedReadings;

/// Compares what loggers have served with what a recording holds: each reading once, under the key of its logger and
/// with the time of its poll, and nothing else.
class ReadingAudit
{
public:
    struct Verdict
    {
        int served = 0;
        int shown = 0; ///< those that must be there
        int recorded = 0;
        QStringList lost;
        QStringList doubled;
        QStringList foreign; ///< rows with values that their logger has not served
    };

    /// @p served must outlive this.
    void follow(const ServedReadings &served);
    /// What is served from now on belongs to the next round, as the verdict tells it.
    void beginRound();
    int round() const { return m_round; }
    /// Of what the logger has served in this round by now, the other readings need not be there, but may.
    void excuseUnless(int logger, const std::function<bool(int reading)> &mustBeThere);
    /// Whether one of these rows may be this reading of the logger.
    bool isAmong(int logger, int reading, const QList<RecordedRow> &rows) const;
    /// Readings that the logger had served when the round began.
    int servedBefore(int logger) const { return m_loggers.at(size_t(logger)).starts.last(); }

    Verdict judge(const QList<RecordedRow> &rows) const;

private:
    struct Logger
    {
        const ServedReadings *served;
        QList<int> starts; ///< the first reading of each round
        QSet<int> excused;
    };

    using Rows = QMultiMap<QString, qint64>; ///< times by values

    static void judge(const Logger &logger, const QList<RecordedRow> &rows, Verdict &verdict);
    static bool isOfTime(const Logger &logger, int reading, qint64 time);
    static bool takeRow(const Logger &logger, int reading, Rows &rows);
    /// Whether the row of an equal reading from the end of the round before stands for this one, too.
    static bool isOneWithAnEarlier(const Logger &logger, int reading);
    static QString describe(const Logger &logger, int reading);

    std::vector<Logger> m_loggers;
    int m_round = 0;
};
