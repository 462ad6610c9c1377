#include "store/InsertStatement.h"

#include <QSet>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>

namespace {

// Terms are appended in place and room is made for them at once: a batch of hundreds of rows otherwise spends as much
// time on copying its text as on anything else.
constexpr int usualTermLength = 64;

// A zero byte would end the statement and half a surrogate pair would swallow the closing quote.
bool needsEscape(QChar c)
{
    return c == QLatin1Char('\'') || c.isNull() || c.isSurrogate();
}

QString escaped(const QString &text)
{
    const QByteArray wellFormed = text.toUtf8();
    QString result = QString::fromUtf8(wellFormed.constData(), wellFormed.size());
    result.replace(QLatin1Char('\''), QLatin1String("''"));
    result.replace(QChar(QChar::Null), QLatin1String("'||char(0)||'"));
    return result;
}

void append(QString &statement, const QString &text)
{
    statement += QLatin1Char('\'');
    statement += std::any_of(text.cbegin(), text.cend(), needsEscape) ? escaped(text) : text;
    statement += QLatin1Char('\'');
}

void append(QString &statement, quint32 number)
{
    char digits[std::numeric_limits<quint32>::digits10 + 1];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    statement += QLatin1String(digits, int(end - digits));
}

// Loggers send two decimals. Written from their hundredths such values take a tenth of the time that the general
// conversion needs, for the same text.
std::optional<int> wholeHundredths(double value)
{
    constexpr double bound = 9999.99; // six significant digits
    if (std::abs(value) > bound)
        return std::nullopt;
    const int hundredths = int(value * 100 + (value < 0 ? -0.5 : 0.5));
    return hundredths / 100.0 == value ? std::optional(hundredths) : std::nullopt;
}

void appendHundredths(QString &statement, int hundredths)
{
    if (hundredths < 0)
        statement += QLatin1Char('-');
    const auto magnitude = quint32(std::abs(hundredths));
    append(statement, magnitude / 100);
    const int fraction = int(magnitude % 100);
    if (fraction == 0)
        return;
    statement += QLatin1Char('.');
    statement += QLatin1Char(char('0' + fraction / 10));
    if (fraction % 10 != 0)
        statement += QLatin1Char(char('0' + fraction % 10));
}

void append(QString &statement, double value)
{
    if (isNoValue(value) || !std::isfinite(value))
        statement += QLatin1String("NULL");
    else if (const std::optional<int> hundredths = wholeHundredths(value))
        appendHundredths(statement, *hundredths);
    else
        statement += QString::number(value, 'g', 6);
}

void append(QString &statement, const PendingRow &row)
{
    const QLatin1String separator(", ");
    statement += QLatin1String("select ");
    append(statement, row.serial);
    statement += separator;
    append(statement, row.channel1);
    statement += separator;
    append(statement, row.channel2);
    statement += separator;
    append(statement, row.time);
}

QString statementHead(int rows)
{
    const QLatin1String head("insert into ostrivane (serialno, channel1, channel2, pointDate)");
    QString statement;
    statement.reserve(head.size() + rows * usualTermLength);
    statement += head;
    return statement;
}

bool isFirst(const PendingRow &row, QSet<QString> &seen)
{
    const auto before = seen.size();
    seen.insert(insertTerm(row));
    return seen.size() > before;
}

} // namespace

QString insertTerm(const PendingRow &row)
{
    QString term;
    append(term, row);
    return term;
}

QStringList insertStatements(const std::vector<PendingRow> &rows)
{
    const int rowCount = int(rows.size());
    QSet<QString> seen;
    QStringList statements;
    int terms = 0;
    for (const PendingRow &row : rows) {
        if (rowCount > maxRowsPerStatement && !isFirst(row, seen))
            continue;
        if (terms++ % maxRowsPerStatement == 0)
            statements += statementHead(std::min(rowCount, maxRowsPerStatement));
        else
            statements.last() += QLatin1String(" union");
        statements.last() += QLatin1Char(' ');
        append(statements.last(), row);
    }
    for (QString &statement : statements)
        statement += QLatin1Char(';');
    return statements;
}
