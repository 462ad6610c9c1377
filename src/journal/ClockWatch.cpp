#include "journal/ClockWatch.h"

#include <utility>

namespace {

constexpr qint64 toleratedMs = 2000;

} // namespace

std::optional<qint64> ClockWatch::look(qint64 clockMs, qint64 elapsedMs)
{
    const qint64 difference = clockMs - elapsedMs;
    const auto last = std::exchange(m_lastDifference, difference);
    if (!last || qAbs(difference - *last) <= toleratedMs)
        return std::nullopt;
    return difference - *last;
}
