#include "store/RecordingConnection.h"

#include "store/RecordingSchema.h"

#include <QSqlQuery>

namespace {

// A recording that cannot be opened ends the program: a backup may finish first. Once it is open, rows can wait in the
// queue, and the wait for another program's short transaction must not be felt in the window.
const QString patienceToOpen = QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000");
const QString onlyForReading = QStringLiteral(";QSQLITE_OPEN_READONLY");
const QString patienceToWrite = QStringLiteral("PRAGMA busy_timeout = 50");

} // namespace

QSqlDatabase recordingConnection(const QString &name)
{
    return QSqlDatabase::database(name, false);
}

bool openRecording(const QString &name, const QString &file, bool isReadOnly)
{
    if (QSqlDatabase::contains(name))
        QSqlDatabase::removeDatabase(name);
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    database.setDatabaseName(file);
    database.setConnectOptions(isReadOnly ? patienceToOpen + onlyForReading : patienceToOpen);
    if (!database.open())
        return false;
    if (isReadOnly)
        return isDatabase(database);
    return tuneForAppending(database) && createTable(database) && QSqlQuery(database).exec(patienceToWrite);
}
