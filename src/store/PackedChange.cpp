#include "store/PackedChange.h"

#include <QDataStream>
#include <QIODevice>

QByteArray packedChange(const SpoolChange &change)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_12);
    stream << change.storedUpTo.has_value() << change.storedUpTo.value_or(0) << quint32(change.rows.size());
    for (const PendingRow &row : change.rows)
        stream << row.number << row.serial.toUtf8() << row.channel1 << row.channel2 << row.time;
    stream << quint32(change.gone.size());
    for (const SpoolChange::Range &range : change.gone)
        stream << range.first << range.last;
    return bytes;
}

bool unpackChange(const QByteArray &bytes, SpoolChange *change)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_12);
    bool hasStoredUpTo = false;
    qint64 storedUpTo = 0;
    quint32 count = 0;
    stream >> hasStoredUpTo >> storedUpTo >> count;
    if (hasStoredUpTo)
        change->storedUpTo = storedUpTo;
    for (; count > 0 && stream.status() == QDataStream::Ok; --count) {
        PendingRow row;
        QByteArray serial;
        stream >> row.number >> serial >> row.channel1 >> row.channel2 >> row.time;
        row.serial = QString::fromUtf8(serial.constData(), serial.size());
        change->rows.push_back(row);
    }
    for (stream >> count; count > 0 && stream.status() == QDataStream::Ok; --count) {
        SpoolChange::Range range;
        stream >> range.first >> range.last;
        change->gone.push_back(range);
    }
    return stream.status() == QDataStream::Ok;
}
