#pragma once

#include "store/PendingRow.h"

#include <QString>

#include <vector>

class QSqlDatabase;

/// What an earlier run has left beside a recording.
struct KeptRows
{
    std::vector<PendingRow> rows; ///< in the order of their arrival, all of them in the spool
    int perhapsStored = 0;        ///< so many at the front may be in the recording, which could not be asked
    qint64 storedUpTo = 0;        ///< those would have a row id above this one
    qint64 highestNumber = 0;     ///< of the rows in the spool, also of those left out because they are stored
    QString setAside;             ///< where a damaged file is now
};

/// Reads the spool of a recording, and the side file that earlier versions made in its place: its rows move into the
/// spool. Rows that the recording holds already are left out.
KeptRows takeInKeptRows(const QSqlDatabase &recording, const QString &databaseFile);
