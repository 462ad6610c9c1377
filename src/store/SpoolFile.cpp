#include "store/SpoolFile.h"

#include "store/FileIdentity.h"
#include "store/SetAside.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>
#include <QVariant>

#include <algorithm>

namespace {

constexpr int applicationId = 0x53765370;

// SQLite's result codes, whatever the extended ones say besides.
constexpr int corruptCode = 11;
constexpr int notADatabaseCode = 26;
constexpr int primaryCode = 0xff;

constexpr qint64 headerSize = 100;

const QStringList logSuffixes{QStringLiteral("-wal"), QStringLiteral("-shm"), QStringLiteral("-journal")};

bool saysDamaged(const QSqlError &error)
{
    const int code = error.nativeErrorCode().toInt() & primaryCode;
    return code == corruptCode || code == notADatabaseCode;
}

PendingRow rowOf(const QSqlQuery &query)
{
    const auto channel = [&query](int column) {
        return query.isNull(column) ? noValue : query.value(column).toDouble();
    };
    PendingRow row;
    row.number = query.value(0).toLongLong();
    const QByteArray serial = query.value(1).toByteArray();
    row.serial = QString::fromUtf8(serial.constData(), serial.size());
    row.channel1 = channel(2);
    row.channel2 = channel(3);
    row.time = query.value(4).toUInt();
    return row;
}

QVariant scalar(const QSqlDatabase &database, const QString &statement)
{
    QSqlQuery query(database);
    return query.exec(statement) && query.next() ? query.value(0) : QVariant();
}

} // namespace

QString SpoolFile::pathOf(const QString &databaseFile)
{
    return databaseFile + QLatin1String(".spool");
}

SpoolFile::SpoolFile(const QString &path) : m_path(path), m_connectionName(QUuid::createUuid().toString()) {}

SpoolFile::~SpoolFile()
{
    close();
}

QSqlDatabase SpoolFile::connection() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

bool SpoolFile::connect(const QString &options)
{
    close();
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    database.setDatabaseName(m_path);
    database.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=1000") + options);
    return database.open() || fail(database.lastError());
}

