#include "journal/JournalFile.h"

#include "journal/JournalReader.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QUuid>
#include <QVariant>
#include <utility>

namespace {

const QString makeTable = QStringLiteral(
    "create table if not exists entry (id integer primary key, time integer not null, offset integer not null, "
    "kind text not null, key text, channel integer, value text, low text, high text, old text, new text, text text, "
    "user text not null, hash text not null)");

bool closesAProject(const JournalEntry &entry)
{
    const QString kind = entry.text(JournalEntry::Kind);
    return kind == journalWord(JournalKind::ProjectClosed) || kind == journalWord(JournalKind::ProgramEnded);
}

/// Handed over as bytes: as a text, some characters would be changed on their way.
QString insertStatement()
{
    QStringList names;
    QStringList places;
    for (int field = 0; field < JournalEntry::fieldCount; ++field) {
        names << QStringLiteral("\"%1\"").arg(QLatin1String(journalColumn(field)));
        places << (isNumberColumn(field) ? QStringLiteral("?") : QStringLiteral("cast(? as text)"));
    }
    return QStringLiteral("insert into entry (%1, hash) values (%2, ?)")
        .arg(names.join(QStringLiteral(", ")), places.join(QStringLiteral(", ")));
}

QVariant boundValue(const JournalEntry &entry, int field)
{
    const QByteArray &bytes = entry.fields[size_t(field)];
    if (isNumberColumn(field))
        return bytes.isNull() ? QVariant() : QVariant(bytes.toLongLong());
    return bytes.isNull() ? QVariant() : QVariant(bytes);
}

} // namespace

JournalFile::JournalFile(const QString &path, const QString &user)
    : m_path(path), m_user(user), m_connectionName(QUuid::createUuid().toString())
{
}

JournalFile::~JournalFile()
{
    close();
}

JournalFile::Opening JournalFile::open()
{
    Opening opening;
    const QFileInfo file(m_path);
    const QByteArray headBefore = std::exchange(m_head, noJournalHash());
    m_count = 0;
    JournalVerdict verdict;
    if (file.exists() && file.size() > 0) {
        verdict = readJournal(m_path);
        if (verdict.isNoJournal && !setAside(opening.setAside))
            verdict.reason = QStringLiteral("It is no journal, and cannot be set aside.");
        if (verdict.state == JournalVerdict::Unreadable && opening.setAside.isEmpty()) {
            opening.error = verdict.reason;
            return opening;
        }
    }
    if (verdict.state != JournalVerdict::Unreadable) {
        m_head = verdict.head;
        m_count = verdict.entries == 0 ? 0 : verdict.last.id();
        if (verdict.entries > 0 && !closesAProject(verdict.last))
            opening.uncleanSince = verdict.last.time();
    }
    if (!openForWriting()) {
        opening.error = m_error;
        return opening;
    }
    JournalEvent begun{JournalKind::JournalSetAside};
    if (!opening.setAside.isEmpty())
        begun.text = QStringLiteral("What was here was no whole journal and is kept as %1.")
                         .arg(QFileInfo(opening.setAside).fileName());
    else if (!headBefore.isEmpty() && headBefore != noJournalHash() && m_count == 0)
        begun.text = QStringLiteral("The journal was deleted or moved while the project was open; its head was %1.")
                         .arg(QString::fromLatin1(headBefore));
    if (begun.text && !append({begun}))
        opening.error = m_error;
    return opening;
}

/// With what belongs to it, so that it can still be looked at. False when any of it had to stay: then all has.
bool JournalFile::setAside(QString &where)
{
    int number = 1;
    const auto name = [this](int n) {
        return m_path + QStringLiteral(".torn-%1").arg(n);
    };
    while (QFileInfo::exists(name(number)) || QFileInfo::exists(name(number) + QLatin1String("-wal")))
        ++number;
    if (!QFile::rename(m_path, name(number)))
        return false;
    const QString log = m_path + QLatin1String("-wal");
    if (QFile::exists(log) && !QFile::rename(log, name(number) + QLatin1String("-wal"))) {
        QFile::rename(name(number), m_path);
        return false;
    }
    // Made anew whenever it is needed.
    QFile::remove(m_path + QLatin1String("-shm"));
    where = name(number);
    return true;
}

bool JournalFile::openForWriting()
{
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    m_database.setDatabaseName(m_path);
    m_open = true;
    if (!m_database.open())
        return refuse(m_database.lastError().text());
    for (const QString &statement :
         {QStringLiteral("pragma journal_mode = wal"), QStringLiteral("pragma synchronous = full"),
          QStringLiteral("pragma user_version = 1"), makeTable}) {
        QSqlQuery query(m_database);
        if (!query.exec(statement))
            return refuse(query.lastError().text());
    }
    return true;
}

bool JournalFile::append(const QList<JournalEvent> &events)
{
    // The connection would go on writing into a file that was deleted, without a word.
    if (!QFile::exists(m_path))
        return refuse(QStringLiteral("It was deleted or moved."));
    if (!m_database.transaction())
        return refuse(m_database.lastError().text());
    QByteArray head = m_head;
    qint64 id = m_count;
    for (const JournalEvent &event : events) {
        JournalEntry entry = makeEntry(event, ++id, QDateTime::currentDateTime(), m_user);
        entry.hash = journalHash(head, entry);
        head = entry.hash;
        if (!insert(entry))
            return false;
    }
    if (!m_database.commit())
        return refuse(m_database.lastError().text());
    m_head = head;
    m_count = id;
    return true;
}

bool JournalFile::insert(const JournalEntry &entry)
{
    QSqlQuery query(m_database);
    bool isReady = query.prepare(insertStatement());
    for (int field = 0; field < JournalEntry::fieldCount; ++field)
        query.addBindValue(boundValue(entry, field));
    query.addBindValue(QString::fromLatin1(entry.hash));
    isReady = isReady && query.exec();
    if (isReady)
        return true;
    const QString reason = query.lastError().text();
    query.finish();
    return refuse(reason);
}

bool JournalFile::refuse(const QString &reason)
{
    m_error = reason;
    close();
    return false;
}

void JournalFile::close()
{
    if (!std::exchange(m_open, false))
        return;
    m_database.close(); // ends a transaction without its entries
    m_database = {};
    QSqlDatabase::removeDatabase(m_connectionName);
}
