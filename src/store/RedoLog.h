#pragma once

#include "store/SpoolChange.h"

#include <QFile>
#include <QStringList>

#include <memory>

/// The changes that the spool of a recording has still to bring to the disk, in memory that outlives the program: a
/// mapped file in one of memoryFolders(), used as a ring. Nothing here waits for a disk. To be used by one program at a
/// time and, in it, by one thread at a time.
class RedoLog
{
public:
    /// Opens the log of a recording with what an earlier run has left in it, or makes an empty one in the first of
    /// @p folders that has room. Null, with the reason in the diagnostics, where the log is in use or nowhere is room.
    static std::unique_ptr<RedoLog> open(const QString &databaseFile, const QStringList &folders);
    /// An empty log leaves no file.
    ~RedoLog();
    RedoLog(const RedoLog &) = delete;
    RedoLog &operator=(const RedoLog &) = delete;

    QString path() const { return m_file.fileName(); }
    bool isEmpty() const { return begin() >= end(); }
    /// All changes as one; nothing changes when it is applied to what has some of them already.
    SpoolChange content() const;
    /// Adds all of @p change or nothing, whenever the program ends. False when there is no room for it.
    bool append(const SpoolChange &change);
    /// Where the next change will stand.
    quint64 end() const;
    /// The changes that stand before @p position are on the disk.
    void discard(quint64 position);

private:
    explicit RedoLog(const QString &path) : m_file(path) {}
    bool openExisting(const QByteArray &recording);
    bool make(const QByteArray &recording);
    bool addZeros(qint64 count);
    bool map();
    void unmap();
    bool makeRoomFor(quint64 size);
    quint64 read(SpoolChange &content) const;

    quint64 begin() const;
    quint64 ring() const;
    void copyIn(quint64 ring, quint64 position, const QByteArray &bytes);
    QByteArray copyOut(quint64 position, quint64 size) const;

    QFile m_file;
    uchar *m_memory = nullptr;
};
