#pragma once

#include <QString>

#include <functional>

enum class FullVerdict { Whole, Damaged, Unreadable };

struct FullCheckResult
{
    FullVerdict verdict = FullVerdict::Unreadable;
    QString text; ///< what was found, a line each
};

/// Reads all of a recording without changing it: whether it was cut off, and whether SQLite finds anything wrong in it.
/// @p progress is told now and then that the work goes on, with the number of times so far.
FullCheckResult checkWholeRecording(const QString &path, const std::function<void(int)> &progress = {});
