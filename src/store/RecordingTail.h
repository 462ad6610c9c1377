#pragma once

#include "store/RecordingLayout.h"

#include <QHash>
#include <QSet>

#include <limits>

/// Looks at what a commit writes, which is at the end of a recording: the newest rows, whether the index knows them and
/// no others, and the last pages of the file. What a recording of any size takes is the same.
class RecordingTail
{
public:
    RecordingTail(PageFile &file, const RecordingLayout &layout);

    /// False when something a commit should have brought is missing or half there.
    bool isSound();

private:
    struct Key
    {
        qint64 time = 0;
        qint64 rowId = 0;
        friend bool operator<(const Key &a, const Key &b)
        {
            return a.time != b.time ? a.time < b.time : a.rowId < b.rowId;
        }
    };

    /// What the pages above say of the keys below them: all lie between these.
    struct Bounds
    {
        Key above{std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min()};
        Key below{std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::max()};
    };

    std::optional<SqlitePage::Page> soundPage(quint32 number, bool ofTable);
    std::optional<Key> indexKey(const SqlitePage::Page &page, int cell);
    bool collectNewestRows(quint32 page, int depth);
    bool takeLeaf(const SqlitePage::Page &leaf);
    bool isIndexed(const Key &key);
    bool checkIndexLeaf(const SqlitePage::Page &leaf, const Bounds &bounds);
    bool checkEntry(const Key &key) const;
    bool checkFreeList();
    bool checkLastPages();
    bool isInUse(const SqlitePage::Page &page);
    quint32 childTowards(const SqlitePage::Page &page, const Key &key, Bounds &bounds, bool &found);
    bool descend(quint32 root, const Key &key, quint32 wanted);

    PageFile &m_file;
    RecordingLayout m_layout;
    QSet<quint32> m_sound;
    QSet<quint32> m_checkedLeaves;
    QSet<qint64> m_indexed; ///< row ids that stand in these
    QSet<quint32> m_free;
    QHash<qint64, qint64> m_newest; ///< times of the newest rows by row id
    qint64 m_oldestOfThem = 0;
    qint64 m_newestId = 0;
};
