#include "store/RecordingSpool.h"

#include "store/MemoryFolders.h"
#include "store/RedoLog.h"
#include "store/RowQueue.h"
#include "store/StoredRows.h"

#include <QSqlDatabase>

#include <algorithm>

RecordingSpool::RecordingSpool(const QString &databaseFile, const QString &connectionName)
    : m_connectionName(connectionName)
{
    std::unique_ptr<RedoLog> log = RedoLog::open(databaseFile, memoryFolders());
    m_kept = takeInKeptRows(recording(), databaseFile, log ? log->content() : SpoolFile::Change());
    m_storedUpTo = m_kept.storedUpTo;
    m_spool = std::make_unique<ReadingSpool>(SpoolFile::pathOf(databaseFile), m_storedUpTo, std::move(log),
                                             m_kept.notInSpool);
    connect(m_spool.get(), &ReadingSpool::failed, this, &RecordingSpool::failed);
    connect(m_spool.get(), &ReadingSpool::restored, this, &RecordingSpool::restored);
    connect(m_spool.get(), &ReadingSpool::lost, this, &RecordingSpool::lost);

    m_lastNumber = m_kept.highestNumber;
    RowQueue &queue = RowQueue::instance();
    queue.skipNumbersUpTo(m_lastNumber);
    // What it holds is for a run that can read it.
    if (m_kept.isUnreadable)
        leave(queue.nextNumber());
    m_keepsAll = fitsFirstPage(recording());
    if (m_keepsAll)
        keepFirstRows();
    for (PendingRow &row : queue.rows()) {
        row.number = queue.nextNumber();
        add(row);
    }
    queue.prepend(m_kept.rows);
    if (queue.rows().empty() && m_kept.highestNumber > 0)
        committed(m_kept.highestNumber);
}

QSqlDatabase RecordingSpool::recording() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

/// They come before those that wait, which therefore get new numbers. What was there before leaves in the same step.
void RecordingSpool::keepFirstRows()
{
    SpoolFile::Change change;
    change.rows = allRows(recording());
    if (change.rows.empty())
        return;
    if (m_kept.highestNumber > m_outUpTo)
        change.gone.push_back({1, m_kept.highestNumber});
    change.storedUpTo = 0;
    for (PendingRow &row : change.rows)
        row.number = RowQueue::instance().nextNumber();
    for (PendingRow &row : m_kept.rows) {
        row.number = RowQueue::instance().nextNumber();
        change.rows.push_back(row);
    }
    m_lastNumber = change.rows.back().number;
    m_spool->apply(change);
}

void RecordingSpool::add(const PendingRow &row)
{
    replaceHeld({}, {row}, {});
}

std::vector<qint64> RecordingSpool::replaceHeld(const std::vector<qint64> &before, const std::vector<PendingRow> &added,
                                                const std::vector<PendingRow> &held)
{
    SpoolFile::Change change;
    change.rows = added;
    for (const qint64 number : before) {
        if (m_held.erase(number) > 0)
            change.gone.push_back({number, number});
    }
    std::vector<qint64> numbers;
    for (PendingRow row : held) {
        row.number = RowQueue::instance().nextNumber();
        m_held.insert(row.number);
        numbers.push_back(row.number);
        change.rows.push_back(row);
    }
    if (!change.rows.empty())
        m_lastNumber = std::max(m_lastNumber, change.rows.back().number);
    m_spool->apply(change);
    return numbers;
}

void RecordingSpool::committed(qint64 lastNumber)
{
    // Rows that were left there may partly be stored: what was stored since must be looked at for them.
    if (!m_leavesRows)
        m_storedUpTo = newestRowId(recording()).value_or(m_storedUpTo);
    // The batch that has needed a second page has to be followed by another before the first rows may leave.
    if (m_keepsAll)
        m_keepsAll = fitsFirstPage(recording());
    else
        takeOut(lastNumber);
}

void RecordingSpool::leave(qint64 lastNumber)
{
    m_leavesRows = true;
    m_outUpTo = std::max(m_outUpTo, lastNumber);
}

void RecordingSpool::takeOut(qint64 lastNumber)
{
    if (lastNumber <= m_outUpTo)
        return;
    SpoolFile::Change change;
    qint64 first = m_outUpTo + 1;
    for (auto held = m_held.lower_bound(first); held != m_held.end() && *held <= lastNumber; ++held) {
        if (first < *held)
            change.gone.push_back({first, *held - 1});
        first = *held + 1;
    }
    if (first <= lastNumber)
        change.gone.push_back({first, lastNumber});
    change.storedUpTo = m_storedUpTo;
    m_spool->apply(change);
    m_outUpTo = lastNumber;
}

bool RecordingSpool::finish(const std::vector<PendingRow> &left)
{
    takeOut(left.empty() ? m_lastNumber : left.front().number - 1);
    return m_spool->finish(left);
}
