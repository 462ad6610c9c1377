#include "store/InsertStatement.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace {

// A zero byte would end the statement and half a surrogate pair would swallow the closing quote.
bool needsEscape(QChar c)
{
    return c == QLatin1Char('\'') || c.isNull() || c.isSurrogate();
}

QString literal(const QString &text)
{
    if (std::none_of(text.cbegin(), text.cend(), needsEscape))
        return QLatin1Char('\'') + text + QLatin1Char('\'');
    const QByteArray wellFormed = text.toUtf8();
    QString escaped = QString::fromUtf8(wellFormed.constData(), wellFormed.size());
    escaped.replace(QLatin1Char('\''), QLatin1String("''"));
    escaped.replace(QChar(QChar::Null), QLatin1String("'||char(0)||'"));
    return QLatin1Char('\'') + escaped + QLatin1Char('\'');
}

QString literal(double value)
{
    if (isNoValue(value) || !std::isfinite(value))
        return QStringLiteral("NULL");
    return QString::number(value, 'g', 6);
}

} // namespace

QString insertTerm(const PendingRow &row)
{
    const QLatin1String separator(", ");
    return QLatin1String("select ") + literal(row.serial) + separator + literal(row.channel1) + separator +
           literal(row.channel2) + separator + QString::number(row.time);
}

QStringList insertStatements(const std::vector<PendingRow> &rows)
{
    const bool severalStatements = int(rows.size()) > maxRowsPerStatement;
    QSet<QString> seen;
    QStringList statements;
    int terms = 0;
    for (const PendingRow &row : rows) {
        const QString term = insertTerm(row);
        if (severalStatements) {
            if (seen.contains(term))
                continue;
            seen.insert(term);
        }
        if (terms++ % maxRowsPerStatement == 0)
            statements += QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate)");
        else
            statements.last() += QLatin1String(" union");
        statements.last() += QLatin1Char(' ') + term;
    }
    for (QString &statement : statements)
        statement += QLatin1Char(';');
    return statements;
}
