#include "store/StoredRows.h"

#include "store/InsertStatement.h"

#include <QSet>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>

namespace {

double channelValue(const QVariant &column)
{
    return column.isNull() ? noValue : column.toDouble();
}

PendingRow rowOf(const QSqlQuery &query)
{
    return {query.value(0).toString(), channelValue(query.value(1)), channelValue(query.value(2)),
            query.value(3).toUInt()};
}

QString rowsAfter(qint64 after)
{
    return QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane where rowid > %1").arg(after);
}

QString newestOf(const QString &rows, int count)
{
    return QStringLiteral("select * from (%1 order by rowid desc limit %2) where true").arg(rows).arg(count);
}

QString between(const QString &rows, quint32 first, quint32 last)
{
    return QStringLiteral("%1 and pointDate between %2 and %3").arg(rows).arg(first).arg(last);
}

/// One behind the last row that must have been in a batch: behind it, an equal row is another reading.
std::vector<PendingRow>::iterator endOfBatches(std::vector<PendingRow>::iterator first,
                                               std::vector<PendingRow>::iterator last, QSet<QString> stored)
{
    auto end = first;
    for (auto row = first; row != last; ++row) {
        if (stored.remove(insertTerm(*row)))
            end = row + 1;
    }
    return end;
}

} // namespace

std::optional<qint64> newestRowId(const QSqlDatabase &recording)
{
    QSqlQuery query(recording);
    if (!query.exec(QStringLiteral("select max(rowid) from ostrivane")) || !query.next())
        return std::nullopt;
    return query.value(0).toLongLong();
}

bool fitsFirstPage(const QSqlDatabase &recording)
{
    const auto number = [&recording](const QString &statement) {
        QSqlQuery query(recording);
        return query.exec(statement) && query.next() ? query.value(0).toLongLong() : -1;
    };
    const qint64 pages = number(QStringLiteral("PRAGMA page_count")) - number(QStringLiteral("PRAGMA freelist_count"));
    const qint64 trees = 1 + number(QStringLiteral("select count(*) from sqlite_master where rootpage > 0"));
    return pages > 0 && pages <= trees;
}

std::vector<PendingRow> allRows(const QSqlDatabase &recording)
{
    std::vector<PendingRow> rows;
    QSqlQuery query(recording);
    query.exec(QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane order by id"));
    while (query.next())
        rows.push_back(rowOf(query));
    return rows;
}

QSqlError removeStoredRows(const QSqlDatabase &recording, std::vector<PendingRow> &rows, int count, qint64 after,
                           PerhapsStored kind)
{
    const auto first = rows.begin();
    auto last = first + count;
    const auto range =
        std::minmax_element(first, last, [](const PendingRow &a, const PendingRow &b) { return a.time < b.time; });
    QSqlQuery query(recording);
    query.setForwardOnly(true);
    // What batches have left may have been stored long ago; one batch was stored last.
    const QString searched = kind == PerhapsStored::InEarlyBatches
                                 ? rowsAfter(after)
                                 : newestOf(rowsAfter(after), std::max(newestRowsSearched, count));
    if (!query.exec(between(searched, range.first->time, range.second->time)))
        return query.lastError();

    QSet<QString> wanted;
    std::for_each(first, last, [&wanted](const PendingRow &row) { wanted += insertTerm(row); });
    QSet<QString> stored;
    while (stored.size() < wanted.size() && query.next()) {
        const QString term = insertTerm(rowOf(query));
        if (wanted.contains(term))
            stored += term;
    }
    if (kind == PerhapsStored::InEarlyBatches)
        last = endOfBatches(first, last, stored);
    rows.erase(std::remove_if(first, last, [&](const PendingRow &row) { return stored.contains(insertTerm(row)); }),
               last);
    return {};
}
