#include "journal/JournalEntry.h"

#include <QCryptographicHash>
#include <QLocale>

namespace {

constexpr std::array<const char *, JournalEntry::fieldCount> columns{
    "id", "time", "offset", "kind", "key", "channel", "value", "low", "high", "old", "new", "text", "user"};

/// Never null: an empty text is not an absent one.
QByteArray present(const QByteArray &bytes)
{
    return bytes.isNull() ? QByteArray("") : bytes;
}

QByteArray bytesOf(const std::optional<QString> &text)
{
    return text ? present(text->toUtf8()) : QByteArray();
}

QByteArray bytesOf(const std::optional<double> &number)
{
    return number ? QByteArray::number(*number, 'g', QLocale::FloatingPointShortest) : QByteArray();
}

QByteArray bytesOf(const std::optional<int> &number)
{
    return number ? QByteArray::number(*number) : QByteArray();
}

} // namespace

QDateTime JournalEntry::time() const
{
    const qint64 ms = fields[Time].toLongLong();
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::OffsetFromUTC, fields[Offset].toInt());
}

const char *journalColumn(int field)
{
    return columns.at(size_t(field));
}

bool isNumberColumn(int field)
{
    switch (field) {
    case JournalEntry::Id:
    case JournalEntry::Time:
    case JournalEntry::Offset:
    case JournalEntry::Channel:
        return true;
    default:
        return false;
    }
}

JournalEntry makeEntry(const JournalEvent &event, qint64 id, const QDateTime &now, const QString &user)
{
    const QDateTime time = (event.time.isValid() ? event.time : now).toLocalTime();
    JournalEntry entry;
    entry.fields = {QByteArray::number(id),
                    QByteArray::number(time.toMSecsSinceEpoch()),
                    QByteArray::number(time.offsetFromUtc()),
                    journalWord(event.kind).toUtf8(),
                    bytesOf(event.key),
                    bytesOf(event.channel),
                    bytesOf(event.value),
                    bytesOf(event.low),
                    bytesOf(event.high),
                    bytesOf(event.oldText),
                    bytesOf(event.newText),
                    bytesOf(event.text),
                    present(user.toUtf8())};
    return entry;
}

QByteArray canonicalForm(const QByteArray &previousHash, const JournalEntry &entry)
{
    QByteArray form = previousHash;
    for (int field = 0; field < JournalEntry::fieldCount; ++field) {
        const QByteArray &bytes = entry.fields[size_t(field)];
        form += '|';
        if (bytes.isNull())
            form += '-';
        else
            form += isNumberColumn(field) ? bytes : bytes.toHex().toUpper();
    }
    return form;
}

QByteArray journalHash(const QByteArray &previousHash, const JournalEntry &entry)
{
    return QCryptographicHash::hash(canonicalForm(previousHash, entry), QCryptographicHash::Sha256).toHex();
}

QByteArray noJournalHash()
{
    return QByteArray(64, '0');
}
