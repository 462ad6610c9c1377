#pragma once

#include "journal/JournalEntry.h"

#include <QList>
#include <QSqlDatabase>

/// The file of a journal and its only writer; everything on one thread. A file that is no whole journal is set aside
/// untouched, and a new one begun whose first entry says so.
class JournalFile
{
public:
    struct Opening
    {
        QString error;          ///< empty when the file is open
        QDateTime uncleanSince; ///< time of the last entry, when nothing in it closes the project or ends the program
        QString setAside;       ///< where a file is now that was no whole journal
    };

    JournalFile(const QString &path, const QString &user);
    ~JournalFile();
    JournalFile(const JournalFile &) = delete;
    JournalFile &operator=(const JournalFile &) = delete;

    bool isOpen() const { return m_open; }
    Opening open();
    /// Adds them behind each other in one commit that is on the disk when this returns. False, with error(), when none
    /// was added; the file is closed then.
    bool append(const QList<JournalEvent> &events);
    QString error() const { return m_error; }

    /// Hash of the last entry, and how many there are.
    QByteArray head() const { return m_head; }
    qint64 entryCount() const { return m_count; }

private:
    bool setAside(QString &where);
    bool openForWriting();
    bool insert(const JournalEntry &entry);
    bool refuse(const QString &reason);
    void close();

    const QString m_path;
    const QString m_user;
    const QString m_connectionName;
    QSqlDatabase m_database;
    bool m_open = false;
    QByteArray m_openedFile; ///< identity of the file behind the connection
    QString m_error;
    QByteArray m_head;
    qint64 m_count = 0;
};
