#include "app/PollPhase.h"

#include <QTimer>

namespace {

constexpr int second = 1000;
constexpr int middle = second / 2;
// Far enough from both edges for every delay of a timer but a stall of the whole program.
constexpr int tolerance = middle / 2;

int distanceFromMiddle(qint64 time)
{
    return int(time % second) - middle;
}

} // namespace

PollPhase::PollPhase(QTimer *ticks, QObject *parent)
    : QObject(parent),
      m_ticks(ticks),
      m_shift(new QTimer(this)),
      m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    m_shift->setObjectName(QStringLiteral("pollShiftTimer"));
    m_shift->setSingleShot(true);
    m_shift->setTimerType(Qt::PreciseTimer);
    connect(m_shift, &QTimer::timeout, this, &PollPhase::shiftTicks);
    connect(m_ticks, &QTimer::timeout, this, &PollPhase::checkTick);
}

void PollPhase::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

void PollPhase::start(int intervalMs)
{
    const qint64 time = now();
    m_polledSecond = time / second;
    m_ticks->start(intervalMs);
    m_shift->stop();
    const int distance = distanceFromMiddle(time);
    // Intervals that are no whole seconds have no phase to keep.
    if (intervalMs % second != 0 || qAbs(distance) <= tolerance)
        return;
    // Early in its second the ticks wait for its middle; late in it the next poll has to come before its tick.
    m_shift->start(distance < 0 ? -distance : intervalMs - distance);
}

qint64 PollPhase::now() const
{
    return m_clock().toMSecsSinceEpoch();
}

/// The clock may have been set, or the program been held up.
void PollPhase::checkTick()
{
    const int interval = m_ticks->interval();
    const qint64 time = now();
    const bool isInTurn = (time / second - m_polledSecond) * second == interval;
    if (isInTurn && qAbs(distanceFromMiddle(time)) <= tolerance)
        m_polledSecond = time / second;
    else if (interval % second == 0)
        start(interval);
}

void PollPhase::shiftTicks()
{
    if (!m_ticks->isActive())
        return;
    const int interval = m_ticks->interval();
    if ((now() / second - m_polledSecond) * second < interval) {
        m_ticks->start(interval);
        return;
    }
    start(interval);
    emit pollDue();
}
