#include "stationcosts/CostTable.h"

#include <QStringList>

#include <algorithm>
#include <numeric>

namespace {

const QStringList head{QStringLiteral("figure"), QStringLiteral("goal"), QStringLiteral("measured"),
                       QStringLiteral("verdict"), QStringLiteral("beside")};

QString verdictText(CostTable::Verdict verdict)
{
    switch (verdict) {
    case CostTable::Verdict::Met:
        return QStringLiteral("met");
    case CostTable::Verdict::Missed:
        return QStringLiteral("MISSED");
    case CostTable::Verdict::None:
        break;
    }
    return QStringLiteral("-");
}

QString line(const QStringList &cells, const QList<int> &widths)
{
    QStringList padded;
    for (int i = 0; i < cells.size(); ++i)
        padded += cells.at(i).leftJustified(widths.at(i));
    return QStringLiteral("| ") + padded.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
}

} // namespace

void CostTable::add(const QString &figure, const QString &goal, const QString &measured, Verdict verdict,
                    const QString &reference)
{
    m_rows.append({figure, goal, measured, verdictText(verdict), reference});
}

void CostTable::addRemark(const QString &figure, const QString &measured, const QString &reference)
{
    add(figure, QStringLiteral("-"), measured, Verdict::None, reference);
}

QString CostTable::toText() const
{
    QList<int> widths;
    QStringList rule;
    for (int column = 0; column < head.size(); ++column) {
        const int width = std::accumulate(
            m_rows.cbegin(), m_rows.cend(), int(head.at(column).size()),
            [column](int widest, const QStringList &row) { return std::max(widest, int(row.at(column).size())); });
        widths += width;
        rule += QString(width, QLatin1Char('-'));
    }
    QString text = line(head, widths) + line(rule, widths);
    for (const QStringList &row : m_rows)
        text += line(row, widths);
    return text;
}
