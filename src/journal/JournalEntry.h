#pragma once

#include "journal/JournalEvent.h"

#include <QByteArray>
#include <array>

/// An entry of a journal as its file holds it. All that is hashed is text: numbers in decimals, and other texts in
/// UTF-8; null stands for what is absent.
struct JournalEntry
{
    enum Field { Id, Time, Offset, Kind, Key, Channel, Value, Low, High, Old, New, Text, User };
    static constexpr int fieldCount = User + 1;

    std::array<QByteArray, fieldCount> fields;
    QByteArray hash; ///< hexadecimal

    bool has(Field field) const { return !fields[field].isNull(); }
    QString text(Field field) const { return QString::fromUtf8(fields[field].constData(), int(fields[field].size())); }
    qint64 id() const { return fields[Id].toLongLong(); }
    /// Local time of the station as it was then, with its offset.
    QDateTime time() const;
};

/// Name of the field's column.
const char *journalColumn(int field);
/// Whether the column holds a whole number, which stands in the canonical form as it is.
bool isNumberColumn(int field);

JournalEntry makeEntry(const JournalEvent &event, qint64 id, const QDateTime &now, const QString &user);

/// What the hash is made of; docs/journal.md describes it.
QByteArray canonicalForm(const QByteArray &previousHash, const JournalEntry &entry);
QByteArray journalHash(const QByteArray &previousHash, const JournalEntry &entry);
/// What stands in for the hash before the first entry.
QByteArray noJournalHash();
