#pragma once

#include "store/InsertSerialData.h"

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

/// Another program that has the recording open: a connection of its own to the same file.
class OtherProgram
{
public:
    explicit OtherProgram(const QString &databaseFile);
    ~OtherProgram();
    OtherProgram(const OtherProgram &) = delete;
    OtherProgram &operator=(const OtherProgram &) = delete;

    bool exec(const QString &statement) const;
    /// The result's rows, their columns joined by "|"; NULL reads "NULL". One line with the error when it fails.
    QStringList rows(const QString &query) const;

private:
    QString m_connectionName;
};

/// A folder with one recording, "Kitchen.dat", and what tests ask about it.
class Recording
{
public:
    Recording() = default;
    ~Recording();
    Recording(const Recording &) = delete;
    Recording &operator=(const Recording &) = delete;

    QString folder() const { return m_folder.path(); }
    QString file() const { return m_folder.filePath(QStringLiteral("Kitchen.dat")); }
    QString spool() const { return file() + QStringLiteral(".spool"); }
    /// What earlier versions made in the place of the spool.
    QString sideFile() const { return file() + QStringLiteral(".pending"); }
    bool writeSideFile(const std::vector<PendingRow> &rows) const { return writeSideFile(sideFile(), rows); }
    static bool writeSideFile(const QString &path, const std::vector<PendingRow> &rows);
    /// The rows that would be found in the spool if the program ended now, as the terms of a statement, in their order.
    QStringList spooledRows() const;

    /// A store on this recording with a disk of @p freeSpace bytes; nullptr when it cannot be opened.
    std::unique_ptr<InsertSerialData> open(quint64 freeSpace = quint64(1) << 40) const;
    /// Adds so many rows that the first ones are safe from a write that is cut off, all of logger "old"; makes the file
    /// if need be. False when it cannot be written.
    bool outgrowFirstPage() const;
    static constexpr int firstRows = 400;
    /// The rows in the file as "serial|channel 1|channel 2|time", by time and serial.
    QStringList rows() const;
    /// "ok" for a sound file.
    QString integrity() const;

private:
    QTemporaryDir m_folder;
};

PendingRow row(const char *serial, quint32 time, double channel1 = 21.5, double channel2 = 40);
/// Forgets what an earlier test left in the process-wide queue.
void emptyQueue();