void SpoolFile::close()
{
    m_openedFile.clear();
    if (!QSqlDatabase::contains(m_connectionName))
        return;
    connection().close();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool SpoolFile::fail(const QSqlError &error)
{
    m_error = error.text();
    return false;
}

bool SpoolFile::exec(const QString &statement)
{
    QSqlQuery query(connection());
    return query.exec(statement) || fail(query.lastError());
}

SpoolFile::Content SpoolFile::read()
{
    Content content;
    if (!QFile::exists(m_path))
        return content;
    // SQLite would delete the log, and all rows with it.
    if (QFileInfo(m_path).size() < headerSize && QFileInfo(m_path + QLatin1String("-wal")).size() > 0) {
        m_error = QStringLiteral("The file has been cut off beside its log");
        content.state = State::Damaged;
        return content;
    }
    // Closing a connection that may write would work the log into the file. One that died while it made the file has
    // left a journal, which only a writer can undo; no row is in it then.
    const bool isHalfMade = QFile::exists(m_path + QLatin1String("-journal"));
    content.state = State::Unreadable;
    if (connect(isHalfMade ? QString() : QStringLiteral(";QSQLITE_OPEN_READONLY")))
        content = readOpened();
    close();
    return content;
}

SpoolFile::Content SpoolFile::readOpened()
{
    Content content;
    QSqlQuery check(connection());
    if (!check.exec(QStringLiteral("PRAGMA quick_check(1)")) || !check.next()) {
        fail(check.lastError());
        content.state = saysDamaged(check.lastError()) ? State::Damaged : State::Unreadable;
        if (content.state == State::Unreadable)
            return content;
    } else {
        content.state = check.value(0).toString() == QLatin1String("ok") ? State::Whole : State::Damaged;
    }
    check.finish();
    const bool isNew = scalar(connection(), QStringLiteral("select count(*) from sqlite_master")) == QVariant(0);
    if (isNew)
        return content;
    const bool isOurs = scalar(connection(), QStringLiteral("PRAGMA application_id")).toInt() == applicationId;
    content.storedUpTo = scalar(connection(), QStringLiteral("select storedUpTo from state")).toLongLong();
    content.takenIn = scalar(connection(), QStringLiteral("select takenIn from state")).toByteArray();
    if (!isOurs || !readRows(content))
        content.state = State::Damaged;
    return content;
}

/// Whether the file is none to write into: that alone would change it.
bool SpoolFile::mustStay()
{
    if (!QFile::exists(m_path) || !connect(QStringLiteral(";QSQLITE_OPEN_READONLY")))
        return false;
    QSqlQuery check(connection());
    if (!check.exec(QStringLiteral("PRAGMA quick_check(1)")) || !check.next())
        return saysDamaged(check.lastError());
    const bool isNew = scalar(connection(), QStringLiteral("select count(*) from sqlite_master")) == QVariant(0);
    const bool isOurs = scalar(connection(), QStringLiteral("PRAGMA application_id")).toInt() == applicationId;
    return check.value(0).toString() != QLatin1String("ok") || (!isNew && !isOurs);
}

/// From the front and, where something unreadable lies between, from the back. False unless all could be read.
bool SpoolFile::readRows(Content &content)
{
    const QString columns = QStringLiteral("select number, serialno, channel1, channel2, pointDate from waiting ");
    QSqlQuery query(connection());
    query.setForwardOnly(true);
    query.exec(columns + QStringLiteral("order by number"));
    while (query.next())
        content.rows.push_back(rowOf(query));
    if (query.lastError().type() == QSqlError::NoError)
        return true;
    fail(query.lastError());
    std::vector<PendingRow> back;
    const qint64 last = content.rows.empty() ? 0 : content.rows.back().number;
    query.exec(columns + QStringLiteral("where number > %1 order by number desc").arg(last));
    while (query.next())
        back.push_back(rowOf(query));
    content.rows.insert(content.rows.end(), back.rbegin(), back.rend());
    return false;
}

bool SpoolFile::write(const Change &change)
{
    if (!isOpen() && !openForWriting()) {
        close();
        return false;
    }
    if (exec(QStringLiteral("begin immediate")) && apply(change) && exec(QStringLiteral("commit")))
        return true;
    // What a failed commit has left must not be built upon.
    close();
    return false;
}

bool SpoolFile::openForWriting()
{
    if (mustStay()) {
        m_error = QStringLiteral("%1 is damaged, or another program's, and could not be set aside").arg(m_path);
        return false;
    }
    // Nobody else uses the file: without memory to share, the log also works on the drive of another computer.
    const bool isOpen = connect({}) && exec(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE")) &&
                        exec(QStringLiteral("PRAGMA journal_mode = WAL")) &&
                        exec(QStringLiteral("PRAGMA synchronous = FULL")) &&
                        exec(QStringLiteral("PRAGMA journal_size_limit = 4194304")) && makeTables();
    if (isOpen)
        m_openedFile = fileIdentity(m_path);
    return isOpen;
}

bool SpoolFile::makeTables()
{
    if (scalar(connection(), QStringLiteral("select count(*) from sqlite_master")) != QVariant(0)) {
        if (scalar(connection(), QStringLiteral("PRAGMA application_id")).toInt() == applicationId)
            return true;
        m_error = QStringLiteral("%1 belongs to another program").arg(m_path);
        return false;
    }
    return exec(QStringLiteral("begin immediate")) &&
           exec(QStringLiteral("PRAGMA application_id = %1").arg(applicationId)) &&
           exec(QStringLiteral("create table waiting (number integer primary key, serialno blob not null, "
                               "channel1 float, channel2 float, pointDate integer not null)")) &&
           exec(QStringLiteral("create table state (storedUpTo integer not null, takenIn blob)")) &&
           exec(QStringLiteral("insert into state values (0, null)")) && exec(QStringLiteral("commit"));
}

bool SpoolFile::apply(const Change &change)
{
    QSqlQuery query(connection());
    query.prepare(QStringLiteral("insert or replace into waiting values (?, ?, ?, ?, ?)"));
    for (const PendingRow &row : change.rows) {
        query.bindValue(0, row.number);
        query.bindValue(1, row.serial.toUtf8());
        query.bindValue(2, row.channel1);
        query.bindValue(3, row.channel2);
        query.bindValue(4, row.time);
        if (!query.exec())
            return fail(query.lastError());
    }
    for (const Range &range : change.gone) {
        if (!exec(
                QStringLiteral("delete from waiting where number between %1 and %2").arg(range.first).arg(range.last)))
            return false;
    }
    if (change.storedUpTo && !exec(QStringLiteral("update state set storedUpTo = %1").arg(*change.storedUpTo)))
        return false;
    return change.takenIn.isEmpty() ||
           exec(QStringLiteral("update state set takenIn = x'%1'").arg(QString::fromLatin1(change.takenIn.toHex())));
}

bool SpoolFile::isLost() const
{
    return isOpen() && fileIdentity(m_path) != m_openedFile;
}

void SpoolFile::removeIfEmpty()
{
    if (isLost())
        close();
    if (!QFile::exists(m_path) || (!isOpen() && !openForWriting()))
        return;
    const QVariant rows = scalar(connection(), QStringLiteral("select exists (select 1 from waiting)"));
    close();
    if (rows != QVariant(0))
        return;
    QFile::remove(m_path);
    for (const QString &suffix : logSuffixes)
        QFile::remove(m_path + suffix);
}

QString SpoolFile::setAside(const QString &path)
{
    return ::setAside(path, QStringLiteral("damaged"), logSuffixes);
}
