#pragma once

#include "store/KeptRows.h"
#include "store/ReadingSpool.h"

#include <QObject>

#include <memory>
#include <set>

/// The spool of a recording that is open for writing: takes in what an earlier run has left, and decides which rows may
/// leave. While the table fits its first page all rows of the recording wait here, too: SQLite overwrites that page
/// before its rows have new ones, and a write that is cut off in between would lose them.
class RecordingSpool : public QObject
{
    Q_OBJECT

public:
    /// The rows of the queue join those that wait. @p connectionName is that of the open recording.
    RecordingSpool(const QString &databaseFile, const QString &connectionName);

    /// What was found at the opening.
    const KeptRows &kept() const { return m_kept; }
    /// No row that waits for a batch was stored under this row id or a lower one.
    qint64 storedUpTo() const { return m_storedUpTo; }

    /// From here on the row outlives the program, and within a second the computer's power.
    void add(const PendingRow &row);
    /// The same for several, which take the places of those held under the numbers @p before, and for @p held, which
    /// are in no queue: what is to be recorded for them is still open. Returns the numbers of those.
    std::vector<qint64> replaceHeld(const std::vector<qint64> &before, const std::vector<PendingRow> &added,
                                    const std::vector<PendingRow> &held);
    /// The rows up to that number are in the recording.
    void committed(qint64 lastNumber);
    /// The rows up to that number are lost to this run; the next one tries them again.
    void leave(qint64 lastNumber);

    void writeNow() { m_spool->writeNow(); }
    bool isWorking() const { return m_spool->isWorking(); }
    /// The last call; @p left are the rows that have to wait. False when they are not on the disk.
    bool finish(const std::vector<PendingRow> &left);

signals:
    /// See ReadingSpool.
    void failed(const QString &reason);
    void restored();
    void lost();

private:
    QSqlDatabase recording() const;
    void keepFirstRows();
    void takeOut(qint64 lastNumber);

    const QString m_connectionName;
    KeptRows m_kept;
    qint64 m_storedUpTo = 0;
    std::unique_ptr<ReadingSpool> m_spool;
    std::set<qint64> m_held;
    qint64 m_outUpTo = 0;    ///< rows with this number or a lower one were taken out, or are left there
    qint64 m_lastNumber = 0; ///< the highest that the spool has been given
    bool m_leavesRows = false;
    bool m_keepsAll = false; ///< the table fits its first page, or did before the latest batch
};
