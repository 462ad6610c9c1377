#include "device/ConfiguredDevice.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

class tst_AlarmExchange : public QObject
{
    Q_OBJECT

private slots:
    void sendsEachCommandAfterTheLastOk();
    void writesLimitsWithTwoDecimals();
    void aRuleIsOneLine();
    void endsWithTheConnectionAsThePolicyWants_data();
    void endsWithTheConnectionAsThePolicyWants();
    void usesAConnectionThatStands();
    void joinsAConnectThatIsUnderWay();
    void numbersItsRuns();
    void refusalEndsIt_data();
    void refusalEndsIt();
    void failedWriteEndsIt();
    void failedFirstWriteIsSilent();
    void readingsRestMeanwhile();
    void pollsGoOnAfterwards();
    void stopEndsItAtAnyTime();
    void disconnectEndsIt();
    void appliesThePendingSettings();
    void otherKindsDoNothing_data();
    void otherKindsDoNothing();
    void logsItsSteps();
    void mayBeDeletedInsideItsReports_data();
    void mayBeDeletedInsideItsReports();
};

namespace {

struct Exchange
{
    TemporaryInterval interval;
    ScriptedLogger logger;
    ConfiguredDevice device{"A1", NetworkInterface};
    QSignalSpy success{&device, &ConfiguredDevice::buzzerSyncSuccess};
    QSignalSpy error{&device, &ConfiguredDevice::buzzerSyncError};

    explicit Exchange(int intervalMs = 10000) : interval(intervalMs)
    {
        logger.setReply("OK\r\n");
        device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
        device.setPendingAlarmRange(10, 30, 0, 0);
    }

    /// Answers the @p count first commands with OK, the next one with @p last.
    void answerOk(int count, const QByteArray &last)
    {
        logger.setScript([this, count, last](const QByteArray &) {
            const QByteArray reply = logger.commands().size() <= count ? QByteArray("OK\r\n") : last;
            return reply.isEmpty() ? QList<QByteArray>() : QList<QByteArray>{reply};
        });
    }
};

const QList<QByteArray> allCommands{"ATBMIN1 10.00", "ATBMAX1 30.00", "ATBMIN2 0.00",
                                    "ATBMAX2 0.00",  "ATBAL OFF",     "ATBSET"};

} // namespace

void tst_AlarmExchange::sendsEachCommandAfterTheLastOk()
{
    Exchange run;
    run.logger.setSilent();
    run.device.startSyncTelnet();
    const QList<QByteArray> exact{"ATBMIN1 10.00\r\n", "ATBMAX1 30.00\r\n", "ATBMIN2 0.00\r\n",
                                  "ATBMAX2 0.00\r\n",  "ATBAL OFF\r\n",     "ATBSET\r\n"};
    QByteArray expected;
    for (const QByteArray &command : exact) {
        expected += command;
        QTRY_COMPARE(run.logger.received(), expected);
        for (int turn = 0; turn < 10; ++turn)
            QCoreApplication::processEvents();
        QCOMPARE(run.logger.received(), expected);
        QCOMPARE(run.success.count(), 0);
        run.logger.send("OK\r\n");
    }
    QVERIFY(run.success.wait());
    QCOMPARE(run.logger.received(), expected);
    QCOMPARE(run.error.count(), 0);
}

void tst_AlarmExchange::writesLimitsWithTwoDecimals()
{
    Exchange run;
    run.device.setPendingAlarmRange(-5, 30.456F, 0.1F, 123456);
    run.device.setPendingBuzzerAlarm("ON 3");
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    QCOMPARE(run.logger.commands(), QList<QByteArray>({"ATBMIN1 -5.00", "ATBMAX1 30.46", "ATBMIN2 0.10",
                                                       "ATBMAX2 123456.00", "ATBAL ON 3", "ATBSET"}));
}

