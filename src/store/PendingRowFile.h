#pragma once

#include "store/PendingRow.h"

#include <QByteArray>
#include <QString>

#include <vector>

/// Rows that an earlier version of the station could not write and has left beside their recording.
///
/// A text file: a header line with the format's version and the number of rows, then one line a row (time, both
/// channels with all their digits, percent-encoded serial number; blanks between).
class PendingRowFile
{
public:
    struct Content
    {
        std::vector<PendingRow> rows; ///< what could be read
        bool damaged = false;         ///< there was more than that
        QByteArray digest;            ///< of the file as it stands
    };

    explicit PendingRowFile(const QString &databaseFile);

    QString path() const;
    bool exists() const;
    Content read() const;
    bool remove() const;
    /// Renames the file so that nobody reads or replaces it any more. Returns its new path, empty on failure.
    QString setAside() const;

private:
    QString m_path;
};
