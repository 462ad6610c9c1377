#pragma once

#include "store/SqlitePage.h"

#include <QCache>
#include <QFile>

#include <optional>

/// The pages of an SQLite file, read without SQLite. Whoever reads a file that others may write holds a lock; on Unix
/// all locks of the process on that file are gone as soon as this object is.
class PageFile
{
public:
    explicit PageFile(const QString &path);

    /// Whether the file can be read and begins as an SQLite file does. To be called again when it may have changed.
    bool open();
    int pageSize() const { return m_pageSize; }
    int usableSize() const { return m_usable; }
    /// Pages by the file's own header; those there are, when the header does not say.
    quint32 pageCount() const { return m_pageCount; }
    /// Pages that are there, a last one that is cut off included.
    quint32 pagesPresent() const { return m_pagesPresent; }
    /// Whether the file ends before its last page does.
    bool isCutOff() const;
    /// Whether the newest pages may lie in a log beside the file.
    bool hasWriteAheadLog() const;
    quint32 headerField(int offset) const { return SqlitePage::bigEndian(m_header, offset, 4); }

    /// Filled up with zeros where the file is cut off; empty for a page that is not there.
    QByteArray bytes(quint32 number);
    std::optional<SqlitePage::Page> page(quint32 number);
    /// The whole record of a cell, its overflow pages included; empty when it is not there or absurdly long.
    QByteArray payload(const SqlitePage::Page &page, const SqlitePage::Cell &cell);

private:
    QFile m_file;
    QByteArray m_header;
    int m_pageSize = 0;
    int m_usable = 0;
    quint32 m_pageCount = 0;
    quint32 m_pagesPresent = 0;
    QCache<quint32, QByteArray> m_cache{64};
};
