#include "store/PageFile.h"

#include <algorithm>
#include <limits>

namespace {

// With its terminating zero.
const QByteArray magic = QByteArrayLiteral("SQLite format 3\0");

constexpr int changeCounterField = 24;
constexpr int pageCountField = 28;
constexpr int versionValidForField = 92;

// A row with a key of the longest kind takes a kilobyte.
constexpr quint64 longestRecord = 64 * 1024;

} // namespace

PageFile::PageFile(const QString &path) : m_file(path) {}

bool PageFile::open()
{
    if (!m_file.isOpen() && !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    m_cache.clear();
    m_file.seek(0);
    m_header = m_file.read(SqlitePage::fileHeaderSize);
    if (m_header.size() < SqlitePage::fileHeaderSize || !m_header.startsWith(magic))
        return false;
    m_pageSize = int(SqlitePage::bigEndian(m_header, 16, 2));
    if (m_pageSize == 1)
        m_pageSize = 65536;
    m_usable = m_pageSize - quint8(m_header.at(20));
    if (m_pageSize < 512 || (m_pageSize & (m_pageSize - 1)) != 0 || m_usable < 480)
        return false;
    const qint64 pages = (m_file.size() + m_pageSize - 1) / m_pageSize;
    m_pagesPresent = quint32(std::min<qint64>(pages, std::numeric_limits<qint32>::max()));
    const quint32 count = headerField(pageCountField);
    const bool counted = count != 0 && headerField(changeCounterField) == headerField(versionValidForField);
    m_pageCount = counted ? count : m_pagesPresent;
    return true;
}

bool PageFile::isCutOff() const
{
    return m_file.size() < qint64(m_pageCount) * m_pageSize;
}

bool PageFile::hasWriteAheadLog() const
{
    return m_header.at(18) == 2 || m_header.at(19) == 2;
}

QByteArray PageFile::bytes(quint32 number)
{
    if (number == 0 || number > m_pagesPresent)
        return {};
    if (const QByteArray *kept = m_cache.object(number))
        return *kept;
    QByteArray content;
    if (m_file.seek(qint64(number - 1) * m_pageSize))
        content = m_file.read(m_pageSize);
    content.append(m_pageSize - int(content.size()), '\0');
    m_cache.insert(number, new QByteArray(content));
    return content;
}

std::optional<SqlitePage::Page> PageFile::page(quint32 number)
{
    return SqlitePage::Page::parse(bytes(number), number, m_usable);
}

QByteArray PageFile::payload(const SqlitePage::Page &page, const SqlitePage::Cell &cell)
{
    QByteArray record = page.bytes().mid(cell.localOffset, cell.localSize);
    quint64 missing = cell.payload - quint64(cell.localSize);
    if (missing > longestRecord)
        return {};
    quint32 next = cell.overflow;
    while (missing > 0) {
        const QByteArray overflow = bytes(next);
        const quint64 part = std::min(missing, quint64(m_usable - 4));
        if (overflow.isEmpty())
            return {};
        record += overflow.mid(4, int(part));
        missing -= part;
        next = SqlitePage::bigEndian(overflow, 0, 4);
    }
    return record;
}
