#pragma once

#include <QString>

#include <functional>

enum class FullVerdict { Whole, Damaged, Unreadable };

struct FullCheckResult
{
    FullVerdict verdict = FullVerdict::Unreadable;
    qint64 rows = 0; ///< that can be read
    QString finding; ///< what is wrong; nothing with a whole recording
};

/// Reads all of a recording and changes nothing: whether it was cut off, and whether SQLite finds anything wrong in it.
/// @p progress is told the percentage of the file that has been read.
FullCheckResult checkWholeRecording(const QString &path, const std::function<void(int)> &progress = {});