/// Whatever a project from elsewhere holds.
void tst_AlarmExchange::aRuleIsOneLine()
{
    Exchange run;
    run.device.setPendingBuzzerAlarm("ON\r\nATBMAX1 99.00\n");
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    QCOMPARE(run.logger.commands().value(4), QByteArray("ATBAL ONATBMAX1 99.00"));
    QCOMPARE(run.logger.commands().size(), 6);
}

void tst_AlarmExchange::endsWithTheConnectionAsThePolicyWants_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("keep");
    QTest::addColumn<bool>("fails");
    QTest::addColumn<bool>("staysOpen");
    QTest::newRow("10 s, success") << 10000 << false << false << false;
    QTest::newRow("10 s, failure") << 10000 << false << true << false;
    QTest::newRow("10 s, keep on, success") << 10000 << true << false << true;
    QTest::newRow("10 s, keep on, failure") << 10000 << true << true << true;
    QTest::newRow("5 min, keep on") << 300000 << true << false << true;
}

void tst_AlarmExchange::endsWithTheConnectionAsThePolicyWants()
{
    QFETCH(int, interval);
    QFETCH(bool, keep);
    QFETCH(bool, fails);
    QFETCH(bool, staysOpen);
    Exchange run(interval);
    run.device.setKeepConnection(keep);
    if (fails)
        run.answerOk(2, "ERR\r\n");
    bool openWhenReported = false;
    const auto look = [&] {
        openWhenReported = run.device.isOpen();
    };
    connect(&run.device, &ConfiguredDevice::buzzerSyncSuccess, this, look);
    connect(&run.device, &ConfiguredDevice::buzzerSyncError, this, look);
    run.device.startSyncTelnet();
    QTRY_COMPARE(run.success.count() + run.error.count(), 1);
    QCOMPARE(run.error.count(), fails ? 1 : 0);
    QVERIFY2(openWhenReported, "the report comes before the connection is closed");
    QCOMPARE(run.device.isOpen(), staysOpen);
}

void tst_AlarmExchange::usesAConnectionThatStands()
{
    Exchange run(1000);
    run.logger.setReply("ATDC 1,2\r\n");
    run.device.pollForRecord();
    QTRY_VERIFY(run.device.isConnected());
    run.logger.setReply("OK\r\n");
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"} + allCommands);
    QCOMPARE(run.logger.accepted(), 1);
    QVERIFY(run.device.isOpen());
}

void tst_AlarmExchange::joinsAConnectThatIsUnderWay()
{
    Exchange run;
    run.device.pollForRecord(); // starts to connect
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    QCOMPARE(run.logger.commands().mid(0, allCommands.size()), allCommands);
    QTRY_COMPARE(run.logger.commands(), allCommands + QList<QByteArray>{"ATDC"});
}

void tst_AlarmExchange::numbersItsRuns()
{
    Exchange run;
    QVERIFY(!run.device.isExchangeRunning());
    QCOMPARE(run.device.exchangeNumber(), 0);
    run.device.startSyncTelnet();
    QVERIFY(run.device.isExchangeRunning());
    QCOMPARE(run.device.exchangeNumber(), 1);
    QVERIFY(run.success.wait());
    QVERIFY(!run.device.isExchangeRunning());
    QCOMPARE(run.device.exchangeNumber(), 1);
    run.device.startSyncTelnet();
    QCOMPARE(run.device.exchangeNumber(), 2);
    run.device.stopSyncTelnet();
    QVERIFY(!run.device.isExchangeRunning());
}

void tst_AlarmExchange::refusalEndsIt_data()
{
    QTest::addColumn<int>("acknowledged");
    QTest::addColumn<QByteArray>("refusal");
    for (int acknowledged = 0; acknowledged < 6; ++acknowledged)
        QTest::addRow("ERR after %d", acknowledged) << acknowledged << QByteArray("ERR\r\n");
    QTest::newRow("lower case") << 3 << QByteArray("ok\r\n");
    QTest::newRow("more than OK") << 0 << QByteArray("OK.\r\n");
    QTest::newRow("blank before OK") << 0 << QByteArray(" OK\r\n");
    QTest::newRow("OK twice") << 0 << QByteArray("OK\r\nOK\r\n");
    QTest::newRow("a reading") << 2 << QByteArray("ATDC 21.50,45.10\r\n");
}

