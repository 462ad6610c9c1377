#pragma once

#include "support/RecordedRows.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>

/// Looks into a recording as any other program would, through a connection of its own.
class RecordingReader
{
public:
    explicit RecordingReader(const QString &file);
    ~RecordingReader();
    RecordingReader(const RecordingReader &) = delete;
    RecordingReader &operator=(const RecordingReader &) = delete;

    /// All rows by time, those of one second in the order in which they were stored.
    QList<RecordedRow> rows();
    /// Batch after batch; the rows of one batch are in no order of time.
    QList<RecordedRow> rowsAsStored();
    /// "ok", or what SQLite finds damaged.
    QString integrity();

    /// Begins reading and does not end it, as a viewer does while it draws; nobody can write meanwhile. False when
    /// the file cannot be read.
    bool hold();
    void letGo();

private:
    QList<RecordedRow> rowsBy(const QString &order);

    QString m_connection;
    QSqlDatabase m_database;
    QSqlQuery m_held;
};

/// The rows of one logger that carry values.
QList<RecordedRow> readingsOf(const QString &serial, const QList<RecordedRow> &rows);
