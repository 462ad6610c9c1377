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

QString queryBetween(quint32 first, quint32 last, int newest)
{
    return QStringLiteral(
               "select serialno, channel1, channel2, pointDate from "
               "(select serialno, channel1, channel2, pointDate from ostrivane order by rowid desc limit %1) "
               "where pointDate between %2 and %3")
        .arg(newest)
        .arg(first)
        .arg(last);
}

} // namespace

QSqlError removeStoredRows(const QSqlDatabase &recording, std::vector<PendingRow> &rows, int count)
{
    const auto first = rows.begin();
    const auto last = first + count;
    const auto range =
        std::minmax_element(first, last, [](const PendingRow &a, const PendingRow &b) { return a.time < b.time; });
    QSqlQuery query(recording);
    query.setForwardOnly(true);
    if (!query.exec(queryBetween(range.first->time, range.second->time, std::max(newestRowsSearched, count))))
        return query.lastError();

    QSet<QString> wanted;
    std::for_each(first, last, [&wanted](const PendingRow &row) { wanted += insertTerm(row); });
    QSet<QString> stored;
    while (stored.size() < wanted.size() && query.next()) {
        const QString term = insertTerm({query.value(0).toString(), channelValue(query.value(1)),
                                         channelValue(query.value(2)), query.value(3).toUInt()});
        if (wanted.contains(term))
            stored += term;
    }
    rows.erase(std::remove_if(first, last, [&](const PendingRow &row) { return stored.contains(insertTerm(row)); }),
               last);
    return {};
}
