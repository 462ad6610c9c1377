#include "store/WriteProtection.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

bool isWriteProtected(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return false;
    const bool isMarked = !(file.permissions() & (QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther));
    return isMarked || !file.isWritable();
}

bool refusesToWrite(const QSqlDatabase &database)
{
    QSqlQuery query(database);
    // Takes the lock of a writer and changes nothing.
    if (query.exec(QStringLiteral("delete from ostrivane where 0")))
        return false;
    // SQLITE_READONLY, whatever the extended code says besides.
    return (query.lastError().nativeErrorCode().toInt() & 0xff) == 8;
}
