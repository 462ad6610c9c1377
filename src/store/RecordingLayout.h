#pragma once

#include "store/PageFile.h"

/// Where the parts of a recording begin, by the first page of its file.
struct RecordingLayout
{
    quint32 table = 0;    ///< page of the readings; 0 in a file that has none
    quint32 sequence = 0; ///< page of the largest row id given out
    quint32 index = 0;    ///< page of the index on the time; 0 without one
    bool readable = true; ///< the whole first page could be read
    bool onlyOurs = true; ///< nothing else is in the file

    static RecordingLayout read(PageFile &file);
};

/// The columns of one reading, by its record.
struct StoredRow
{
    qint64 rowId = 0;
    QByteArray serial;
    std::optional<double> channel1;
    std::optional<double> channel2;
    quint32 time = 0;
};

/// Nothing for a record of anything else than a reading.
std::optional<StoredRow> storedRow(qint64 rowId, const QByteArray &payload);
