#include "store/RecordingTail.h"

#include <algorithm>
#include <limits>

namespace {

// More rows than wait for one commit as a rule.
constexpr int rowsLookedAt = 2000;
constexpr quint32 pagesLookedAt = 64;
constexpr int deepestTree = 20;
// A recording frees no pages. Somebody who deletes from it may.
constexpr int freeListTrunksLookedAt = 32;
constexpr int freeListField = 32;
constexpr int freePagesField = 36;
// SQLite leaves out the page on which its locks lie.
constexpr qint64 lockByte = 0x40000000;

bool isZero(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char byte) { return byte == 0; });
}

} // namespace

RecordingTail::RecordingTail(PageFile &file, const RecordingLayout &layout) : m_file(file), m_layout(layout) {}

bool RecordingTail::isSound()
{
    if (m_layout.sequence != 0 && !soundPage(m_layout.sequence, true))
        return false;
    m_oldestOfThem = std::numeric_limits<qint64>::max();
    if (!collectNewestRows(m_layout.table, 0) || !checkFreeList())
        return false;
    // Then the index has nothing to say about any older row.
    if (m_newest.size() < rowsLookedAt)
        m_oldestOfThem = std::numeric_limits<qint64>::min();
    if (m_layout.index != 0) {
        // The largest key of all leads to the leaf where rows are missing that the index does know.
        constexpr qint64 largest = std::numeric_limits<qint64>::max();
        if (!descend(m_layout.index, {largest, largest}, 0))
            return false;
        for (auto row = m_newest.cbegin(); row != m_newest.cend(); ++row) {
            if (!m_indexed.contains(row.key()) && !isIndexed({row.value(), row.key()}))
                return false;
        }
    }
    return !m_layout.onlyOurs || checkLastPages();
}

std::optional<SqlitePage::Page> RecordingTail::soundPage(quint32 number, bool ofTable)
{
    using Kind = SqlitePage::Kind;
    if (number > m_file.pageCount())
        return std::nullopt;
    std::optional<SqlitePage::Page> page = m_file.page(number);
    if (!page || ofTable != (page->kind() == Kind::TableLeaf || page->kind() == Kind::TableInterior))
        return std::nullopt;
    if (!m_sound.contains(number)) {
        if (!page->isSound())
            return std::nullopt;
        m_sound.insert(number);
    }
    return page;
}

/// From the newest row backwards; false when the tree breaks off.
bool RecordingTail::collectNewestRows(quint32 number, int depth)
{
    const std::optional<SqlitePage::Page> page = soundPage(number, true);
    if (!page || depth > deepestTree)
        return false;
    if (page->isLeaf())
        return takeLeaf(*page);
    if (!collectNewestRows(page->rightChild(), depth + 1))
        return false;
    for (int i = page->cellCount() - 1; i >= 0 && m_newest.size() < rowsLookedAt; --i) {
        const std::optional<SqlitePage::Cell> cell = page->cell(i);
        if (!cell || cell->rowId >= m_oldestOfThem || !collectNewestRows(cell->child, depth + 1))
            return false;
    }
    return true;
}

bool RecordingTail::takeLeaf(const SqlitePage::Page &leaf)
{
    // A leaf without rows is only the root of an empty table.
    if (leaf.cellCount() == 0)
        return leaf.number() == m_layout.table;
    for (int i = leaf.cellCount() - 1; i >= 0; --i) {
        const std::optional<SqlitePage::Cell> cell = leaf.cell(i);
        const std::optional<StoredRow> row = cell ? storedRow(cell->rowId, m_file.payload(leaf, *cell)) : std::nullopt;
        if (!row || row->rowId >= m_oldestOfThem)
            return false;
        m_newest.insert(row->rowId, row->time);
        m_oldestOfThem = row->rowId;
        m_newestId = std::max(m_newestId, row->rowId);
    }
    return true;
}

std::optional<RecordingTail::Key> RecordingTail::indexKey(const SqlitePage::Page &page, int index)
{
    const std::optional<SqlitePage::Cell> cell = page.cell(index);
    const QByteArray payload = cell ? m_file.payload(page, *cell) : QByteArray();
    const std::optional<SqlitePage::Record> record = SqlitePage::parseRecord(payload);
    if (!record || record->count != 2 || !SqlitePage::isInteger(record->columns[0]) ||
        !SqlitePage::isInteger(record->columns[1]))
        return std::nullopt;
    return Key{SqlitePage::integer(payload, record->columns[0]), SqlitePage::integer(payload, record->columns[1])};
}

bool RecordingTail::isIndexed(const Key &key)
{
    return descend(m_layout.index, key, std::numeric_limits<quint32>::max());
}

/// Whether what the index says agrees with the newest rows.
bool RecordingTail::checkEntry(const Key &key) const
{
    if (key.rowId < m_oldestOfThem)
        return true;
    const auto row = m_newest.constFind(key.rowId);
    return row != m_newest.constEnd() && row.value() == key.time;
}

