#include "journal/JournalReader.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <QUuid>
#include <QVariant>
#include <QtEndian>

namespace {

/// The columns as they stand in the canonical form, which tells absent from empty and loses no byte.
QString canonicalColumns()
{
    QString columns;
    for (int field = 0; field < JournalEntry::fieldCount; ++field) {
        const QString form = isNumberColumn(field)
                                 ? QStringLiteral("ifnull(%1, '-'), ")
                                 : QStringLiteral("case when %1 is null then '-' else hex(cast(%1 as blob)) end, ");
        columns += form.arg(QStringLiteral("\"%1\"").arg(QLatin1String(journalColumn(field))));
    }
    return columns;
}

QByteArray bytesOf(const QString &form, int field)
{
    if (form == QLatin1String("-"))
        return {};
    const QByteArray bytes = isNumberColumn(field) ? form.toUtf8() : QByteArray::fromHex(form.toLatin1());
    return bytes.isNull() ? QByteArray("") : bytes;
}

JournalEntry entryOf(const QSqlQuery &query)
{
    JournalEntry entry;
    for (int field = 0; field < JournalEntry::fieldCount; ++field)
        entry.fields[size_t(field)] = bytesOf(query.value(field).toString(), field);
    entry.hash = query.value(JournalEntry::fieldCount).toByteArray();
    return entry;
}

/// Whether the file itself is at fault: it is none of SQLite's, damaged, or has other tables.
bool blamesContent(const QSqlError &error)
{
    const int code = error.nativeErrorCode().toInt() & 0xff;
    return code == 26 || code == 11 || code == 1; // SQLITE_NOTADB, SQLITE_CORRUPT, SQLITE_ERROR
}

/// Cut off within its last pages, SQLite reads zeros there, as if they had been written.
bool isCutOff(QFile &file)
{
    constexpr qint64 pageSizeAt = 16;
    constexpr qint64 pageCountAt = 28;
    const QByteArray header = file.read(pageCountAt + 4);
    if (header.size() < pageCountAt + 4 || !header.startsWith("SQLite format 3"))
        return false; // SQLite itself says what it thinks of it
    const qint64 pageSize = qFromBigEndian<quint16>(header.constData() + pageSizeAt);
    return file.size() < pageSize * qFromBigEndian<quint32>(header.constData() + pageCountAt);
}

void followChain(QSqlDatabase &database, const std::function<void(const JournalEntry &)> &take, JournalVerdict &verdict)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!query.exec(QStringLiteral("select %1 hash from entry order by id").arg(canonicalColumns()))) {
        verdict.isNoJournal = blamesContent(query.lastError());
        verdict.reason = (verdict.isNoJournal ? QStringLiteral("It is no journal: %1")
                                              : QStringLiteral("It cannot be read: %1"))
                             .arg(query.lastError().text());
        return;
    }
    verdict.head = noJournalHash();
    while (query.next()) {
        verdict.last = entryOf(query);
        const bool follows = verdict.last.fields[JournalEntry::Id] == QByteArray::number(verdict.entries + 1) &&
                             verdict.last.hash == journalHash(verdict.head, verdict.last);
        if (!follows && verdict.state != JournalVerdict::Broken)
            verdict.brokenAt = verdict.last.id();
        verdict.state = verdict.state == JournalVerdict::Broken || !follows ? JournalVerdict::Broken : verdict.state;
        ++verdict.entries;
        verdict.head = verdict.last.hash;
        if (take)
            take(verdict.last);
    }
    if (query.lastError().type() != QSqlError::NoError) {
        verdict.state = JournalVerdict::Unreadable;
        verdict.isNoJournal = blamesContent(query.lastError());
        verdict.reason = QStringLiteral("It cannot be read behind entry %1: %2")
                             .arg(QString::number(verdict.last.id()), query.lastError().text());
    } else if (verdict.state != JournalVerdict::Broken) {
        verdict.state = JournalVerdict::Whole;
    }
}

} // namespace

JournalVerdict readJournal(const QString &path, const std::function<void(const JournalEntry &)> &take)
{
    JournalVerdict verdict;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        verdict.reason = QStringLiteral("It cannot be opened: %1").arg(file.errorString());
        return verdict;
    }
    // What a write-ahead log holds may still be missing in the file.
    const bool isAtRest = !QFile::exists(path + QStringLiteral("-wal"));
    if (isAtRest && isCutOff(file)) {
        verdict.isNoJournal = true;
        verdict.reason = QStringLiteral("It is cut off.");
        return verdict;
    }
    file.close();
    const QString connection = QUuid::createUuid().toString();
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        // A journal that nobody writes and that was closed properly is read without leaving anything beside it, also
        // from a folder that is read-only.
        const QString uri = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded);
        database.setDatabaseName(uri + (isAtRest ? QStringLiteral("?immutable=1") : QString()));
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_OPEN_READONLY"));
        if (database.open())
            followChain(database, take, verdict);
        else
            verdict.reason = QStringLiteral("It cannot be opened: %1").arg(database.lastError().text());
    }
    QSqlDatabase::removeDatabase(connection);
    return verdict;
}
