#include "app/ActionStates.h"

#include <QTest>

class tst_ActionStates : public QObject
{
    Q_OBJECT

private slots:
    void states_data()
    {
        QTest::addColumn<QList<int>>("way");
        QTest::addColumn<int>("intervalMs");
        QTest::addColumn<QString>("enabled");
        const int creating = StationState::Creating;
        const int open = StationState::Open;
        QTest::newRow("no project") << QList<int>{} << 10000 << "keep exit";
        QTest::newRow("choosing devices") << QList<int>{creating} << 10000 << "close keep exit";
        QTest::newRow("open") << QList<int>{open} << 10000 << "add close keep refresh exit siblings expansion";
        QTest::newRow("recording") << QList<int>{open, StationState::Recording} << 10000
                                   << "keep refresh siblings expansion";
        QTest::newRow("one minute") << QList<int>{open} << 60000 << "add close keep refresh exit siblings expansion";
        QTest::newRow("five minutes") << QList<int>{open} << 300000 << "add close refresh exit siblings expansion";
        QTest::newRow("five minutes, editing") << QList<int>{open, StationState::Editing} << 300000 << "close exit";
        QTest::newRow("five minutes, closed again")
            << QList<int>{open, StationState::StartScreen} << 300000 << "keep exit";
        QTest::newRow("ending") << QList<int>{open, StationState::Ending} << 300000 << "keep exit";
    }

    void states()
    {
        QFETCH(QList<int>, way);
        QFETCH(int, intervalMs);
        StationState state;
        for (const int step : std::as_const(way))
            QVERIFY(state.become(StationState::Name(step)));
        const ActionStates actions = actionStates(state, intervalMs);
        QStringList enabled;
        const auto add = [&enabled](bool on, const char *name) {
            if (on)
                enabled << QLatin1String(name);
        };
        add(actions.addDelete, "add");
        add(actions.close, "close");
        add(actions.keepAlive, "keep");
        add(actions.refreshDevices, "refresh");
        add(actions.exit, "exit");
        add(actions.siblings, "siblings");
        add(actions.expansionMode, "expansion");
        QTEST(enabled.join(QLatin1Char(' ')), "enabled");
    }
};

QTEST_APPLESS_MAIN(tst_ActionStates)
#include "tst_ActionStates.moc"
