#pragma once

#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

class QMouseEvent;

/// Lets a mouse move through at most every 10 ms. Of those that come sooner only the newest is kept, and let through
/// when its time has come.
class MouseMoveThrottle
{
public:
    /// Milliseconds from any fixed moment on.
    using Clock = std::function<qint64()>;
    using Handler = std::function<void(QMouseEvent *)>;

    explicit MouseMoveThrottle(Handler handler);
    ~MouseMoveThrottle();
    MouseMoveThrottle(const MouseMoveThrottle &) = delete;
    MouseMoveThrottle &operator=(const MouseMoveThrottle &) = delete;

    void setClock(Clock clock);
    void take(QMouseEvent *event);
    /// Lets a kept move through now.
    void flush();
    /// Forgets a kept move.
    void drop();

private:
    bool hasPaused(qint64 ms) const;
    void handle(QMouseEvent *event);
    void retry();

    Handler m_handler;
    Clock m_clock;
    QTimer m_timer;
    std::unique_ptr<QMouseEvent> m_pending;
    std::optional<qint64> m_lastTime;
};
