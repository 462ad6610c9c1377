#include "stationcosts/LargeRecording.h"

#include "store/InsertSerialData.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTextStream>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int rowsAtATime = 2000000;
constexpr int loggers = 64;
constexpr qint64 firstSecond = 1700000000;
constexpr qint64 bytesPerMiB = 1024 * 1024;

QString rowsFrom(qint64 first)
{
    return QStringLiteral("with recursive n(i) as (select %1 union all select i + 1 from n where i + 1 < %2) "
                          "insert into ostrivane (serialno, channel1, channel2, pointDate) "
                          "select printf('020001%06X', i % %3 + 1), 20 + (i % 997) / 100.0, 45 + (i % 1999) / 100.0, "
                          "%4 + i / %3 from n")
        .arg(first)
        .arg(first + rowsAtATime)
        .arg(loggers)
        .arg(firstSecond);
}

bool fill(const QString &path, qint64 bytes, QString *error)
{
    const QString prefix = QStringLiteral("large");
    // The station's own store makes the table and sets the file up.
    InsertSerialData store(path, prefix);
    if (!store.createConnection()) {
        *error = QStringLiteral("cannot create %1").arg(path);
        return false;
    }
    QTextStream(stderr) << "Making a recording of " << bytes / bytesPerMiB << " MiB, once; it takes a minute or two.\n";
    QSqlQuery query(QSqlDatabase::database(prefix + QStringLiteral("filedb")));
    for (qint64 rows = 0; QFileInfo(path).size() < bytes; rows += rowsAtATime) {
        if (!query.exec(rowsFrom(rows))) {
            *error = query.lastError().text();
            return false;
        }
    }
    return true;
}

} // namespace

bool provideLargeRecording(const QString &path, qint64 bytes, QString *error)
{
    if (QFileInfo(path).size() >= bytes)
        return true;
    const QString unfinished = path + QStringLiteral(".unfinished");
    QFile::remove(unfinished);
    QFile::remove(path);
    if (!fill(unfinished, bytes, error))
        return false;
    if (QFile::rename(unfinished, path))
        return true;
    *error = QStringLiteral("cannot rename %1").arg(unfinished);
    return false;
}

void dropFromCache(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    // Only what is on the disk can be forgotten.
    ::fdatasync(file.handle());
    ::posix_fadvise(file.handle(), 0, 0, POSIX_FADV_DONTNEED);
}
