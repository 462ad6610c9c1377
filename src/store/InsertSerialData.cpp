#include "store/InsertSerialData.h"

#include "store/FileIdentity.h"
#include "store/InsertStatement.h"
#include "store/Logging.h"
#include "store/RecordingConnection.h"
#include "store/RecordingSpool.h"
#include "store/RowQueue.h"
#include "store/TornRecording.h"
#include "store/WriteProtection.h"

#include <QDateTime>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace {

using Trouble = WritingTroubles::Kind;

// Pages once written are kept until the whole cache is full: hundreds of MiB after a day of many loggers. The next
// batch needs only a handful of them, so they are given back now and then.
const QString releasePages = QStringLiteral("PRAGMA shrink_memory");
constexpr size_t rowsBetweenReleases = 5000;

// Without a journal a full disk ruins the whole file. This leaves room for a batch and for the spool.
constexpr quint64 minimumFreeSpace = 16 * 1024 * 1024;
constexpr quint64 generousRowSize = 256;

RowQueue &queue()
{
    return RowQueue::instance();
}

/// The store whose spool gets the rows that are queued.
InsertSerialData *&spoolingStore()
{
    static InsertSerialData *store = nullptr;
    return store;
}

QString clockText()
{
    return QDateTime::currentDateTime().toString(QStringLiteral("hh:MM:ss.zzz"));
}

} // namespace

quint64 InsertSerialData::diskFreeSpace(const QString &folder)
{
    // A folder that cannot be asked reads as limitless: the write itself then tells what is wrong.
    std::error_code ignored;
    return std::filesystem::space(std::filesystem::u8path(folder.toStdString()), ignored).available;
}

InsertSerialData::InsertSerialData(const QString &databaseFile, const QString &connectionPrefix, QObject *parent,
                                   FreeSpace freeSpace)
    : QObject(parent),
      m_databaseFile(databaseFile),
      m_connectionName(connectionPrefix + QLatin1String("filedb")),
      m_folder(QFileInfo(databaseFile).absolutePath()),
      m_freeSpace(std::move(freeSpace))
{
    connect(&m_troubles, &WritingTroubles::began, this, &InsertSerialData::writingFailed);
    connect(&m_troubles, &WritingTroubles::ended, this, &InsertSerialData::writingRestored);
}

InsertSerialData::~InsertSerialData()
{
    insertNow();
    if (m_spool)
        endSpool();
    if (QSqlDatabase::contains(m_connectionName)) {
        {
            QSqlDatabase database = connection();
            database.commit();
            database.close();
        }
        QSqlDatabase::removeDatabase(m_connectionName);
        qCDebug(lcStore).noquote().nospace()
            << "InsertSerialData::~InsertSerialData : QSqlDatabase::removeDatabase(" << m_connectionName << "\")";
    }
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::~InsertSerialData()";
}

bool InsertSerialData::createConnection()
{
    m_readOnly = isWriteProtected(m_databaseFile);
    if (connection().isOpen()) {
        m_open = true;
        m_openedFile = fileIdentity(m_databaseFile);
        m_readOnly = m_readOnly || refusesToWrite(connection());
        return true;
    }
    if ((m_readOnly || replaceIfTorn()) && openRecording(m_connectionName, m_databaseFile, m_readOnly)) {
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createConnection : success";
        m_open = true;
        m_openedFile = fileIdentity(m_databaseFile);
        m_readOnly = m_readOnly || refusesToWrite(connection());
        if (!m_readOnly)
            startSpool();
        return true;
    }
    // A later call must not take a connection that failed for a working one.
    connection().close();
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::createConnection : fail";
    return m_open;
}

bool InsertSerialData::isOpen() const
{
    return m_open;
}

bool InsertSerialData::isReadOnly() const
{
    return m_open && m_readOnly;
}

/// Tells when there is none.
bool InsertSerialData::hasRoom()
{
    InsertSerialData *store = spoolingStore();
    if (pendingCount() < mostRowsInMemory || (store && store->m_spool->isWorking()))
        return true;
    queue().drop();
    if (store)
        store->m_troubles.tell(Trouble::Dropped,
                               QStringLiteral("So many readings wait in memory that there is no room for "
                                              "more. New ones are lost until they can be written."));
    return false;
}

