#pragma once

#include "store/SpoolChange.h"

#include <QByteArray>
#include <QSqlDatabase>
#include <QString>

#include <vector>

/// Rows on their way into a recording, in a SQLite file with a write-ahead log beside it: what was written is on the
/// disk, and a torn end of the log is recognised by its checksums. To be used by one thread.
class SpoolFile
{
public:
    enum class State { Missing, Whole, Damaged, Unreadable };

    struct Content
    {
        State state = State::Missing;
        std::vector<PendingRow> rows; ///< in the order of their numbers; of a damaged file those that could be read
        qint64 storedUpTo = 0; ///< no row that waits was stored in the recording under this row id or a lower one
        QByteArray takenIn;    ///< digest of the side file of an earlier version whose rows are among these
    };

    using Range = SpoolChange::Range;
    using Change = SpoolChange;

    static QString pathOf(const QString &databaseFile);

    explicit SpoolFile(const QString &path);
    ~SpoolFile();
    SpoolFile(const SpoolFile &) = delete;
    SpoolFile &operator=(const SpoolFile &) = delete;

    QString path() const { return m_path; }
    /// What is in the file, without changing it.
    Content read();
    /// Applies all of @p change or nothing, with a single sync to the disk; makes the file where there is none.
    bool write(const Change &change);
    QString errorText() const { return m_error; }
    /// Whether write() has a file already.
    bool isOpen() const { return !m_openedFile.isEmpty(); }
    /// Whether the file that is written to is no longer the one at its path.
    bool isLost() const;
    void close();
    /// Deletes a file in which no row waits.
    void removeIfEmpty();
    /// Renames the file with its log so that nobody reads or replaces it any more. Returns the new path, empty on
    /// failure.
    static QString setAside(const QString &path);

private:
    QSqlDatabase connection() const;
    bool connect(const QString &options);
    bool mustStay();
    bool openForWriting();
    bool makeTables();
    bool apply(const Change &change);
    bool exec(const QString &statement);
    bool fail(const QSqlError &error);
    Content readOpened();
    bool readRows(Content &content);

    const QString m_path;
    const QString m_connectionName;
    QByteArray m_openedFile; ///< identity of the file that is written to; empty while there is none
    QString m_error;
};
