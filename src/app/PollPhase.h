#pragma once

#include <QDateTime>
#include <QObject>
#include <functional>

class QTimer;

/// Keeps repeated polls to the middle of the clock's seconds. At their edge they would come now before, now after it:
/// two readings in one second and none in the next.
class PollPhase : public QObject
{
    Q_OBJECT

public:
    using Clock = std::function<QDateTime()>;

    /// @p ticks polls with its timeout; it must outlive this object.
    explicit PollPhase(QTimer *ticks, QObject *parent = nullptr);
    void setClock(Clock clock);

    /// To be called with the poll that begins a series: starts the ticks, which end up in phase with no second left out
    /// or polled twice. Stopping them is enough to end the series.
    void start(int intervalMs);

signals:
    /// A poll is due before the next tick.
    void pollDue();

private:
    qint64 now() const;
    void checkTick();
    void shiftTicks();

    QTimer *const m_ticks;
    QTimer *const m_shift; ///< ends when the ticks are to be started anew, in phase
    Clock m_clock;
    qint64 m_polledSecond = 0; ///< of the newest poll, since the epoch
};
