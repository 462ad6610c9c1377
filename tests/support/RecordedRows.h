#pragma once

#include <QList>
#include <QString>
#include <QVariant>

/// One row as it arrives in a recording.
struct RecordedRow
{
    QString serial;
    QVariant channel1; ///< null for no value
    QVariant channel2;
    quint32 time = 0;

    bool isGap() const { return channel1.isNull() && channel2.isNull(); }
};

/// Empties the process-wide queue into a recording of its own and reads it back, by device, then time, then channel 1.
/// Equal rows of one second come back once.
QList<RecordedRow> takeRecordedRows();
