#pragma once

#include "RowResult.h"

#include <QRandomGenerator>
#include <QString>

/// What one process carries out of a row: so many rounds with moments of their own, which depend on the seed, the row
/// and the process's number only.
class Shard
{
public:
    struct Order
    {
        QString row;
        int number = 0;
        int rounds = 0;
        quint32 seed = 0;
        bool keepsAll = false; ///< the evidence of rounds without fault, too
        bool isShort = false;  ///< on a machine that does other things meanwhile: no time is judged
        QString folder;        ///< for the files of the station, empty
        QString evidence;      ///< for what a fault leaves
    };

    explicit Shard(const Order &order);

    const Order &order() const { return m_order; }
    QRandomGenerator &random() { return m_random; }
    /// From 0 to @p bound, which is excluded.
    int below(int bound) { return int(m_random.bounded(bound)); }
    QString path(const char *name) const { return m_order.folder + QLatin1Char('/') + QLatin1String(name); }

    /// One more round is done; @p log is what belongs to it, kept if a fault is found.
    void endRound(const QString &log);
    void keepLog(const QString &log) { m_logs += log; }
    void find(const QString &what);
    RowResult &result() { return m_result; }
    /// Keeps the station's files and the logs of its rounds if anything was found, or if all are kept.
    void keepEvidence();

private:
    const Order m_order;
    QRandomGenerator m_random;
    RowResult m_result;
    QStringList m_logs;
};
