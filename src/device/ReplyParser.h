#pragma once

#include "store/PendingRow.h"

#include <QString>
#include <QVector>

/// What one channel sent: the text to show and the number behind it.
struct ChannelReading
{
    QString text;           ///< two decimals, or the logger's own text where that contains "----"
    double value = noValue; ///< always finite; noValue where the logger had none
};

struct Reading
{
    ChannelReading channel1;
    ChannelReading channel2;
};

/// The readings of a reply whose echo is already removed, in its order. A reading is a line of at least two fields set
/// apart by commas; other lines are skipped. A field that is no finite number reads as 0.
QVector<Reading> parseReply(const QString &reply);