void InsertSerialData::enqueue(const PendingRow &row)
{
    if (!hasRoom())
        return;
    const PendingRow &queued = queue().append(row);
    if (const InsertSerialData *store = spoolingStore())
        store->m_spool->add(queued);
}

std::vector<qint64> InsertSerialData::enqueue(const std::vector<PendingRow> &rows, const std::vector<qint64> &before,
                                              const std::vector<PendingRow> &held)
{
    std::vector<PendingRow> queued;
    for (const PendingRow &row : rows) {
        if (hasRoom())
            queued.push_back(queue().append(row));
    }
    const InsertSerialData *store = spoolingStore();
    return store ? store->m_spool->replaceHeld(before, queued, held) : std::vector<qint64>();
}

int InsertSerialData::pendingCount()
{
    return queue().count();
}

void InsertSerialData::insertNow()
{
    if (!m_open || m_readOnly || queue().rows().empty())
        return;
    // The connection would go on writing into the file that was deleted or renamed, without a word.
    if (fileIdentity(m_databaseFile) != m_openedFile) {
        m_troubles.tell(Trouble::Gone,
                        QStringLiteral("The recording was deleted, moved or replaced. Readings wait in memory and "
                                       "are stored when the project is opened again."));
        return;
    }
    if (m_freeSpace(m_folder) < std::max<quint64>(minimumFreeSpace, quint64(queue().count()) * generousRowSize)) {
        m_troubles.tell(Trouble::DiskNearlyFull,
                        QStringLiteral("The disk is nearly full. Readings wait in memory until there is space again."));
        return;
    }
    if (takeExclusiveLock())
        writeBatch();
}

void InsertSerialData::saveQueuedRows()
{
    if (m_spool)
        m_spool->writeNow();
}

quint32 InsertSerialData::startDateTime() const
{
    return rangeEnd("startDateTime", QStringLiteral("select min(pointDate) from ostrivane;"));
}

quint32 InsertSerialData::endDateTime() const
{
    return rangeEnd("endDateTime", QStringLiteral("select max(pointDate) from ostrivane;"));
}

QSqlDatabase InsertSerialData::connection() const
{
    return recordingConnection(m_connectionName);
}

/// False when that was given up.
bool InsertSerialData::replaceIfTorn()
{
    const TornRecording torn = replaceTornRecording(m_databaseFile, m_salvageProgress);
    m_openingReport.rowsSalvaged = torn.rows;
    m_openingReport.tornFile = torn.file;
    return !torn.isGivenUp;
}

void InsertSerialData::startSpool()
{
    m_spool = std::make_unique<RecordingSpool>(m_databaseFile, m_connectionName);
    connect(m_spool.get(), &RecordingSpool::failed, &m_troubles, &WritingTroubles::spoolFails);
    connect(m_spool.get(), &RecordingSpool::restored, &m_troubles, &WritingTroubles::spoolWorks);
    connect(m_spool.get(), &RecordingSpool::lost, this, &InsertSerialData::slotSpoolLost);
    const KeptRows &kept = m_spool->kept();
    m_perhapsStored = kept.perhapsStored;
    m_perhapsStoredAs = PerhapsStored::InEarlyBatches;
    m_openingReport.rowsReplayed = int(kept.rows.size());
    m_openingReport.damagedSpool = kept.setAside;
    spoolingStore() = this;
}

/// What is left of the queue stays in the spool.
void InsertSerialData::endSpool()
{
    if (spoolingStore() == this)
        spoolingStore() = nullptr;
    const std::vector<PendingRow> rows = queue().takeAll();
    const bool areSaved = m_spool->finish(rows);
    m_spool.reset();
    if (areSaved)
        return;
    qCWarning(lcStore).noquote().nospace() << "InsertSerialData::~InsertSerialData : [ERROR] " << rows.size()
                                           << " rows could not be kept in " << SpoolFile::pathOf(m_databaseFile);
    m_troubles.tell(Trouble::Lost, QStringLiteral("%1 readings could not be written and are lost.").arg(rows.size()));
}

void InsertSerialData::slotSpoolLost()
{
    for (const PendingRow &row : queue().rows())
        m_spool->add(row);
}

