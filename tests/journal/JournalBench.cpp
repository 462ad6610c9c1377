#include "JournalBench.h"

#include "journal/JournalFile.h"
#include "journal/JournalReader.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUuid>

bool JournalBench::write(const QList<JournalEvent> &events) const
{
    JournalFile file(path(), QStringLiteral("anna"));
    return file.open().error.isEmpty() && file.append(events);
}

bool JournalBench::run(const QStringList &statements) const
{
    const QString connection = QUuid::createUuid().toString();
    bool hasRun = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(path());
        hasRun = database.open();
        for (const QString &statement : statements)
            hasRun = hasRun && QSqlQuery(database).exec(statement);
    }
    QSqlDatabase::removeDatabase(connection);
    return hasRun;
}

QList<JournalEntry> JournalBench::entries() const
{
    QList<JournalEntry> all;
    readJournal(path(), [&all](const JournalEntry &entry) { all.append(entry); });
    return all;
}

QStringList JournalBench::kinds() const
{
    QStringList all;
    const QList<JournalEntry> found = entries();
    for (const JournalEntry &entry : found)
        all << entry.text(JournalEntry::Kind);
    return all;
}

JournalEvent eventOf(JournalKind kind, const QString &text)
{
    JournalEvent made{kind};
    made.text = text;
    return made;
}

QList<JournalEvent> everyKind()
{
    QList<JournalEvent> events;
    for (int kind = 0; kind <= int(JournalKind::EntriesDropped); ++kind)
        events.append(eventOf(JournalKind(kind)));
    return events;
}
