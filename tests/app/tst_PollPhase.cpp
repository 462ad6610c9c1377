#include "SimulatedTime.h"

#include "app/PollPhase.h"

#include <QRandomGenerator>
#include <QTest>
#include <memory>

namespace {

constexpr qint64 midnight = 1800000000000;

/// A series of polls on a clock that the test moves, whose timers come up to 8 ms late and now and then a bit early.
class Series
{
public:
    Series(qint64 start, int intervalMs) : time(start)
    {
        ticks.setTimerType(Qt::PreciseTimer);
        phase = std::make_unique<PollPhase>(&ticks);
        phase->setClock([this] { return time.dateTime(); });
        QObject::connect(&ticks, &QTimer::timeout, [this] { poll(); });
        QObject::connect(phase.get(), &PollPhase::pollDue, [this] { poll(); });
        time.watch(&ticks);
        time.watch(phase->findChild<QTimer *>());
        phase->start(intervalMs);
        poll();
    }

    void poll() { seconds << time.dateTime().toSecsSinceEpoch(); }
    void runFor(int durationMs)
    {
        const qint64 end = time.now() + durationMs;
        while (time.now() < end)
            time.fireNext(int(m_delay.bounded(-1, 9)));
    }

    QTimer ticks;
    SimulatedTime time;
    std::unique_ptr<PollPhase> phase;
    QList<qint64> seconds; ///< polled, in their order

private:
    QRandomGenerator m_delay{1};
};

/// The first two polls that are not so many seconds apart; empty when there are none.
QByteArray irregularity(const QList<qint64> &seconds, int distance)
{
    for (int i = 1; i < seconds.size(); ++i) {
        if (seconds.at(i) - seconds.at(i - 1) != distance)
            return "poll " + QByteArray::number(i) + " comes " + QByteArray::number(seconds.at(i) - seconds.at(i - 1)) +
                   " s after the one before";
    }
    return {};
}

} // namespace

/// The seconds in which polls fall, wherever in a second they begin.
class tst_PollPhase : public QObject
{
    Q_OBJECT

private slots:
    void everySecondOfAnHourOnce()
    {
        for (int begin = 0; begin < 1000; begin += 7) {
            Series series(midnight + begin, 1000);
            series.runFor(3600000);
            const QByteArray wrong = irregularity(series.seconds, 1);
            QVERIFY2(wrong.isEmpty(), QByteArray::number(begin) + " ms: " + wrong);
            QVERIFY(series.seconds.size() >= 3600);
        }
    }

    void longerIntervalsKeepTheirLength_data()
    {
        QTest::addColumn<int>("intervalMs");
        for (const int interval : {5000, 10000, 60000, 300000, 600000})
            QTest::addRow("%d ms", interval) << interval;
    }

    void longerIntervalsKeepTheirLength()
    {
        QFETCH(int, intervalMs);
        for (int begin = 0; begin < 1000; begin += 7) {
            Series series(midnight + begin, intervalMs);
            series.runFor(20 * intervalMs);
            const QByteArray wrong = irregularity(series.seconds, intervalMs / 1000);
            QVERIFY2(wrong.isEmpty(), QByteArray::number(begin) + " ms: " + wrong);
        }
    }

    void ticksComeWithTheIntervalFromTheBeginning()
    {
        Series series(midnight + 990, 10000);
        QVERIFY(series.ticks.isActive());
        QCOMPARE(series.ticks.interval(), 10000);
        series.runFor(60000);
        QCOMPARE(series.ticks.interval(), 10000);
    }

    void aClockThatIsSetIsFollowed()
    {
        for (int step = -999; step < 1000; ++step) {
            Series series(midnight + 500, 1000);
            series.runFor(10000);
            series.time.setClockBy(step);
            series.runFor(3000);
            series.seconds.clear();
            series.runFor(60000);
            const QByteArray wrong = irregularity(series.seconds, 1);
            QVERIFY2(wrong.isEmpty(), QByteArray::number(step) + " ms: " + wrong);
        }
    }

    void aTickThatComesLateDoublesNoSecond()
    {
        for (int late = 0; late < 1000; ++late) {
            Series series(midnight + 500, 1000);
            series.runFor(10000);
            series.time.fireNext(late);
            series.runFor(60000);
            QCOMPARE(QSet<qint64>(series.seconds.cbegin(), series.seconds.cend()).size(), series.seconds.size());
        }
    }

    void otherIntervalsAreLeftAlone()
    {
        Series series(midnight, 1500);
        series.runFor(15000);
        QCOMPARE(series.seconds.size(), 11);
    }

    void aStoppedSeriesStaysStopped()
    {
        Series series(midnight, 1000);
        series.ticks.stop();
        series.time.fireNext(0);
        QCOMPARE(series.seconds.size(), 1);
        QVERIFY(!series.ticks.isActive());
    }
};

QTEST_GUILESS_MAIN(tst_PollPhase)
#include "tst_PollPhase.moc"
