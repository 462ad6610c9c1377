// 64 loggers for days, by a clock of the station's own that leaps from one moment in which it has something to do to
// the next, with its midnights and a change to or from summer time. The station is the program itself, on real sockets
// and files. What it does not feel: threads of its own get as little time as the leaps take, so the disk seems slow; a
// sound card, alarms unheard, and the kernel's own clocks run on as ever.

#include "ProcessUse.h"
#include "RecordingReader.h"
#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <QDateTime>

#include <algorithm>
#include <ctime>

namespace {

constexpr int loggers = 64;
constexpr int intervalMs = 60000;
constexpr int secondsPerHour = 3600;
constexpr int hoursToWarmUp = 6; // what is shown of the last values is full by then
constexpr int samplesPerHour = 12;
// So late may a poll be, in the station's time, before one is left out.
constexpr int mostPollsLeftOut = 3;

// Summer time begins on the last Sunday in March and ends on the last in October, whatever this system knows of zones.
const QString zone = QStringLiteral("CET-1CEST,M3.5.0,M10.5.0/3");

qint64 startOf(int shard)
{
    const QDate saturday = shard % 2 == 0 ? QDate(2026, 3, 28) : QDate(2026, 10, 24);
    return QDateTime(saturday, QTime(5, 0), Qt::UTC).toSecsSinceEpoch();
}

qint64 monotonicNs()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

class LongRun
{
public:
    explicit LongRun(Shard &shard) : m_shard(shard), m_tortured(shard, loggers)
    {
        E2eFixture &e2e = m_tortured.e2e();
        e2e.setInterval(intervalMs);
        e2e.setVariable(QStringLiteral("TZ"), zone);
        e2e.setVariable(QStringLiteral("TORTURE_CLOCK"),
                        QStringLiteral("%1:%2").arg(startOf(shard.order().number)).arg(monotonicNs()));
        e2e.setLogRules(QStringLiteral("sorvanto.*.debug=false;sorvanto.app.debug=true"));
    }

    void run()
    {
        if (!m_tortured.start())
            return;
        const int hours = m_shard.order().rounds;
        ProcessUse warm;
        ProcessUse last;
        for (int hour = 1; hour <= hours; ++hour) {
            if (!passHour(hour, last)) {
                m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
                return;
            }
            if (hour == std::min(hoursToWarmUp, hours))
                warm = last;
        }
        if (const QString more = last.moreThan(warm); !more.isEmpty())
            m_shard.find(more);
        m_shard.result().remarks += QStringLiteral("part %1: %2 after %3 h, %4 after %5 h")
                                        .arg(m_shard.order().number)
                                        .arg(warm.text())
                                        .arg(std::min(hoursToWarmUp, hours))
                                        .arg(last.text())
                                        .arg(hours);
        m_tortured.finish();
        judge();
    }

private:
    /// @p use is the least of the hour.
    bool passHour(int hour, ProcessUse &use)
    {
        const qint64 station = m_tortured.station().processId();
        use = ProcessUse::of(station);
        for (int i = 0; i < samplesPerHour; ++i) {
            const qint64 end = (hour - 1) * secondsPerHour + (i + 1) * secondsPerHour / samplesPerHour;
            if (!m_tortured.e2e().waitUntil([&] { return m_tortured.watch().passedSeconds() >= end; }))
                return false;
            use = use.orLess(ProcessUse::of(station));
        }
        m_shard.endRound({});
        return true;
    }

    /// Every reading once and in order, and its time a poll later than the one before.
    void judge()
    {
        const QList<RecordedRow> rows = m_tortured.e2e().rows();
        RowResult &result = m_shard.result();
        int leftOut = 0;
        for (int i = 0; i < loggers; ++i) {
            const ServedReadings &served = m_tortured.e2e().served(i);
            const QList<RecordedRow> readings = readingsOf(served.serial(), rows);
            result.served += served.count();
            result.shown += served.count();
            result.recorded += readings.size();
            result.lost += std::max(0, served.count() - int(readings.size()) - 1);
            result.doubled += std::max(0, int(readings.size()) - served.count());
            if (const QString difference = served.differences(rows); !difference.isEmpty())
                m_shard.find(difference);
            leftOut += pollsLeftOut(readings);
        }
        if (const QString integrity = m_tortured.e2e().integrity(); integrity != QLatin1String("ok")) {
            ++result.unsound;
            m_shard.find(QStringLiteral("integrity: ") + integrity);
        }
        result.remarks += QStringLiteral("part %1: %2 times the machine was too slow for a poll")
                              .arg(m_shard.order().number)
                              .arg(leftOut);
    }

    int pollsLeftOut(const QList<RecordedRow> &readings)
    {
        int leftOut = 0;
        // The splash is in between the first two.
        for (int i = 2; i < readings.size(); ++i) {
            const qint64 step = qint64(readings.at(i).time) - readings.at(i - 1).time;
            const qint64 polls = (step * 1000 + intervalMs / 2) / intervalMs;
            if (polls > 1)
                leftOut += int(polls) - 1;
            if (step <= 0 || polls > mostPollsLeftOut)
                m_shard.find(QStringLiteral("%1: %2 s from %3 on")
                                 .arg(readings.at(i).serial)
                                 .arg(step)
                                 .arg(readings.at(i - 1).time));
        }
        return leftOut;
    }

    Shard &m_shard;
    TorturedStation m_tortured;
};

} // namespace

void runDays(Shard &shard)
{
    LongRun(shard).run();
}
