#include "dialogs/TypedNumber.h"

#include <QRegularExpression>

namespace {

constexpr QChar minusSign(0x2212);

QRegularExpression whole(const QString &pattern)
{
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern));
}

} // namespace

std::optional<double> typedDecimal(const QString &text, int decimals)
{
    static const QRegularExpression pattern = whole(QStringLiteral("[-+]?(\\d+\\.?|(?=\\.\\d)\\d*\\.)(\\d*)"));
    QString number = text.trimmed();
    number.replace(QLatin1Char(','), QLatin1Char('.')).replace(minusSign, QLatin1Char('-'));
    const QRegularExpressionMatch match = pattern.match(number);
    if (!match.hasMatch() || match.capturedLength(2) > decimals)
        return {};
    bool isNumber = false;
    const double value = number.toDouble(&isNumber);
    if (!isNumber)
        return {};
    return value == 0 ? 0 : value; // nobody means a negative zero
}

std::optional<int> typedWhole(const QString &text)
{
    static const QRegularExpression pattern = whole(QStringLiteral("\\d+"));
    const QString number = text.trimmed();
    bool isNumber = pattern.match(number).hasMatch();
    const int value = isNumber ? number.toInt(&isNumber) : 0;
    return isNumber ? std::optional(value) : std::nullopt;
}
