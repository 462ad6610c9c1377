#pragma once

#include "store/PendingRow.h"

#include <QString>

#include <vector>

/// Rows that could not be written, kept beside their recording until it is opened again.
///
/// A text file: a header line with the format's version and the number of rows, then one line a row (time, both
/// channels with all their digits, percent-encoded serial number; blanks between). Always replaced as a whole.
class PendingRowFile
{
public:
    struct Content
    {
        std::vector<PendingRow> rows; ///< what could be read
        bool damaged = false;         ///< there was more than that
    };

    explicit PendingRowFile(const QString &databaseFile);

    QString path() const;
    bool exists() const;
    Content read() const;
    /// False when the rows are not on the disk; an earlier file is then unchanged.
    bool write(const std::vector<PendingRow> &rows) const;
    bool remove() const;
    /// Renames the file so that nobody reads or replaces it any more. Returns its new path, empty on failure.
    QString setAside() const;

private:
    QString m_path;
};
