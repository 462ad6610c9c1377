#pragma once

#include "journal/JournalEvent.h"

#include <QByteArray>
#include <QList>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

class EventJournal;
class JournalFile;

/// The thread of a journal, with what waits for it. It outlives its journal while the disk does not answer: the last
/// commit is then finished without anybody to tell. All but the thread's own functions are for the journal's thread.
class JournalWriter : public std::enable_shared_from_this<JournalWriter>
{
public:
    explicit JournalWriter(EventJournal *journal) : m_journal(journal) {}

    /// A writer that was left with the same file comes to its end first.
    void start(const QString &path);
    void append(const JournalEvent &event);
    /// Ends the thread once it has tried to write what waits, or leaves it alone with that after a while.
    void finish();

    QByteArray head() const;
    qint64 entryCount() const;

private:
    void run(const QString &path);
    void awaitEnd();
    bool openFile(JournalFile &file);
    bool write(JournalFile &file);
    void tellFailure(const QString &reason);
    template <typename... Parameters, typename... Arguments>
    void tell(void (EventJournal::*signal)(Parameters...), const Arguments &...arguments);
    QList<JournalEvent> takeWaiting();
    void putBack(const QList<JournalEvent> &events);

    mutable std::mutex m_mutex; // guards everything down to m_entryCount
    std::condition_variable m_news;
    std::condition_variable m_end;
    QList<JournalEvent> m_waiting;
    qint64 m_dropped = 0;
    bool m_hasNews = false;
    bool m_isClosing = false;
    bool m_hasEnded = false;
    QByteArray m_head;
    qint64 m_entryCount = 0;

    std::mutex m_journalMutex; // guards the next
    EventJournal *m_journal;   ///< null when it has left

    // The thread's own.
    std::shared_ptr<JournalWriter> m_predecessor;
    bool m_wasOpened = false;
    bool m_hasFailed = false;

    QString m_path;
    std::thread m_thread;
};
