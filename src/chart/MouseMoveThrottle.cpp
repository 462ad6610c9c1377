#include "chart/MouseMoveThrottle.h"

#include <QElapsedTimer>
#include <QMouseEvent>

namespace {

constexpr qint64 shortestPauseMs = 10;
// After this long a new move need not wait behind one that is kept.
constexpr qint64 longestWaitMs = 250;

MouseMoveThrottle::Clock steadyClock()
{
    QElapsedTimer timer;
    timer.start();
    return [timer] {
        return timer.elapsed();
    };
}

std::unique_ptr<QMouseEvent> copyOf(const QMouseEvent *event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return std::unique_ptr<QMouseEvent>(event->clone());
#else
    return std::make_unique<QMouseEvent>(*event);
#endif
}

} // namespace

MouseMoveThrottle::MouseMoveThrottle(Handler handler) : m_handler(std::move(handler)), m_clock(steadyClock())
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(1);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { retry(); });
}

MouseMoveThrottle::~MouseMoveThrottle() = default;

void MouseMoveThrottle::setClock(Clock clock)
{
    m_clock = std::move(clock);
    m_lastTime.reset();
}

void MouseMoveThrottle::take(QMouseEvent *event)
{
    if (hasPaused(m_pending ? longestWaitMs : shortestPauseMs)) {
        drop();
        handle(event);
        return;
    }
    m_pending = copyOf(event);
    if (!m_timer.isActive())
        m_timer.start();
}

void MouseMoveThrottle::flush()
{
    m_timer.stop();
    if (const std::unique_ptr<QMouseEvent> event = std::move(m_pending))
        handle(event.get());
}

void MouseMoveThrottle::drop()
{
    m_timer.stop();
    m_pending.reset();
}

bool MouseMoveThrottle::hasPaused(qint64 ms) const
{
    return !m_lastTime || m_clock() - *m_lastTime >= ms;
}

void MouseMoveThrottle::handle(QMouseEvent *event)
{
    m_lastTime = m_clock();
    m_handler(event);
}

void MouseMoveThrottle::retry()
{
    // The longer wait would never end here: the move kept is itself what makes new ones wait.
    if (hasPaused(shortestPauseMs))
        flush();
}
