#pragma once

#include "journal/JournalEvent.h"

#include <QList>
#include <QObject>
#include <condition_variable>
#include <mutex>
#include <thread>

class JournalFile;

/// Keeps what happens in a journal beside the recording, on a thread of its own. Trouble with the journal is told once
/// and tried again, every few seconds and with every event; so many events as fit into memory wait meanwhile.
class EventJournal : public QObject
{
    Q_OBJECT

public:
    /// So many events wait at most; those that come then are counted only.
    static constexpr int longestQueue = 10000;

    explicit EventJournal(QObject *parent = nullptr) : QObject(parent) {}
    ~EventJournal() override;

    /// Opens the journal at @p path, or begins one; how that went is told by signals. To be called once.
    void open(const QString &path);
    /// Returns at once, whatever the disk does. What comes before open() waits for it.
    void append(JournalEvent event);
    /// Tries once more to write what waits and closes the file; returns when that is done.
    void close();

    /// Hash of the last entry that is on the disk; empty before there is an open journal.
    QByteArray head() const;
    qint64 entryCount() const;

signals:
    // Emitted by the journal's own thread.
    /// The last entry, of @p last, neither closed the project nor ended the program.
    void unclean(const QDateTime &last);
    /// A file that was no whole journal is now @p path.
    void setAside(const QString &path);
    /// @p reason is a sentence for the operator.
    void failed(const QString &reason);
    void restored();

private:
    void run(const QString &path);
    bool openFile(JournalFile &file);
    bool write(JournalFile &file);
    void tellFailure(const QString &reason);
    QList<JournalEvent> takeWaiting();
    void putBack(const QList<JournalEvent> &events);

    mutable std::mutex m_mutex; // guards everything down to m_head
    std::condition_variable m_news;
    QList<JournalEvent> m_waiting;
    qint64 m_dropped = 0;
    bool m_hasNews = false;
    bool m_isClosing = false;
    QByteArray m_head;
    qint64 m_entryCount = 0;

    // The journal thread's own.
    bool m_wasOpened = false;
    bool m_hasFailed = false;
    std::thread m_thread;
};
