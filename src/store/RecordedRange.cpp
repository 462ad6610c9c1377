#include "store/RecordedRange.h"

#include "store/InsertSerialData.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTimer>
#include <QUuid>
#include <QVariant>

#include <algorithm>

namespace {

// Nothing but reading, no waiting for whoever has the file locked, and little memory for what is read only once.
const QString onlyALook = QStringLiteral("QSQLITE_OPEN_READONLY;QSQLITE_BUSY_TIMEOUT=0");
const QString modestCache = QStringLiteral("PRAGMA cache_size = 256");

// A few minutes for the largest recordings.
constexpr int betweenStepsMs = 5;

QString rowsFrom(const QString &condition)
{
    return QStringLiteral("select id, pointDate from ostrivane %1 limit %2")
        .arg(condition)
        .arg(RecordedRange::rowsPerStep);
}

} // namespace

RecordedRange::RecordedRange(const InsertSerialData &store, const QString &databaseFile, QObject *parent)
    : QObject(parent), m_store(store), m_connectionName(QUuid::createUuid().toString()), m_steps(new QTimer(this))
{
    connect(m_steps, &QTimer::timeout, this, &RecordedRange::step);
    m_isIndexed = !open(databaseFile) || hasTimeIndex();
    if (m_isIndexed)
        return;
    m_searchedUpTo = lookAt(rowsFrom(QStringLiteral("order by id"))).value_or(0);
    lookAtNewest();
}

RecordedRange::~RecordedRange()
{
    connection().close();
    QSqlDatabase::removeDatabase(m_connectionName);
}

quint32 RecordedRange::start()
{
    if (m_isIndexed)
        return m_store.startDateTime();
    lookAtNewest();
    return m_start;
}

quint32 RecordedRange::end()
{
    if (m_isIndexed)
        return m_store.endDateTime();
    lookAtNewest();
    return m_end;
}

bool RecordedRange::isSearching() const
{
    return m_steps->isActive();
}

QSqlDatabase RecordedRange::connection() const
{
    return QSqlDatabase::database(m_connectionName, false);
}

bool RecordedRange::open(const QString &databaseFile)
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    database.setDatabaseName(databaseFile);
    database.setConnectOptions(onlyALook);
    return database.open() && QSqlQuery(database).exec(modestCache);
}

bool RecordedRange::hasTimeIndex() const
{
    QSqlQuery plan(connection());
    return plan.exec(QStringLiteral("explain query plan select min(pointDate) from ostrivane")) && plan.next() &&
           plan.value(3).toString().contains(QLatin1String("INDEX"));
}

/// The highest id of these rows, 0 when there are none; nothing when the file cannot be read at present.
std::optional<qint64> RecordedRange::lookAt(const QString &rows)
{
    QSqlQuery query(connection());
    if (!query.exec(QStringLiteral("select max(id), min(pointDate), max(pointDate) from (%1)").arg(rows)) ||
        !query.next())
        return std::nullopt;
    if (query.isNull(0))
        return 0;
    const quint32 earliest = query.value(1).toUInt();
    m_start = m_hasRows ? std::min(m_start, earliest) : earliest;
    m_end = std::max(m_end, query.value(2).toUInt());
    m_hasRows = true;
    return query.value(0).toLongLong();
}

/// What lies before them is looked at in steps.
void RecordedRange::lookAtNewest()
{
    const std::optional<qint64> newest = lookAt(rowsFrom(QStringLiteral("order by id desc")));
    if (newest != 0 && newest.value_or(m_searchedUpTo + 1) > m_searchedUpTo && !m_steps->isActive())
        m_steps->start(betweenStepsMs);
}

void RecordedRange::step()
{
    const std::optional<qint64> last =
        lookAt(rowsFrom(QStringLiteral("where id > %1 order by id").arg(m_searchedUpTo)));
    if (!last)
        return;
    if (*last > 0) {
        m_searchedUpTo = *last;
        return;
    }
    m_steps->stop();
    emit known();
}
