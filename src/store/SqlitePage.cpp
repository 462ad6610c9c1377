#include "store/SqlitePage.h"

#include <algorithm>
#include <cstring>

namespace SqlitePage {

namespace {

constexpr int maxVarint = 9;
constexpr int smallestCell = 4;
constexpr quint64 firstBlobType = 12;
constexpr quint64 realType = 7;

bool isInterior(Kind kind)
{
    return kind == Kind::TableInterior || kind == Kind::IndexInterior;
}

bool isTable(Kind kind)
{
    return kind == Kind::TableInterior || kind == Kind::TableLeaf;
}

int localSize(quint64 payload, int usable, Kind kind)
{
    const int most = kind == Kind::TableLeaf ? usable - 35 : (usable - 12) * 64 / 255 - 23;
    if (payload <= quint64(most))
        return int(payload);
    const int least = (usable - 12) * 32 / 255 - 23;
    const int fitting = least + int((payload - quint64(least)) % quint64(usable - 4));
    return fitting <= most ? fitting : least;
}

/// Nothing for the two types that SQLite keeps for itself.
std::optional<quint64> columnSize(quint64 type)
{
    static constexpr std::array<quint64, 10> sizes{0, 1, 2, 3, 4, 6, 8, 8, 0, 0};
    if (type < sizes.size())
        return sizes[size_t(type)];
    if (type < firstBlobType)
        return std::nullopt;
    return (type - firstBlobType) / 2;
}

} // namespace

quint32 bigEndian(const QByteArray &bytes, int offset, int size)
{
    quint32 value = 0;
    for (int i = offset; i < offset + size; ++i)
        value = value << 8 | (i >= 0 && i < bytes.size() ? quint8(bytes.at(i)) : 0);
    return value;
}

int readVarint(const QByteArray &bytes, int offset, quint64 &value)
{
    value = 0;
    const int available = std::min(maxVarint, int(bytes.size()) - offset);
    for (int i = 0; i < available; ++i) {
        const quint8 byte = quint8(bytes.at(offset + i));
        if (i == maxVarint - 1) {
            value = value << 8 | byte;
            return maxVarint;
        }
        value = value << 7 | (byte & 0x7f);
        if (byte < 0x80)
            return i + 1;
    }
    return 0;
}

std::optional<Page> Page::parse(const QByteArray &bytes, quint32 number, int usable)
{
    Page page;
    page.m_bytes = bytes;
    page.m_number = number;
    page.m_usable = usable;
    page.m_header = number == 1 ? fileHeaderSize : 0;
    if (bytes.size() < usable || page.m_header + 12 > usable)
        return std::nullopt;
    page.m_kind = Kind(quint8(bytes.at(page.m_header)));
    if (!isInterior(page.m_kind) && page.m_kind != Kind::IndexLeaf && page.m_kind != Kind::TableLeaf)
        return std::nullopt;
    page.m_cellCount = int(bigEndian(bytes, page.m_header + 3, 2));
    page.m_contentStart = int(bigEndian(bytes, page.m_header + 5, 2));
    if (page.m_contentStart == 0)
        page.m_contentStart = 65536;
    if (isInterior(page.m_kind))
        page.m_rightChild = bigEndian(bytes, page.m_header + 8, 4);
    if (page.headerEnd() > usable)
        return std::nullopt;
    return page;
}

int Page::headerEnd() const
{
    return m_header + (isInterior(m_kind) ? 12 : 8) + 2 * m_cellCount;
}

std::optional<Cell> Page::cell(int index) const
{
    if (index < 0 || index >= m_cellCount)
        return std::nullopt;
    return readCell(int(bigEndian(m_bytes, headerEnd() - 2 * (m_cellCount - index), 2)), m_kind);
}

std::optional<Cell> Page::cellAt(int offset) const
{
    return readCell(offset, Kind::TableLeaf);
}

std::optional<Cell> Page::readCell(int offset, Kind kind) const
{
    Cell cell;
    cell.offset = offset;
    const int earliest = kind == m_kind ? headerEnd() : m_header;
    if (cell.offset < earliest || cell.offset + smallestCell > m_usable)
        return std::nullopt;
    int at = cell.offset;
    if (isInterior(kind)) {
        cell.child = bigEndian(m_bytes, at, 4);
        at += 4;
    }
    const auto readNumber = [&](quint64 &value) {
        const int length = readVarint(m_bytes, at, value);
        at += length;
        return length > 0;
    };
    if (kind != Kind::TableInterior && !readNumber(cell.payload))
        return std::nullopt;
    quint64 key = 0;
    if (isTable(kind) && !readNumber(key))
        return std::nullopt;
    cell.rowId = qint64(key);
    cell.localOffset = at;
    if (kind != Kind::TableInterior)
        cell.localSize = localSize(cell.payload, m_usable, kind);
    at += cell.localSize;
    if (quint64(cell.localSize) < cell.payload) {
        cell.overflow = bigEndian(m_bytes, at, 4);
        at += 4;
    }
    cell.size = std::max(at - cell.offset, smallestCell);
    if (cell.offset + cell.size > m_usable)
        return std::nullopt;
    return cell;
}

bool Page::addFreeBlocks(std::vector<std::pair<int, int>> &areas) const
{
    int block = int(bigEndian(m_bytes, m_header + 1, 2));
    int before = headerEnd();
    while (block != 0) {
        // They stand in ascending order, so the walk ends.
        if (block < before || block + 4 > m_usable)
            return false;
        const int size = int(bigEndian(m_bytes, block + 2, 2));
        areas.emplace_back(block, block + size);
        before = block + std::max(size, 4);
        block = int(bigEndian(m_bytes, block, 2));
    }
    return true;
}

bool Page::isSound() const
{
    if (m_contentStart < headerEnd() || m_contentStart > m_usable)
        return false;
    std::vector<std::pair<int, int>> areas;
    areas.reserve(size_t(m_cellCount));
    for (int i = 0; i < m_cellCount; ++i) {
        const std::optional<Cell> found = cell(i);
        if (!found)
            return false;
        areas.emplace_back(found->offset, found->offset + found->size);
    }
    if (!addFreeBlocks(areas))
        return false;
    std::sort(areas.begin(), areas.end());
    int end = m_contentStart;
    int gaps = 0;
    for (const auto &[first, last] : areas) {
        if (first < end)
            return false;
        gaps += first - end;
        end = last;
    }
    return gaps + m_usable - end == int(quint8(m_bytes.at(m_header + 7)));
}

std::optional<Record> parseRecord(const QByteArray &payload)
{
    quint64 headerSize = 0;
    int at = readVarint(payload, 0, headerSize);
    if (at == 0 || headerSize < quint64(at) || headerSize > quint64(payload.size()))
        return std::nullopt;
    Record record;
    quint64 end = headerSize;
    while (at < int(headerSize)) {
        if (record.count == maxColumns)
            return std::nullopt;
        Column &column = record.columns[size_t(record.count++)];
        const int length = readVarint(payload, at, column.type);
        const std::optional<quint64> size = columnSize(column.type);
        at += length;
        if (length == 0 || at > int(headerSize) || !size || *size > quint64(payload.size()) - end)
            return std::nullopt;
        column.offset = int(end);
        column.size = int(*size);
        end += *size;
    }
    if (end != quint64(payload.size()))
        return std::nullopt;
    return record;
}

bool isNull(const Column &column)
{
    return column.type == 0;
}

bool isInteger(const Column &column)
{
    return (column.type >= 1 && column.type < realType) || column.type == 8 || column.type == 9;
}

bool isText(const Column &column)
{
    return column.type > firstBlobType && column.type % 2 == 1;
}

qint64 integer(const QByteArray &payload, const Column &column)
{
    if (column.size == 0)
        return column.type == 9 ? 1 : 0;
    quint64 value = payload.at(column.offset) < 0 ? ~quint64(0) : 0;
    for (int i = 0; i < column.size; ++i)
        value = value << 8 | quint8(payload.at(column.offset + i));
    return qint64(value);
}

std::optional<double> number(const QByteArray &payload, const Column &column)
{
    const qint64 value = isInteger(column) || column.type == realType ? integer(payload, column) : 0;
    if (isInteger(column))
        return double(value);
    if (column.type != realType)
        return std::nullopt;
    double real = 0;
    std::memcpy(&real, &value, sizeof(real));
    return real;
}

QByteArray text(const QByteArray &payload, const Column &column)
{
    return payload.mid(column.offset, column.size);
}

} // namespace SqlitePage
