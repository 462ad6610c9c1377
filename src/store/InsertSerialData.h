#pragma once

#include "store/PendingRow.h"
#include "store/Salvage.h"
#include "store/StoredRows.h"
#include "store/WritingTroubles.h"

#include <QObject>
#include <QSqlDatabase>
#include <QSqlError>

#include <functional>
#include <memory>

class RecordingSpool;

/// What was found and saved when a recording was opened.
struct OpeningReport
{
    int rowsReplayed = 0; ///< had waited beside the recording since an earlier run
    int rowsSalvaged = 0; ///< were read out of a torn recording
    QString tornFile;     ///< where that is now
    QString damagedSpool; ///< where a file of waiting rows is now that could not be read to its end
};

/// The recording of one project: a connection to its SQLite file and the only writer of its readings.
/// Devices append rows to one queue that the whole process shares; insertNow() moves the queue into the file. What is
/// queued while a store is open outlives the program from then on, and goes to a spool file beside the recording within
/// a second, without waiting for it: the next store that opens the recording finds what an interrupted one had not
/// written.
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
    /// Tries once more to write the queue, sees that what still could not be written is in the spool, then closes the
    /// recording. The queue of a store that was never open is left alone.
    ~InsertSerialData() override;

    /// Opens the file, makes the table where there is none and queues the rows that an earlier run has left beside
    /// the recording; a file that cannot be written to is opened for reading only. False when the file cannot
    /// be used; the reason is in the log only.
    bool createConnection();
    /// Told how far a torn recording is read while createConnection() puts a new one in its place. Given up, it stays
    /// as it is, and is not opened.
    void setSalvageProgress(const SalvageProgress &progress) { m_salvageProgress = progress; }
    bool isOpen() const;
    /// Whether an open recording is for looking at: nothing is written into it, rows stay where they are.
    bool isReadOnly() const;
    /// Of the last createConnection().
    const OpeningReport &openingReport() const { return m_openingReport; }

    /// So many rows wait at most while they cannot be put on the disk; what comes then is lost.
    static constexpr int mostRowsInMemory = 200000;
    /// Appends a row to the process-wide queue; also valid while no store is open.
    static void enqueue(const PendingRow &row);
    /// Appends @p rows and, in the same step, lets @p held outlive the program as well: readings that are shown while
    /// it is open what is to be recorded for them. They take the places of those held under the numbers @p before;
    /// returns the numbers of the new ones.
    static std::vector<qint64> enqueue(const std::vector<PendingRow> &rows, const std::vector<qint64> &before,
                                       const std::vector<PendingRow> &held);
    static int pendingCount();

    /// Writes the whole queue in one transaction. While the file is locked by another program or gone from its place,
    /// or the disk is nearly full, the rows stay queued. A statement that fails loses its rows; those of a failed
    /// commit stay queued.
    void insertNow();
    /// Lets the rows queued so far go to the disk at once, as before a new round of readings.
    void saveQueuedRows();

    /// Unix seconds of the earliest and the latest row; 0 for an empty table or a failed query.
    quint32 startDateTime() const;
    quint32 endDateTime() const;

signals:
    /// Readings are not reaching the file. Until writing works again each kind of failure (file in use, file gone,
    /// disk nearly full, write refused, rows not saved meanwhile, readings lost) is told once; @p reason is a sentence
    /// for the operator.
    void writingFailed(const QString &reason);
    /// The first successful write after writingFailed().
    void writingRestored();
    /// So many readings found no place in memory since writing failed; told before writingRestored().
    void readingsDropped(int count);

private:
    QSqlDatabase connection() const;
    bool replaceIfTorn();
    void startSpool();
    void endSpool();
    static bool hasRoom();
    void slotSpoolLost();
    bool takeExclusiveLock();
    QSqlError dropRowsAlreadyStored();
    void writeBatch();
    void releaseWrittenPages(size_t rows);
    quint32 rangeEnd(const char *function, const QString &query) const;

    bool m_open = false;
    bool m_readOnly = false;
    QString m_databaseFile;
    QByteArray m_openedFile; ///< identity of the file behind the connection
    QString m_connectionName;
    QString m_folder;
    FreeSpace m_freeSpace;
    SalvageProgress m_salvageProgress;
    OpeningReport m_openingReport;
    std::unique_ptr<RecordingSpool> m_spool; ///< while rows can be written
    /// So many rows at the front of the queue may be in the recording already, under row ids above the spool's.
    int m_perhapsStored = 0;
    PerhapsStored m_perhapsStoredAs = PerhapsStored::AsOneBatch;
    size_t m_rowsSinceRelease = 0;
    WritingTroubles m_troubles;
};
