#pragma once

#include "journal/JournalEvent.h"

#include <QObject>
#include <memory>

class JournalWriter;

/// Keeps what happens in a journal beside the recording, on a thread of its own. Trouble with the journal is told once
/// and tried again, every few seconds and with every event; so many events as fit into memory wait meanwhile.
class EventJournal : public QObject
{
    Q_OBJECT

public:
    /// So many events wait at most; those that come then are counted only.
    static constexpr int longestQueue = 10000;

    explicit EventJournal(QObject *parent = nullptr);
    ~EventJournal() override;

    /// Opens the journal at @p path, or begins one; how that went is told by signals. To be called once.
    void open(const QString &path);
    /// Returns at once, whatever the disk does. What comes before open() waits for it.
    void append(JournalEvent event);
    /// Tries once more to write what waits and closes the file; returns when that is done, or when the disk has not
    /// answered for two seconds. What it was given is then written when it does.
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
    std::shared_ptr<JournalWriter> m_writer;
};
