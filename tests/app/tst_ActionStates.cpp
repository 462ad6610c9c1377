#include "app/ActionStates.h"

#include <QTest>

Q_DECLARE_METATYPE(ControllerState)

class tst_ActionStates : public QObject
{
    Q_OBJECT

private slots:
    void states_data()
    {
        QTest::addColumn<ControllerState>("state");
        QTest::addColumn<QString>("enabled");
        QTest::newRow("no project") << ControllerState{false, false, false, 10000} << "keep exit";
        QTest::newRow("choosing devices") << ControllerState{true, false, false, 10000} << "close keep exit";
        QTest::newRow("open") << ControllerState{true, true, false, 10000}
                              << "add close keep refresh exit siblings expansion";
        QTest::newRow("recording") << ControllerState{true, true, true, 10000} << "keep refresh siblings expansion";
        QTest::newRow("one minute") << ControllerState{true, true, false, 60000}
                                    << "add close keep refresh exit siblings expansion";
        QTest::newRow("five minutes") << ControllerState{true, true, false, 300000}
                                      << "add close refresh exit siblings expansion";
        QTest::newRow("five minutes, editing") << ControllerState{true, false, false, 300000} << "close exit";
        QTest::newRow("five minutes, closed again") << ControllerState{false, false, false, 300000} << "keep exit";
    }

    void states()
    {
        QFETCH(ControllerState, state);
        const ActionStates actions = actionStates(state);
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
