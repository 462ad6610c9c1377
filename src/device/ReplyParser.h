#pragma once

#include "store/PendingRow.h"

#include <QString>
#include <QVector>

/// What one channel sent: the number, and the text to show for it.
struct ChannelReading
{
    double value = noValue; ///< always finite; noValue where the logger had none
    QString ownText;        ///< what the logger sent instead of a number

    /// Two decimals, or the logger's own text where that contains "----". Dear for the largest numbers, and of no use
    /// for any but the newest reading.
    QString text() const;
};

struct Reading
{
    ChannelReading channel1;
    ChannelReading channel2;
};

/// The readings of a reply whose echo is already removed, in its order. A reading is a line of at least two fields set
/// apart by commas; other lines are skipped. A field that is no finite number reads as 0.
QVector<Reading> parseReply(const QString &reply);
