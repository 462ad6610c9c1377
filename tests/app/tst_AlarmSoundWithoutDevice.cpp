#include "app/AlarmSound.h"
#include <QSignalSpy>
#include <QTest>

/// The alarm on a host without a sound device: a container, a server.
class tst_AlarmSoundWithoutDevice : public QObject
{
    Q_OBJECT

private slots:
    void setUpReportsTheFailure();
    void alarmDoesNothing();
    void alarmWithoutSetUpDoesNothing();
};

void tst_AlarmSoundWithoutDevice::setUpReportsTheFailure()
{
    AlarmSound alarm;
    QSignalSpy failed(&alarm, &AlarmSound::setUpFailed);
    QTest::ignoreMessage(QtWarningMsg, "Raw audio format not supported by backend, cannot play audio.");
    QVERIFY(!alarm.setUp());
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed.first().at(0).toString(), QStringLiteral("Audio"));
    QCOMPARE(failed.first().at(1).toString(),
             QStringLiteral("Raw audio format not supported by backend, cannot play audio!"));
}

void tst_AlarmSoundWithoutDevice::alarmDoesNothing()
{
    AlarmSound alarm;
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    QTest::ignoreMessage(QtWarningMsg, "Raw audio format not supported by backend, cannot play audio.");
    QVERIFY(!alarm.setUp());
    alarm.setAlarm(true);
    alarm.setAlarm(false);
    alarm.stop();
    QCOMPARE(states.count(), 0);
}

void tst_AlarmSoundWithoutDevice::alarmWithoutSetUpDoesNothing()
{
    AlarmSound alarm;
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    alarm.setAlarm(true);
    alarm.setAlarm(false);
    QCOMPARE(states.count(), 0);
}

QTEST_GUILESS_MAIN(tst_AlarmSoundWithoutDevice)
#include "tst_AlarmSoundWithoutDevice.moc"
