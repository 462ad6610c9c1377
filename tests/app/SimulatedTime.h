#pragma once

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDateTime>
#include <QTimer>
#include <algorithm>
#include <limits>
#include <vector>

/// Time that a test lets pass. The timers that are watched fire by it and by nothing else, in their order and each as
/// late as the test says.
class SimulatedTime
{
public:
    explicit SimulatedTime(qint64 now) : m_now(now) {}

    qint64 now() const { return m_now; }
    QDateTime dateTime() const { return QDateTime::fromMSecsSinceEpoch(m_now + m_clockShift, Qt::UTC); }
    /// Sets the clock without letting time pass.
    void setClockBy(int ms) { m_clockShift += ms; }

    void watch(QTimer *timer) { m_timers.push_back({timer, never}); }

    /// Lets the next timer fire, @p lateMs after it is due.
    void fireNext(int lateMs)
    {
        noteStarts();
        const auto next = std::min_element(m_timers.begin(), m_timers.end(),
                                           [](const Watched &a, const Watched &b) { return a.dueAt < b.dueAt; });
        m_now = std::max(m_now, next->dueAt + lateMs);
        next->dueAt += next->timer->interval();
        QTimerEvent event(next->timer->timerId());
        QCoreApplication::sendEvent(next->timer, &event);
        noteStarts();
    }

private:
    struct Watched
    {
        QTimer *timer;
        qint64 dueAt;
    };
    static constexpr qint64 never = std::numeric_limits<qint64>::max();

    /// A timer is taken out of the event loop's hands as soon as it runs, so one that is found there was started since.
    void noteStarts()
    {
        constexpr int daysMs = 20 * 24 * 3600 * 1000;
        QAbstractEventDispatcher *dispatcher = QAbstractEventDispatcher::instance();
        for (Watched &watched : m_timers) {
            const auto running = dispatcher->registeredTimers(watched.timer);
            if (running.isEmpty()) {
                watched.dueAt = never;
            } else if (running.first().interval != daysMs) {
                watched.dueAt = m_now + watched.timer->interval();
                dispatcher->unregisterTimer(running.first().timerId);
                dispatcher->registerTimer(running.first().timerId, daysMs, Qt::CoarseTimer, watched.timer);
            }
        }
    }

    qint64 m_now;
    int m_clockShift = 0;
    std::vector<Watched> m_timers;
};
