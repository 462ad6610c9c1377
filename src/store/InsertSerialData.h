#pragma once

#include "store/PendingRow.h"

#include <QObject>
#include <QSqlDatabase>

/// The recording of one project: a connection to its SQLite file and the only writer of its readings.
/// Devices append rows to one queue that the whole process shares; insertNow() moves the queue into the file.
class InsertSerialData : public QObject
{
    Q_OBJECT

public:
    /// Nothing is opened yet. The connection will be registered as @p connectionPrefix + "filedb".
    InsertSerialData(const QString &databaseFile, const QString &connectionPrefix, QObject *parent = nullptr);
    /// Keeps the rows that still could not be written beside the recording, then closes it.
    ~InsertSerialData() override;

    /// Opens the file, makes the table where there is none and takes in rows that an earlier run had to leave
    /// beside the recording. False when the file cannot be used; the reason is in the log only.
    bool createConnection();
    bool isOpen() const;

    /// Appends a row to the process-wide queue; also valid while no store is open.
    static void enqueue(const PendingRow &row);
    static int pendingCount();

    /// Writes the whole queue in one transaction. While the file is locked by another program or the disk is nearly
    /// full the rows stay queued. A statement that fails loses its rows: the queue is emptied before it runs.
    void insertNow();

    /// Unix seconds of the earliest and the latest row; 0 for an empty table or a failed query.
    quint32 startDateTime() const;
    quint32 endDateTime() const;

signals:
    /// Readings are not reaching the file. Emitted once until writing works again; @p reason is for the operator.
    void writingFailed(const QString &reason);
    /// The first successful write after writingFailed().
    void writingRestored();
};
