#include "device/DeviceSettings.h"

#include <QTest>

/// What a logger is taken to be before anybody has said anything of it.
class tst_DeviceSettings : public QObject
{
    Q_OBJECT

private slots:
    void saysNothingOfALogger();
    void alarmsNever();
    void rangesDifferInAnyLimit();
};

void tst_DeviceSettings::saysNothingOfALogger()
{
    const DeviceSettings settings;
    for (const QString &text : {settings.name, settings.ch1Name, settings.ch2Name, settings.address,
                                settings.ch1CustomUnit, settings.ch2CustomUnit})
        QVERIFY(text.isEmpty());
    QCOMPARE(settings.port, quint16(23));
    QCOMPARE(settings.ch1Unit, 0);
    QCOMPARE(settings.ch2Unit, 0);
    QCOMPARE(settings.dashboardNumber, 0);
    QVERIFY(!settings.keepConnection);
}

void tst_DeviceSettings::alarmsNever()
{
    const DeviceSettings settings;
    for (const AlarmSettings &alarm : {settings.alarm, settings.pendingAlarm}) {
        QCOMPARE(alarm.range.min1, alarm.range.max1);
        QCOMPARE(alarm.range.min2, alarm.range.max2);
        QCOMPARE(alarm.buzzerRule, QStringLiteral("OFF"));
    }
}

void tst_DeviceSettings::rangesDifferInAnyLimit()
{
    const AlarmRange range{1, 2, 3, 4};
    QVERIFY(range == (AlarmRange{1, 2, 3, 4}));
    QVERIFY(!(range != (AlarmRange{1, 2, 3, 4})));
    for (const AlarmRange &other :
         {AlarmRange{0, 2, 3, 4}, AlarmRange{1, 0, 3, 4}, AlarmRange{1, 2, 0, 4}, AlarmRange{1, 2, 3, 0}}) {
        QVERIFY(range != other);
        QVERIFY(!(range == other));
    }
}

QTEST_GUILESS_MAIN(tst_DeviceSettings)
#include "tst_DeviceSettings.moc"
