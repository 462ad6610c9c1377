#include "RecordingReader.h"

#include <QUuid>

#include <algorithm>
#include <iterator>

RecordingReader::RecordingReader(const QString &file) : m_connection(QUuid::createUuid().toString())
{
    m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connection);
    m_database.setDatabaseName(file);
    m_database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    m_database.open();
}

RecordingReader::~RecordingReader()
{
    m_held = QSqlQuery();
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connection);
}

QList<RecordedRow> RecordingReader::rows()
{
    return rowsBy(QStringLiteral("pointDate, id"));
}

QList<RecordedRow> RecordingReader::rowsAsStored()
{
    return rowsBy(QStringLiteral("id"));
}

QList<RecordedRow> RecordingReader::rowsBy(const QString &order)
{
    QSqlQuery query(m_database);
    query.setForwardOnly(true);
    query.exec(QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane order by ") + order);
    QList<RecordedRow> rows;
    while (query.next())
        rows.append({query.value(0).toString(), query.value(1), query.value(2), query.value(3).toUInt()});
    return rows;
}

QString RecordingReader::integrity()
{
    QSqlQuery query(m_database);
    query.exec(QStringLiteral("PRAGMA integrity_check"));
    return query.next() ? query.value(0).toString() : QStringLiteral("not readable");
}

bool RecordingReader::hold()
{
    m_held = QSqlQuery(m_database);
    return m_held.exec(QStringLiteral("begin")) && m_held.exec(QStringLiteral("select * from ostrivane")) &&
           m_held.next();
}

void RecordingReader::letGo()
{
    m_held.exec(QStringLiteral("commit"));
    m_held = QSqlQuery();
}

QList<RecordedRow> readingsOf(const QString &serial, const QList<RecordedRow> &rows)
{
    QList<RecordedRow> readings;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(readings),
                 [&serial](const RecordedRow &row) { return row.serial == serial && !row.isGap(); });
    return readings;
}