void tst_AlarmExchange::refusalEndsIt()
{
    QFETCH(int, acknowledged);
    QFETCH(QByteArray, refusal);
    Exchange run;
    run.answerOk(acknowledged, refusal);
    run.device.startSyncTelnet();
    QVERIFY(run.error.wait());
    QCOMPARE(run.error.first().first().toString(), QString("Device Setup Failed."));
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(run.logger.commands(), allCommands.mid(0, acknowledged + 1));
    QCOMPARE(run.success.count(), 0);
    QCOMPARE(run.error.count(), 1);
}

void tst_AlarmExchange::failedWriteEndsIt()
{
    LogCapture log;
    Exchange run;
    run.device.startSyncTelnet();
    run.device.readData("OK\n"); // while the link still connects and takes no bytes
    QCOMPARE(run.error.count(), 1);
    QCOMPARE(run.error.first().first().toString(), QString("Device communication failure."));
    QVERIFY(log.lines().contains("[ERROR] - ConfiguredDevice::readData() : STATE_ERROR OK [A1] : OK"));
    QVERIFY(!run.device.isOpen());
    run.logger.setReply("ATDC 1,2\r\n");
    run.device.pollForRecord();
    QTRY_COMPARE(run.device.ch1Value(), QString("1.00"));
}

void tst_AlarmExchange::failedFirstWriteIsSilent()
{
    Exchange run(1000);
    run.device.startSyncTelnet(); // no connection yet: it is opened, the command is not sent
    QTRY_VERIFY(run.device.isOpen());
    QCOMPARE(run.success.count() + run.error.count(), 0);
    QCOMPARE(run.logger.received(), QByteArray());
    run.device.stopSyncTelnet();
    run.device.pollForRecord();
    QTRY_COMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"});
}

void tst_AlarmExchange::readingsRestMeanwhile()
{
    Exchange run;
    run.logger.setSilent();
    const QDateTime polledBefore = run.device.pollTime();
    run.device.readData("21.50,45.10\n");
    run.device.startSyncTelnet();
    QTRY_COMPARE(run.logger.commands().size(), 1);
    for (int poll = 0; poll < 10; ++poll) {
        run.device.pollForRecord();
        run.device.pollForDisplay();
    }
    QCOMPARE(run.device.pollTime(), polledBefore);
    QVERIFY2(run.device.isConnected(), "resting polls miss no replies");
    run.logger.send("ATDC 99,99\r\n");
    QVERIFY(run.error.wait());
    QCOMPARE(run.device.ch1Value(), QString("21.50"));
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATBMIN1 10.00"});
}

void tst_AlarmExchange::pollsGoOnAfterwards()
{
    Exchange run;
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    run.logger.setReply("ATDC 21.50,45.10\r\n");
    run.device.pollForRecord();
    QTRY_COMPARE(run.device.ch1Value(), QString("21.50"));
    QCOMPARE(run.logger.commands().last(), QByteArray("ATDC"));
}

void tst_AlarmExchange::stopEndsItAtAnyTime()
{
    for (int acknowledged = 0; acknowledged < 6; ++acknowledged) {
        Exchange run;
        run.answerOk(acknowledged, QByteArray());
        run.device.startSyncTelnet();
        QTRY_COMPARE(run.logger.commands().size(), acknowledged + 1);
        run.device.stopSyncTelnet();
        QVERIFY(!run.device.isOpen());
        QTRY_COMPARE(run.logger.openConnections(), 0);
        QCOMPARE(run.success.count() + run.error.count(), 0);
        run.logger.setReply("ATDC 1,2\r\n");
        run.device.pollForRecord();
        QTRY_VERIFY(run.device.isConnected());
    }
    Exchange kept(1000);
    kept.device.openDevice();
    QTRY_VERIFY(kept.device.isOpen());
    kept.device.startSyncTelnet();
    kept.device.stopSyncTelnet();
    QVERIFY(kept.device.isOpen());
}