/// All that stands here is where it belongs: none of it need be looked for any more.
bool RecordingTail::checkIndexLeaf(const SqlitePage::Page &leaf, const Bounds &bounds)
{
    if (m_checkedLeaves.contains(leaf.number()))
        return true;
    m_checkedLeaves.insert(leaf.number());
    Key before = bounds.above;
    for (int i = 0; i < leaf.cellCount(); ++i) {
        const std::optional<Key> key = indexKey(leaf, i);
        if (!key || !(before < *key) || !(*key < bounds.below) || !checkEntry(*key))
            return false;
        m_indexed.insert(key->rowId);
        before = *key;
    }
    return true;
}

/// The page below where a key belongs, 0 when the page cannot be read; @p found when the key stands here itself.
quint32 RecordingTail::childTowards(const SqlitePage::Page &page, const Key &key, Bounds &bounds, bool &found)
{
    const bool ofTable = page.kind() == SqlitePage::Kind::TableInterior;
    int low = 0;
    int high = page.cellCount();
    while (low < high) {
        const int middle = (low + high) / 2;
        const std::optional<SqlitePage::Cell> cell = page.cell(middle);
        const std::optional<Key> there = !cell     ? std::nullopt
                                         : ofTable ? std::optional<Key>(Key{0, cell->rowId})
                                                   : indexKey(page, middle);
        if (!there || (!ofTable && !checkEntry(*there)))
            return 0;
        if (*there < key) {
            low = middle + 1;
            bounds.above = *there;
        } else {
            high = middle;
            bounds.below = *there;
        }
        found = found || (!ofTable && !(*there < key) && !(key < *there));
    }
    const std::optional<SqlitePage::Cell> cell = page.cell(low);
    return low == page.cellCount() ? page.rightChild() : cell ? cell->child : 0;
}

/// Goes down to where @p key belongs. True when the way leads over the page @p wanted; for the largest number, when the
/// key is there; for 0, when the way can be gone at all.
bool RecordingTail::descend(quint32 root, const Key &key, quint32 wanted)
{
    const bool ofTable = root == m_layout.table;
    quint32 number = root;
    Bounds bounds;
    for (int depth = 0; depth < deepestTree; ++depth) {
        if (number == wanted)
            return true;
        const std::optional<SqlitePage::Page> page = soundPage(number, ofTable);
        if (!page)
            return false;
        if (page->isLeaf()) {
            if (!ofTable && !checkIndexLeaf(*page, bounds))
                return false;
            if (wanted != std::numeric_limits<quint32>::max())
                return wanted == 0;
            int low = 0;
            int high = page->cellCount();
            while (low < high) {
                const int middle = (low + high) / 2;
                const std::optional<Key> there = indexKey(*page, middle);
                if (!there)
                    return false;
                if (*there < key)
                    low = middle + 1;
                else
                    high = middle;
            }
            const std::optional<Key> there = indexKey(*page, low);
            return there && !(key < *there);
        }
        bool found = false;
        number = childTowards(*page, key, bounds, found);
        if (found && wanted == std::numeric_limits<quint32>::max())
            return true;
    }
    return false;
}

bool RecordingTail::checkFreeList()
{
    quint32 trunk = m_file.headerField(freeListField);
    const quint32 total = m_file.headerField(freePagesField);
    if ((trunk == 0) != (total == 0) || total >= m_file.pageCount())
        return false;
    const quint32 leavesAtMost = quint32(m_file.usableSize()) / 4 - 2;
    for (int i = 0; i < freeListTrunksLookedAt && trunk != 0; ++i) {
        const QByteArray bytes = trunk <= m_file.pageCount() ? m_file.bytes(trunk) : QByteArray();
        const quint32 leaves = SqlitePage::bigEndian(bytes, 4, 4);
        if (bytes.isEmpty() || leaves > leavesAtMost || m_free.contains(trunk))
            return false;
        m_free.insert(trunk);
        for (quint32 leaf = 0; leaf < leaves; ++leaf)
            m_free.insert(SqlitePage::bigEndian(bytes, int(8 + 4 * leaf), 4));
        trunk = SqlitePage::bigEndian(bytes, 0, 4);
    }
    return trunk != 0 || quint32(m_free.size()) == total;
}

/// A page that a cut commit has left behind belongs to no tree.
bool RecordingTail::checkLastPages()
{
    if (m_file.headerField(freeListField) != 0)
        return true;
    const quint32 last = m_file.pageCount();
    const auto lockPage = quint32(lockByte / m_file.pageSize() + 1);
    for (quint32 number = std::max<quint32>(2, last - std::min(last, pagesLookedAt) + 1); number <= last; ++number) {
        if (number == m_layout.table || number == m_layout.sequence || number == m_layout.index || number == lockPage)
            continue;
        const std::optional<SqlitePage::Page> page = m_file.page(number);
        // The second page of a long record looks like anything, but never like nothing.
        if (page ? !isInUse(*page) : isZero(m_file.bytes(number)))
            return false;
    }
    return true;
}

bool RecordingTail::isInUse(const SqlitePage::Page &page)
{
    using Kind = SqlitePage::Kind;
    const bool ofTable = page.kind() == Kind::TableLeaf || page.kind() == Kind::TableInterior;
    const std::optional<SqlitePage::Cell> first = page.cell(0);
    const quint32 root = ofTable ? m_layout.table : m_layout.index;
    if (!first || root == 0)
        return false;
    const std::optional<Key> key = ofTable ? Key{0, first->rowId} : indexKey(page, 0);
    return key && descend(root, *key, page.number());
}
