#pragma once

#include "watch/WatchProtocol.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

class QRandomGenerator;

/// What a folder holds after the power was cut, worked out from what it held before and a log of the changes since.
///
/// Of a file, what a sync that had returned covered is there. Of each write after it any part may be there, or nothing:
/// writes are cut at borders of 512 bytes, and the parts reach the disk in any order. A file that grew without all of
/// its writes has zeros between. Files come, go and change their names in the order in which they did, as with the
/// journals of today's file systems, as far as they got: at least up to the last that concerned a synced file or came
/// before a sync of the folder. Each file fares on its own.
///
/// Not in the model: disks that lie about a sync, lose synced sectors next to those being written, or write a sector
/// half; file systems that lose or mix the order of names; what is written through a mapping. Shared memory of SQLite
/// is such, but it is made anew after a cut and left out.
class DiskModel
{
public:
    using Content = QMap<QString, QByteArray>; ///< by name

    /// What is there is on the disk.
    explicit DiskModel(const QString &folder);

    /// Takes note of the OperationRecords of a log; a cut one at its end counts for nothing.
    void play(const QByteArray &log);
    /// Only what is certain.
    Content synced() const;
    Content afterCut(QRandomGenerator &random) const;

    /// Makes a folder hold this and nothing else. False when it cannot be written.
    static bool put(const Content &content, const QString &folder);

private:
    struct Change
    {
        bool isTruncation;
        qint64 offset;
        QByteArray bytes;
    };
    struct File
    {
        QByteArray synced;
        QList<Change> pending;
        int underSync = 0; ///< changes that the sync under way covers
    };
    struct NameChange
    {
        watch::Operation operation;
        QString from;
        QString to;
        int file;
    };
    using Names = QMap<QString, int>;

    void play(const watch::OperationRecord &record, const QByteArray &text);
    void playName(watch::Operation operation, const QByteArray &text);
    void change(quint64 inode, const Change &change);
    void beginSync(quint64 inode);
    void endSync(quint64 inode);
    QString nameOf(const QByteArray &path) const;
    Names namesAfter(int changes) const;
    static void apply(const Change &change, QByteArray &content);
    static QByteArray torn(const File &file, QRandomGenerator &random);
    static QList<Change> sectorsOf(const Change &change);

    QString m_folder;
    QList<File> m_files;
    Names m_namesBefore;
    QList<NameChange> m_nameChanges;
    int m_namesSynced = 0;    ///< changes that are certain
    int m_namesUnderSync = 0; ///< those that the sync of the folder under way covers
    QMap<quint64, int> m_inodes;
};
