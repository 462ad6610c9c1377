#pragma once

#include "store/SpoolChange.h"

#include <QString>

#include <vector>

class QSqlDatabase;

/// What an earlier run has left beside a recording.
struct KeptRows
{
    std::vector<PendingRow> rows; ///< in the order of their arrival
    int perhapsStored = 0;        ///< so many at the front may be in the recording, which could not be asked
    qint64 storedUpTo = 0;        ///< those would have a row id above this one
    qint64 highestNumber = 0;     ///< of all that waited, also of rows left out because they are stored
    SpoolChange notInSpool;       ///< has still to be brought there
    QString setAside;             ///< where a damaged file is now
    bool isUnreadable = false;    ///< rows may wait there that are not among these
};

/// Reads the spool of a recording, and the side file that earlier versions made in its place: its rows move into the
/// spool. @p redo is what the spool was still to be given. Rows that the recording holds already are left out.
KeptRows takeInKeptRows(const QSqlDatabase &recording, const QString &databaseFile, const SpoolChange &redo);
