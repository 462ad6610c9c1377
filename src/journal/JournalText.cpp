#include "journal/JournalText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLocale>
#include <QStringList>
#include <array>
#include <cmath>

namespace {

constexpr std::array<JournalEntry::Field, 10> shownFields{
    JournalEntry::Kind, JournalEntry::Key, JournalEntry::Channel, JournalEntry::Value, JournalEntry::Low,
    JournalEntry::High, JournalEntry::Old, JournalEntry::New,     JournalEntry::Text,  JournalEntry::User};

QString timeText(const JournalEntry &entry)
{
    return entry.time().toString(Qt::ISODateWithMs);
}

QByteArray quoted(const QString &text)
{
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

bool isNumber(JournalEntry::Field field)
{
    return field == JournalEntry::Channel || field == JournalEntry::Value || field == JournalEntry::Low ||
           field == JournalEntry::High;
}

QByteArray jsonValue(const JournalEntry &entry, JournalEntry::Field field)
{
    if (!entry.has(field))
        return "null";
    if (!isNumber(field))
        return quoted(entry.text(field));
    bool isReadable = false;
    const double number = entry.fields[field].toDouble(&isReadable);
    // An entry that somebody has put in may hold a number in another form than JSON's.
    return isReadable && std::isfinite(number) ? QByteArray::number(number, 'g', QLocale::FloatingPointShortest)
                                               : QByteArray("null");
}

/// Names come from people: what would break the line, end the quotation or play with a terminal is shown as an escape.
QString oneLine(const QString &text)
{
    QString line;
    for (const QChar character : text) {
        if (character.isPrint() && character != QLatin1Char('"'))
            line += character;
        else
            line += QStringLiteral("\\u%1").arg(int(character.unicode()), 4, 16, QLatin1Char('0'));
    }
    return line;
}

} // namespace

QString plainLine(const JournalEntry &entry)
{
    QStringList parts{timeText(entry)};
    for (const JournalEntry::Field field : shownFields) {
        if (!entry.has(field))
            continue;
        const QString text = oneLine(entry.text(field));
        parts << (field == JournalEntry::Kind
                      ? text
                      : QLatin1String(journalColumn(field)) + QStringLiteral("=\"%1\"").arg(text));
    }
    return parts.join(QLatin1Char(' '));
}

QByteArray jsonLine(const JournalEntry &entry)
{
    QByteArray line = "{\"time\":" + quoted(timeText(entry));
    for (const JournalEntry::Field field : shownFields)
        line += ",\"" + QByteArray(journalColumn(field)) + "\":" + jsonValue(entry, field);
    return line + '}';
}
