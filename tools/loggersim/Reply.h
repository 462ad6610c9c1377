#pragma once

#include "loggersim/Fault.h"

#include <QByteArray>
#include <QByteArrayList>

namespace loggersim {

/// One answer on its way to the station.
struct Reply
{
    QByteArrayList pieces;   ///< written one after the other
    int delayMs = 0;         ///< before the next piece
    int pauseMs = 0;         ///< between any two pieces
    bool isReading = false;  ///< a well-formed reading, which counts as served
    QByteArray values;       ///< of a reading, as they are sent: "21.50,----"
    qint64 polledMs = 0;     ///< when the command was read, in Unix milliseconds
    bool closeAfter = false; ///< the connection is closed once it has been written
};

/// The answer to a poll: @p values ("21.50,45.10") after the @p echo, as far as the fault lets them through.
Reply pollReply(const Fault &fault, const QByteArray &echo, const QByteArray &values);

} // namespace loggersim
