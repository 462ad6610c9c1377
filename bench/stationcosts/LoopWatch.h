#pragma once

#include "stationcosts/Durations.h"

#include <QString>

#include <vector>

class QSettings;

/// Watches the event loop of the GUI thread from within: how long the thread is busy between two moments in which it
/// has nothing to do. Belongs to a program that is nothing but the station and this; there is one at a time.
class LoopWatch
{
public:
    /// Stretches count from @p settleMs after construction on, for @p measureMs. What comes before is kept apart,
    /// what comes after is left out.
    LoopWatch(int settleMs, int measureMs);
    ~LoopWatch();
    LoopWatch(const LoopWatch &) = delete;
    LoopWatch &operator=(const LoopWatch &) = delete;

    /// In INI form: for each kind of stretch its number, its longest and its 99.9 percentile in milliseconds, by the
    /// clock and by the processor time of the thread; and when the longest ones were.
    void writeFigures(const QString &path) const;

    // Called by the event loop.
    void endStretch();
    void beginStretch();

private:
    struct Moment
    {
        qint64 wall = 0;
        qint64 processor = 0;
    };
    struct Stretches
    {
        Durations wall;
        Durations processor;
    };
    struct Long
    {
        Moment begin;
        Moment length;
        bool hasFlushed = false;
    };
    static Moment now();
    void noteIfLong(const Long &stretch);
    void writeLongest(QSettings &file) const;
    static void write(QSettings &file, const QString &name, const Stretches &stretches);
    void watchFlushes();

    qint64 m_measureFrom;
    qint64 m_measureTo;
    Moment m_begin;
    bool m_isWatchingFlushes = false;
    bool m_hasFlushed = false;
    Stretches m_start;
    Stretches m_plain;
    Stretches m_flush;
    std::vector<Long> m_longest; ///< within the measurement, the longest first
};
