#pragma once

#include "store/Salvage.h"

#include <QString>

/// What became of a recording whose last commit was cut off.
struct TornRecording
{
    int rows = 0; ///< that could be read and are in the recording now
    QString file; ///< where the torn file is, untouched; empty when none was found
    bool isGivenUp = false;
};

/// Before a recording is opened for writing: a torn one is set aside under a name of its own and replaced by what can
/// be saved of it. Waits like the opening itself while another program is writing. A file that is whole, or nothing of
/// ours, or cannot be replaced stays where and as it is; the reason is in the log.
TornRecording replaceTornRecording(const QString &path, const SalvageProgress &progress = {});
