#pragma once

#include <QByteArray>

#include <array>
#include <optional>
#include <vector>

/// The structures inside one page of an SQLite file, read without trust: whatever the bytes are, nothing outside of
/// them is looked at. https://sqlite.org/fileformat.html
namespace SqlitePage {

constexpr int fileHeaderSize = 100;

enum class Kind { IndexInterior = 2, TableInterior = 5, IndexLeaf = 10, TableLeaf = 13 };

quint32 bigEndian(const QByteArray &bytes, int offset, int size);
/// The number of bytes read; 0 when the number is cut off by the end of the bytes.
int readVarint(const QByteArray &bytes, int offset, quint64 &value);

struct Cell
{
    int offset = 0;
    int size = 0;        ///< with the overflow page's number
    quint32 child = 0;   ///< interior pages only
    qint64 rowId = 0;    ///< tables only
    quint64 payload = 0; ///< size of the whole record; none in table interiors
    int localOffset = 0; ///< the part of the record on this page
    int localSize = 0;
    quint32 overflow = 0; ///< the page where the record goes on, or 0
};

class Page
{
public:
    /// Nothing unless the bytes begin like a page of a table or an index. @p usable: page size less the reserved bytes.
    static std::optional<Page> parse(const QByteArray &bytes, quint32 number, int usable);

    quint32 number() const { return m_number; }
    Kind kind() const { return m_kind; }
    bool isLeaf() const { return m_kind == Kind::IndexLeaf || m_kind == Kind::TableLeaf; }
    int cellCount() const { return m_cellCount; }
    quint32 rightChild() const { return m_rightChild; }
    const QByteArray &bytes() const { return m_bytes; }
    /// Nothing when the cell does not lie within the page.
    std::optional<Cell> cell(int index) const;
    /// The cell of a table's leaf that would begin there, whatever the page's own directory says.
    std::optional<Cell> cellAt(int offset) const;
    /// Whether cells and free blocks share out the page without a gap and without overlapping.
    bool isSound() const;

private:
    int headerEnd() const;
    std::optional<Cell> readCell(int offset, Kind kind) const;
    bool addFreeBlocks(std::vector<std::pair<int, int>> &areas) const;

    QByteArray m_bytes;
    quint32 m_number = 0;
    int m_usable = 0;
    int m_header = 0;
    Kind m_kind = Kind::TableLeaf;
    int m_cellCount = 0;
    int m_contentStart = 0;
    quint32 m_rightChild = 0;
};

/// One column of a record, still encoded.
struct Column
{
    quint64 type = 0;
    int offset = 0;
    int size = 0;
};

constexpr int maxColumns = 5;

struct Record
{
    std::array<Column, maxColumns> columns;
    int count = 0;
};

/// Nothing when the record is cut off, has bytes left over, or more columns than any of ours.
std::optional<Record> parseRecord(const QByteArray &payload);
bool isNull(const Column &column);
bool isInteger(const Column &column);
bool isText(const Column &column);
qint64 integer(const QByteArray &payload, const Column &column);
/// A number of either kind.
std::optional<double> number(const QByteArray &payload, const Column &column);
QByteArray text(const QByteArray &payload, const Column &column);

} // namespace SqlitePage
