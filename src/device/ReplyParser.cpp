#include "device/ReplyParser.h"

#include <QLocale>
#include <QStringView>

#include <cmath>

namespace {

ChannelReading parseField(QStringView field)
{
    if (field.contains(QLatin1String("----")))
        return {noValue, field.toString()};
    bool ok = false;
    // QStringView::toDouble() is Qt 6 only; the C locale reads the same.
    const double number = QLocale::c().toDouble(field, &ok);
    return {ok && std::isfinite(number) ? number : 0.0, {}};
}

void parseLine(QStringView line, QVector<Reading> &readings)
{
    const qsizetype comma = line.indexOf(QLatin1Char(','));
    if (comma < 0)
        return;
    const QStringView rest = line.mid(comma + 1);
    const qsizetype secondComma = rest.indexOf(QLatin1Char(','));
    readings.append({parseField(line.left(comma)), parseField(secondComma < 0 ? rest : rest.left(secondComma))});
}

} // namespace

QString ChannelReading::text() const
{
    return ownText.isEmpty() ? QString::number(value, 'f', 2) : ownText;
}

QVector<Reading> parseReply(const QString &reply)
{
    QVector<Reading> readings;
    QStringView rest(reply);
    while (true) {
        const qsizetype lineEnd = rest.indexOf(QLatin1Char('\n'));
        if (lineEnd < 0)
            break;
        parseLine(rest.left(lineEnd), readings);
        rest = rest.mid(lineEnd + 1);
    }
    parseLine(rest, readings);
    return readings;
}
