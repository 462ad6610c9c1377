#include "ResultTable.h"

namespace {

QString line(const QStringList &cells)
{
    QString text = cells.first().leftJustified(44);
    for (const QString &cell : cells.mid(1))
        text += QLatin1Char(' ') + cell.rightJustified(9);
    return text + QLatin1Char('\n');
}

QString timeText(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

QString resultTable(const QList<const TortureRow *> &rows, const QMap<QString, ShardPool::Sum> &sums, bool *isClean)
{
    *isClean = true;
    QString table =
        line({QStringLiteral("row"), QStringLiteral("rounds"), QStringLiteral("served"), QStringLiteral("shown"),
              QStringLiteral("recorded"), QStringLiteral("lost"), QStringLiteral("double"), QStringLiteral("integrity"),
              QStringLiteral("others"), QStringLiteral("time")});
    QStringList remarks;
    for (const TortureRow *row : rows) {
        const QString name = QLatin1String(row->name);
        if (!sums.contains(name))
            continue;
        const ShardPool::Sum &sum = sums[name];
        const RowResult &result = sum.result;
        const int named = result.lost + result.doubled + result.unsound;
        table += line({name + QStringLiteral(": ") + QLatin1String(row->title), QString::number(result.rounds),
                       QString::number(result.served), QString::number(result.shown), QString::number(result.recorded),
                       QString::number(result.lost), QString::number(result.doubled),
                       result.unsound == 0 ? QStringLiteral("ok") : QString::number(result.unsound),
                       QString::number(qMax(0, int(result.findings.size()) - named)), timeText(sum.milliseconds)});
        *isClean = *isClean && result.isClean() && result.rounds >= sum.ordered;
        for (const QString &remark : result.remarks)
            remarks += name + QStringLiteral(": ") + remark;
    }
    table += remarks.join(QLatin1Char('\n')) + (remarks.isEmpty() ? QString() : QStringLiteral("\n"));
    return table + (*isClean ? QStringLiteral("Every row is clean.\n") : QStringLiteral("NOT CLEAN\n"));
}
