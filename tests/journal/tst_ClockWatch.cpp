#include "journal/ClockWatch.h"

#include <QTest>

/// When a clock counts as having been set.
class tst_ClockWatch : public QObject
{
    Q_OBJECT

private slots:
    void jumps_data()
    {
        QTest::addColumn<qint64>("clock");
        QTest::addColumn<qint64>("elapsed");
        QTest::addColumn<qint64>("jump");
        QTest::newRow("a second of both") << qint64(1000) << qint64(1000) << qint64(0);
        QTest::newRow("held up for an hour") << qint64(3600000) << qint64(3600000) << qint64(0);
        QTest::newRow("two seconds ahead") << qint64(3000) << qint64(1000) << qint64(0);
        QTest::newRow("more than two") << qint64(3001) << qint64(1000) << qint64(2001);
        QTest::newRow("two seconds back") << qint64(-1000) << qint64(1000) << qint64(0);
        QTest::newRow("more than two back") << qint64(-1001) << qint64(1000) << qint64(-2001);
    }

    void jumps()
    {
        QFETCH(qint64, clock);
        QFETCH(qint64, elapsed);
        QFETCH(qint64, jump);
        ClockWatch watch;
        const qint64 start = 1800000000000;
        QVERIFY(!watch.look(start, 500));
        QCOMPARE(watch.look(start + clock, 500 + elapsed).value_or(0), jump);
        // It was told once.
        QVERIFY(!watch.look(start + clock + 1000, 500 + elapsed + 1000));
    }

    /// A clock that is corrected little by little goes wrong by more than two seconds in the end.
    void slowCorrectionIsNoJump()
    {
        ClockWatch watch;
        for (qint64 second = 0; second < 100; ++second)
            QVERIFY(!watch.look(second * 1500, second * 1000));
    }
};

QTEST_GUILESS_MAIN(tst_ClockWatch)
#include "tst_ClockWatch.moc"
