#include "store/Recording.h"

#include "store/InsertStatement.h"
#include "store/MemoryFolders.h"
#include "store/RedoLog.h"
#include "store/SpoolFile.h"

#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

OtherProgram::OtherProgram(const QString &databaseFile)
{
    static int number = 0;
    m_connectionName = QStringLiteral("other%1").arg(++number);
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    database.setDatabaseName(databaseFile);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=0"));
    if (!database.open())
        qFatal("cannot open the recording a second time");
}

OtherProgram::~OtherProgram()
{
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool OtherProgram::exec(const QString &statement) const
{
    return QSqlQuery(QSqlDatabase::database(m_connectionName)).exec(statement);
}

QStringList OtherProgram::rows(const QString &queryText) const
{
    QSqlQuery query(QSqlDatabase::database(m_connectionName));
    if (!query.exec(queryText))
        return {query.lastError().text()};
    QStringList lines;
    while (query.next()) {
        QStringList columns;
        for (int i = 0; i < query.record().count(); ++i)
            columns << (query.isNull(i) ? QStringLiteral("NULL") : query.value(i).toString());
        lines << columns.join(QLatin1Char('|'));
    }
    return lines;
}

/// What was meant to be lost must not stay in the memory of this computer.
Recording::~Recording()
{
    if (const auto log = RedoLog::open(file(), memoryFolders()))
        log->discard(log->end());
}

std::unique_ptr<InsertSerialData> Recording::open(quint64 freeSpace) const
{
    auto store = std::make_unique<InsertSerialData>(file(), QStringLiteral("test"), nullptr,
                                                    [freeSpace](const QString &) { return freeSpace; });
    return store->createConnection() ? std::move(store) : nullptr;
}

bool Recording::outgrowFirstPage() const
{
    open().reset();
    return OtherProgram(file()).exec(
        QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate) with recursive n(i) as "
                       "(select 1 union all select i + 1 from n where i < %1) select 'old', 20.5, 50, 1600000000 + i "
                       "from n")
            .arg(firstRows));
}

QStringList Recording::rows() const
{
    return OtherProgram(file()).rows(
        QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane order by pointDate, serialno"));
}

bool Recording::writeSideFile(const QString &path, const std::vector<PendingRow> &rows)
{
    QByteArray content = "sorvanto-pending-rows 1 " + QByteArray::number(qulonglong(rows.size())) + '\n';
    for (const PendingRow &row : rows) {
        content += QByteArray::number(row.time) + ' ' + QByteArray::number(row.channel1, 'g', 17) + ' ' +
                   QByteArray::number(row.channel2, 'g', 17) + ' ' + row.serial.toUtf8().toPercentEncoding() + '\n';
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QStringList Recording::spooledRows() const
{
    // The files as they would be found if the program ended now; the spool itself is open to one reader only.
    const QTemporaryDir copy;
    const QString target = copy.filePath(QStringLiteral("copy"));
    QFile::copy(spool(), target);
    QFile::copy(spool() + QStringLiteral("-wal"), target + QStringLiteral("-wal"));
    QStringList lines;
    for (const PendingRow &row : SpoolFile(target).read().rows)
        lines << insertTerm(row);
    return lines;
}

QString Recording::integrity() const
{
    return OtherProgram(file()).rows(QStringLiteral("PRAGMA integrity_check")).join(QLatin1Char('\n'));
}

PendingRow row(const char *serial, quint32 time, double channel1, double channel2)
{
    return {QString::fromLatin1(serial), channel1, channel2, time};
}

void emptyQueue()
{
    const Recording elsewhere;
    if (const auto store = elsewhere.open())
        store->insertNow();
}
