#include "app/TerminationSignals.h"

#include <QSignalSpy>
#include <QTest>
#include <csignal>

class tst_TerminationSignals : public QObject
{
    Q_OBJECT

private slots:
    void deliversOnTheEventLoop_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void deliversOnTheEventLoop()
    {
        QFETCH(int, number);
        TerminationSignals termination;
        QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
        QVERIFY(!termination.wasRequested());
        QCOMPARE(::raise(number), 0);
        QCOMPARE(requested.count(), 0);
        QTRY_COMPARE(requested.count(), 1);
        QVERIFY(termination.wasRequested());
    }

    void severalAtOnceAreOneRequest()
    {
        TerminationSignals termination;
        QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
        for (int i = 0; i < 100; ++i)
            QCOMPARE(::raise(SIGTERM), 0);
        QTRY_COMPARE(requested.count(), 1);
    }

    void restoresTheSystemsHandling()
    {
        {
            TerminationSignals termination;
        }
        struct sigaction action = {};
        QCOMPARE(::sigaction(SIGTERM, nullptr, &action), 0);
        QVERIFY(action.sa_handler == SIG_DFL);
    }
};

QTEST_GUILESS_MAIN(tst_TerminationSignals)
#include "tst_TerminationSignals.moc"
