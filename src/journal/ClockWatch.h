#pragma once

#include <QtGlobal>
#include <optional>

/// Notices when the clock was set: looked at again and again, it must go as fast as time does.
class ClockWatch
{
public:
    /// Milliseconds by which the clock has jumped since the last look, when those are more than two seconds.
    /// @p clockMs since the epoch, @p elapsedMs of a clock that nobody can set.
    std::optional<qint64> look(qint64 clockMs, qint64 elapsedMs);

private:
    std::optional<qint64> m_lastDifference;
};
