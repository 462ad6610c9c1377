#pragma once

#include "store/PendingRow.h"
#include "store/PendingRowFile.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlError>

#include <functional>
#include <set>

/// What the opening of a recording had to mend.
struct OpeningReport
{
    int rowsReplayed = 0; ///< taken in from beside the recording
    int rowsSalvaged = 0; ///< read from a torn file
    QString tornFile;     ///< where that is kept; empty when the recording was whole
};

/// The recording of one project: a connection to its SQLite file and the only writer of its readings.
/// Devices append rows to one queue that the whole process shares; insertNow() moves the queue into the file.
/// While another program has the file locked, opening it waits up to 5 s, any other call about 50 ms.
class InsertSerialData : public QObject
{
    Q_OBJECT

public:
    /// Bytes that can still be written in a folder.
    using FreeSpace = std::function<quint64(const QString &folder)>;
    static quint64 diskFreeSpace(const QString &folder);

    /// Nothing is opened yet. The connection will be registered as @p connectionPrefix + "filedb".
    InsertSerialData(const QString &databaseFile, const QString &connectionPrefix, QObject *parent = nullptr,
                     FreeSpace freeSpace = diskFreeSpace);
    /// Tries once more to write the queue, keeps beside the recording what still could not be written, then closes
    /// it. The queue of a store that was never open is left alone.
    ~InsertSerialData() override;

    /// Opens the file, makes the table where there is none and takes in rows that an earlier run had to leave
    /// beside the recording; a file that cannot be written to is opened for reading only. False when the file cannot
    /// be used; the reason is in the log only.
    bool createConnection();
    bool isOpen() const;
    /// Whether an open recording is for looking at: nothing is written into it, rows stay where they are.
    bool isReadOnly() const;
    OpeningReport openingReport() const;

    /// Appends a row to the process-wide queue; also valid while no store is open.
    static void enqueue(const PendingRow &row);
    static int pendingCount();

    /// Writes the whole queue in one transaction. While the file is locked by another program or gone from its place,
    /// or the disk is nearly full, the rows stay queued. A statement that fails loses its rows; those of a failed
    /// commit stay queued.
    void insertNow();

    /// Unix seconds of the earliest and the latest row; 0 for an empty table or a failed query.
    quint32 startDateTime() const;
    quint32 endDateTime() const;

signals:
    /// Readings are not reaching the file. Until writing works again each kind of failure (file in use, file gone,
    /// disk nearly full, write refused, readings lost) is told once; @p reason is a sentence for the operator.
    void writingFailed(const QString &reason);
    /// The first successful write after writingFailed().
    void writingRestored();

private:
    enum class Failure { InUse, Gone, DiskNearlyFull, Waiting, Lost };

    QSqlDatabase connection() const;
    bool openConnection();
    bool prepareForWriting();
    void replaceIfTorn();
    void takeInKeptRows();
    void keepRows();
    bool takeExclusiveLock();
    QSqlError dropRowsAlreadyStored();
    void writeBatch();
    void releaseWrittenPages(size_t rows);
    void fail(Failure kind, const QString &reason);
    void failWaiting(const QSqlError &error);
    void succeed();
    quint32 rangeEnd(const char *function, const QString &query) const;

    bool m_open = false;
    bool m_readOnly = false;
    QString m_databaseFile;
    QByteArray m_openedFile; ///< identity of the file behind the connection
    QString m_connectionName;
    QString m_folder;
    FreeSpace m_freeSpace;
    PendingRowFile m_rowFile;
    /// Every row of the side file is in the queue, too: once those are committed the file has done its work.
    bool m_rowFileIsQueued = false;
    /// So many rows at the front of the queue may be in the recording already.
    int m_perhapsStored = 0;
    OpeningReport m_openingReport;
    size_t m_rowsSinceRelease = 0;
    std::set<Failure> m_failures;
};
