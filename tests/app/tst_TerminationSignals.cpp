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
        QTest::newRow("SIGHUP") << SIGHUP;
    }

    void deliversOnTheEventLoop()
    {
        QFETCH(int, number);
        std::signal(number, SIG_DFL);
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

    void aProgramMayOutliveItsTerminal()
    {
        std::signal(SIGHUP, SIG_IGN);
        {
            TerminationSignals termination;
            QSignalSpy requested(&termination, &TerminationSignals::terminationRequested);
            QCOMPARE(::raise(SIGHUP), 0);
            QCOMPARE(::raise(SIGTERM), 0);
            QTRY_COMPARE(requested.count(), 1);
            QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        }
        QVERIFY(handlerOf(SIGHUP) == SIG_IGN);
        std::signal(SIGHUP, SIG_DFL);
    }

    void aClosedPipeEndsNothing()
    {
        std::signal(SIGPIPE, SIG_DFL);
        TerminationSignals termination;
        QVERIFY(handlerOf(SIGPIPE) == SIG_IGN);
    }

    void restoresTheSystemsHandling()
    {
        {
            TerminationSignals termination;
        }
        QVERIFY(handlerOf(SIGTERM) == SIG_DFL);
    }

private:
    using Handler = void (*)(int);

    static Handler handlerOf(int number)
    {
        struct sigaction action = {};
        ::sigaction(number, nullptr, &action);
        return action.sa_handler;
    }
};

QTEST_GUILESS_MAIN(tst_TerminationSignals)
#include "tst_TerminationSignals.moc"