/// The exclusive lock, before anything is touched: under any lesser one a mere reader makes the commit fail.
bool InsertSerialData::takeExclusiveLock()
{
    const QString begin = QStringLiteral("BEGIN EXCLUSIVE");
    QSqlQuery query(connection());
    // Refused for another reason than a lock, an earlier commit may have failed and left its transaction open.
    const bool begun =
        query.exec(begin) || (!isLockError(query.lastError()) && connection().commit() && query.exec(begin));
    if (!begun) {
        m_troubles.tellWaiting(query.lastError());
        return false;
    }
    const QSqlError error = dropRowsAlreadyStored();
    if (error.type() == QSqlError::NoError)
        return true;
    connection().commit();
    m_troubles.tellWaiting(error);
    return false;
}

/// Leaves out the rows at the front of the queue that an interrupted attempt did bring into the file after all.
QSqlError InsertSerialData::dropRowsAlreadyStored()
{
    // Another store on the same queue may have emptied it meanwhile.
    const auto count = std::min(m_perhapsStored, pendingCount());
    const qint64 storedUpTo = m_spool ? m_spool->storedUpTo() : 0;
    QSqlError error =
        count == 0 ? QSqlError() : removeStoredRows(connection(), queue().rows(), count, storedUpTo, m_perhapsStoredAs);
    if (error.type() == QSqlError::NoError)
        m_perhapsStored = 0;
    return error;
}

/// Empties the queue into the file. The exclusive transaction is already open.
void InsertSerialData::writeBatch()
{
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::insertNow : starttime : " << clockText();
    const qint64 lastOfBatch = queue().rows().empty() ? 0 : queue().rows().back().number;
    const QStringList statements = insertStatements(queue().rows());
    const std::vector<PendingRow> batch = queue().takeAll();
    for (const QString &statement : statements)
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::insertNow : query : " << statement;
    qCDebug(lcStore).noquote().nospace() << "begin transaction : " << true;

    QString firstError;
    for (const QString &statement : statements) {
        QSqlQuery query(connection());
        const bool inserted = query.exec(statement);
        const QString error = query.lastError().text();
        qCDebug(lcStore).noquote().nospace() << "insert query : " << inserted;
        qCDebug(lcStore).noquote().nospace() << "lastError : " << error;
        if (!inserted && firstError.isEmpty())
            firstError = error;
    }
    QSqlDatabase database = connection();
    const bool committed = database.commit();
    qCDebug(lcStore).noquote().nospace() << "commit transaction : " << committed;
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::insertNow : endtime : " << clockText();

    if (!committed) {
        m_perhapsStored = int(batch.size());
        m_perhapsStoredAs = PerhapsStored::AsOneBatch;
        queue().prepend(batch);
        m_troubles.tellWaiting(database.lastError());
    } else if (!firstError.isEmpty()) {
        if (m_spool)
            m_spool->leave(lastOfBatch);
        m_troubles.tell(Trouble::Lost,
                        QStringLiteral("Readings could not be written and are lost: %1").arg(firstError));
    } else {
        if (m_spool)
            m_spool->committed(lastOfBatch);
        releaseWrittenPages(batch.size());
        if (const int dropped = queue().takeDropped())
            emit readingsDropped(dropped);
        m_troubles.writingWorks();
    }
}

void InsertSerialData::releaseWrittenPages(size_t rows)
{
    m_rowsSinceRelease += rows;
    if (m_rowsSinceRelease < rowsBetweenReleases)
        return;
    QSqlQuery(connection()).exec(releasePages);
    m_rowsSinceRelease = 0;
}

quint32 InsertSerialData::rangeEnd(const char *function, const QString &query) const
{
    QSqlQuery range(connection());
    if (!range.exec(query) || !range.next()) {
        qCDebug(lcStore).noquote().nospace() << "InsertSerialData::" << function << " : query error";
        return 0;
    }
    const quint32 time = range.value(0).toUInt();
    qCDebug(lcStore).noquote().nospace() << "InsertSerialData::" << function << " : "
                                         << QDateTime::fromSecsSinceEpoch(time).toString(
                                                QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    return time;
}
