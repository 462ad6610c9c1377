#pragma once

#include "ProcessUse.h"
#include "TorturedStation.h"

#include <QDeadlineTimer>

#include <functional>
#include <vector>

/// Loggers that come and go by themselves, each in its own time, while one station records all of them for many rounds;
/// a round is one going and coming. What the station uses when all are back is compared with what it used after the
/// first.
class ComingAndGoing
{
public:
    /// @p go and @p come get the number of a logger; those from 0 to @p loggers do so.
    ComingAndGoing(Shard &shard, TorturedStation &tortured, int loggers, std::function<void(int)> go,
                   std::function<void(int)> come);
    /// Milliseconds that a logger is away and back at most.
    void setTimes(int awayMs, int backMs);
    void run();

private:
    struct Logger
    {
        bool isAway = false;
        QDeadlineTimer next;
        QList<qint64> changes; ///< when it went and came, in Unix seconds
    };

    void change(int logger);
    bool isSteady(int logger, qint64 time) const;
    bool turn(const std::function<bool()> &isOver);
    /// Waits until all are back and read again.
    bool bringAllBack();
    int servedBy(int logger);
    ProcessUse leastUse();

    Shard &m_shard;
    TorturedStation &m_tortured;
    const std::function<void(int)> m_go;
    const std::function<void(int)> m_come;
    std::vector<Logger> m_loggers;
    qint64 m_start = 0;
    // As quickly as a computer takes note of a device, at least.
    static constexpr int leastAwayMs = 100;
    int m_awayMs = 2500;
    int m_backMs = 4000;
};