void tst_AlarmExchange::disconnectEndsIt()
{
    Exchange run;
    run.logger.setSilent();
    run.device.startSyncTelnet();
    QTRY_COMPARE(run.logger.commands().size(), 1);
    run.device.deviceDisconnected();
    run.logger.send("OK\r\n");
    QTRY_VERIFY(run.device.isConnected()); // taken for a reply to a poll
    QCOMPARE(run.logger.commands().size(), 1);
    QCOMPARE(run.success.count() + run.error.count(), 0);
}

void tst_AlarmExchange::appliesThePendingSettings()
{
    ConfiguredDevice device("A1", NetworkInterface);
    device.setPendingAlarmRange(1, 2, 3, 4);
    device.setPendingBuzzerAlarm("ON");
    QVERIFY(device.alarmRange() == AlarmRange());
    QCOMPARE(device.buzzerAlarm(), QString("OFF"));
    device.applyPendingSettings();
    QVERIFY(device.alarmRange() == (AlarmRange{1, 2, 3, 4}));
    QCOMPARE(device.buzzerAlarm(), QString("ON"));
}

void tst_AlarmExchange::otherKindsDoNothing_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("none") << 0;
    QTest::newRow("serial") << 1;
}

void tst_AlarmExchange::otherKindsDoNothing()
{
    QFETCH(int, kind);
    ScriptedLogger logger;
    ConfiguredDevice device("A1", kind);
    device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    LogCapture log;
    device.startSyncTelnet();
    device.slotWriteStartSync();
    device.stopSyncTelnet();
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!device.isOpen());
}

void tst_AlarmExchange::logsItsSteps()
{
    LogCapture log;
    Exchange run;
    run.device.startSyncTelnet();
    QVERIFY(run.success.wait());
    QVERIFY(log.lines().contains("- ConfiguredDevice::startSyncTelnet() : set buzzerflag true"));
    QVERIFY(log.lines().contains("[DEBUG] - ConfiguredDevice : szCommand : ATBAL OFF\r\n [A1]"));
    QCOMPARE(log.lines().last(), QString("- ConfiguredDevice::readData() : STATE_END [A1] : OK"));
    log.clear();
    run.answerOk(0, "ERR\r\n");
    run.device.startSyncTelnet();
    QVERIFY(run.error.wait());
    QCOMPARE(log.lines().last(), QString("[ERROR] - ConfiguredDevice::readData() : NOT OK [A1] : ERR"));
    log.clear();
    run.device.stopSyncTelnet();
    QVERIFY(log.lines().contains("- ConfiguredDevice::stopSyncTelnet() : set buzzerflag false"));
}

void tst_AlarmExchange::mayBeDeletedInsideItsReports_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("success") << QByteArray("OK\r\n");
    QTest::newRow("error") << QByteArray("ERR\r\n");
}

void tst_AlarmExchange::mayBeDeletedInsideItsReports()
{
    QFETCH(QByteArray, reply);
    TemporaryInterval interval(10000);
    ScriptedLogger logger;
    logger.setReply(reply);
    QPointer<ConfiguredDevice> device = new ConfiguredDevice("A1", NetworkInterface);
    device->setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    const auto deleteDevice = [&] {
        delete device.data();
    };
    connect(device, &ConfiguredDevice::buzzerSyncSuccess, this, deleteDevice);
    connect(device, &ConfiguredDevice::buzzerSyncError, this, deleteDevice);
    device->startSyncTelnet();
    QTRY_VERIFY(!device);
    QTRY_COMPARE(logger.accepted(), 1);
    QTRY_COMPARE(logger.openConnections(), 0);
}

QTEST_GUILESS_MAIN(tst_AlarmExchange)
#include "tst_AlarmExchange.moc"
