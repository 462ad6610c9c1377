#include "store/ReadLock.h"

#include <QSqlError>
#include <QSqlQuery>

namespace {

const QString connectionName = QStringLiteral("readlock");

} // namespace

ReadLock::ReadLock(const QString &path)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName);
    database.setDatabaseName(path);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000;QSQLITE_OPEN_READONLY"));
    if (!database.open()) {
        m_error = database.lastError().text();
        return;
    }
    QSqlQuery query(database);
    // SQLite refuses a file that is shorter than it says, unless it is told that somebody is about to repair it.
    query.exec(QStringLiteral("PRAGMA writable_schema = ON"));
    query.exec(QStringLiteral("BEGIN"));
    m_isHeld = query.exec(QStringLiteral("PRAGMA schema_version")) && query.next();
    if (!m_isHeld)
        m_error = query.lastError().text();
}

ReadLock::~ReadLock()
{
    connection().close();
    QSqlDatabase::removeDatabase(connectionName);
}

QSqlDatabase ReadLock::connection() const
{
    return QSqlDatabase::database(connectionName, false);
}
