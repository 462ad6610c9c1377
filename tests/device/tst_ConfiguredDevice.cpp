#include "store/InsertSerialData.h"
#include "support/ClockedDevice.h"
#include "support/LogCapture.h"
#include "support/MetaMethods.h"
#include "support/RecordedRows.h"
#include "support/TemporaryInterval.h"

#include <QTest>

/// Settings, readings, history, alarms and rows.
class tst_ConfiguredDevice : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void startsWithItsDefaults();
    void declaresSignalsAndSlotsInOrder();
    void keepsItsSettings();
    void readsOneReply();
    void keepsTheIntervalOfEachSample();
    void showsMissingValuesAsSent();
    void readsWhatIsNoNumberAsZero_data();
    void readsWhatIsNoNumberAsZero();
    void anyReplyConnects();
    void alarms_data();
    void alarms();
    void alarmClearsWithTheNextReading();
    void checkAlarmAllJudgesTheValuesShown();
    void historyAppendsWithEachPollTime();
    void historyOverwritesAtTheSamePollTime();
    void historyDropsTheOldest();
    void historyTimesCarryMilliseconds();
    void recordsAReplyToPollForRecord();
    void recordsNothingUnlessRecording();
    void recordsNoReplyToPollForDisplay();
    void displayPollHoldsBackOneLineOnly();
    void recordsEveryLineOfAReply();
    void recordsThousandsOfLines();
    void gapRowFollowsTheLastRecordedOne();
    void noGapRowWithoutAReading();
    void oneGapRowForASeries();
    void logsAlarms();
};

namespace {

struct Histories
{
    History times;
    History channel1;
    History channel2;

    explicit Histories(const ConfiguredDevice &device) { device.history(times, channel1, channel2); }
    int points() const
    {
        return static_cast<int>(std::count_if(times.begin(), times.end(), [](double t) { return !isNoValue(t); }));
    }
};

} // namespace

void tst_ConfiguredDevice::cleanup()
{
    takeRecordedRows();
}

void tst_ConfiguredDevice::startsWithItsDefaults()
{
    const QDateTime before = QDateTime::currentDateTime();
    ConfiguredDevice device("A1", NetworkInterface);
    QCOMPARE(device.serialNumber(), QString("A1"));
    QCOMPARE(device.interfaceKind(), 2);
    QCOMPARE(int(device.port()), 23);
    QCOMPARE(device.buzzerAlarm(), QString("OFF"));
    QCOMPARE(device.pendingBuzzerAlarm(), QString("OFF"));
    QVERIFY(device.alarmRange() == AlarmRange());
    QVERIFY(device.pendingAlarmRange() == AlarmRange());
    QCOMPARE(device.ch1Unit(), 0);
    QCOMPARE(device.ch2Unit(), 0);
    QVERIFY(!device.isConnected() && !device.isRecording() && !device.keepConnection() && !device.isOpen());
    QVERIFY(!device.alarmOnChannel1() && !device.alarmOnChannel2());
    QCOMPARE(device.ch1Value(), QString());
    QVERIFY(device.pollTime() >= before && device.pollTime() <= QDateTime::currentDateTime());
    const Histories history(device);
    QCOMPARE(history.points(), 0);
    for (int i = 0; i < historyLength; ++i)
        QVERIFY(isNoValue(history.channel1[size_t(i)]) && isNoValue(history.channel2[size_t(i)]));
}

void tst_ConfiguredDevice::declaresSignalsAndSlotsInOrder()
{
    const QMetaObject &meta = ConfiguredDevice::staticMetaObject;
    QCOMPARE(methodsOf(meta, QMetaMethod::Signal), QStringList({"buzzerSyncSuccess()", "buzzerSyncError(QString)"}));
    QCOMPARE(methodsOf(meta, QMetaMethod::Slot),
             QStringList({"readData(QString)", "deviceConnected()", "deviceDisconnected()", "slotWriteStartSync()"}));
}

void tst_ConfiguredDevice::keepsItsSettings()
{
    ConfiguredDevice device("A1", NetworkInterface);
    device.setDeviceInfo("Kühlraum", "Air", "Floor", "192.168.7.23", 4001);
    QCOMPARE(device.deviceName(), QString("Kühlraum"));
    QCOMPARE(device.ch1Name(), QString("Air"));
    QCOMPARE(device.ch2Name(), QString("Floor"));
    QCOMPARE(device.address(), QString("192.168.7.23"));
    QCOMPARE(int(device.port()), 4001);
    device.setUnits(1, 4);
    device.setCustomUnits("", "hPa");
    QCOMPARE(device.ch1Unit(), 1);
    QCOMPARE(device.ch2Unit(), 4);
    QCOMPARE(device.ch2CustomUnit(), QString("hPa"));
    device.setDashboardNumber(3);
    QCOMPARE(device.dashboardNumber(), 3);
    device.setKeepConnection(true);
    QVERIFY(device.keepConnection());
    ConfiguredDevice serial("B2", UsbInterface);
    serial.setKeepConnection(true);
    QVERIFY(!serial.keepConnection());
}

void tst_ConfiguredDevice::keepsTheIntervalOfEachSample()
{
    ClockedDevice bench;
    {
        const TemporaryInterval often(1000);
        bench.reply("21.50,45.10\n");
    }
    const TemporaryInterval seldom(60000);
    bench.reply("21.60,45.20\n", 60000);
    bench.reply("21.70,45.30\n", 60000);
    const History &intervals = bench.device.historyIntervals();
    QVERIFY(isNoValue(intervals[historyLength - 4]));
    QCOMPARE(intervals[historyLength - 3], 1000.0);
    QCOMPARE(intervals[historyLength - 2], 60000.0);
    QCOMPARE(intervals[historyLength - 1], 60000.0);
}

void tst_ConfiguredDevice::readsOneReply()
{
    ClockedDevice bench;
    bench.reply("21.50,45.10\n");
    QCOMPARE(bench.device.ch1Value(), QString("21.50"));
    QCOMPARE(bench.device.ch2Value(), QString("45.10"));
    const Histories history(bench.device);
    QCOMPARE(history.points(), 1);
    QCOMPARE(history.times.back(), 1700000000.0);
    QCOMPARE(history.channel1.back(), 21.5);
    QCOMPARE(history.channel2.back(), 45.1);
}

void tst_ConfiguredDevice::showsMissingValuesAsSent()
{
    ClockedDevice bench;
    bench.device.setAlarmRange(10, 30, 10, 30);
    bench.reply("----,45.1\n");
    QCOMPARE(bench.device.ch1Value(), QString("----"));
    QCOMPARE(bench.device.ch2Value(), QString("45.10"));
    QVERIFY(!bench.device.alarmOnChannel1());
    QVERIFY(bench.device.alarmOnChannel2());
    QVERIFY(isNoValue(Histories(bench.device).channel1.back()));
    bench.reply("21.5,-----x\n", 1000);
    QCOMPARE(bench.device.ch2Value(), QString("-----x"));
}

void tst_ConfiguredDevice::readsWhatIsNoNumberAsZero_data()
{
    QTest::addColumn<QString>("field");
    for (const char *field : {"nan", "inf", "-inf", "1e400", "warm", "", "0x10", "'"})
        QTest::newRow(field) << QString(field);
}

void tst_ConfiguredDevice::readsWhatIsNoNumberAsZero()
{
    QFETCH(QString, field);
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.reply(field + "," + field + "\n");
    QCOMPARE(bench.device.ch1Value(), QString("0.00"));
    QCOMPARE(bench.device.ch2Value(), QString("0.00"));
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QVERIFY(!rows[0].channel1.isNull() && !rows[0].channel2.isNull());
    QCOMPARE(rows[0].channel1.toDouble(), 0.0);
    QCOMPARE(rows[0].channel2.toDouble(), 0.0);
}

void tst_ConfiguredDevice::anyReplyConnects()
{
    ClockedDevice bench;
    bench.device.readData("rubbish");
    QVERIFY(bench.device.isConnected());
    QCOMPARE(bench.device.ch1Value(), QString());
    QCOMPARE(Histories(bench.device).points(), 0);
}

void tst_ConfiguredDevice::alarms_data()
{
    QTest::addColumn<float>("min");
    QTest::addColumn<float>("max");
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("alarm");
    QTest::newRow("at the maximum") << 10.0F << 30.0F << "30.0" << false;
    QTest::newRow("above the maximum") << 10.0F << 30.0F << "30.01" << true;
    QTest::newRow("at the minimum") << 10.0F << 30.0F << "10" << false;
    QTest::newRow("below the minimum") << 10.0F << 30.0F << "9.99" << true;
    QTest::newRow("within") << 10.0F << 30.0F << "20" << false;
    QTest::newRow("negative") << -20.0F << -5.0F << "-4.99" << true;
    QTest::newRow("minimum without an exact float") << 10.1F << 30.1F << "10.1" << false;
    QTest::newRow("maximum without an exact float") << 10.1F << 30.3F << "30.3" << false;
    QTest::newRow("just below such a minimum") << 10.1F << 30.1F << "10.09" << true;
    QTest::newRow("no range") << 0.0F << 0.0F << "99" << false;
    QTest::newRow("empty range elsewhere") << 5.0F << 5.0F << "99" << false;
    QTest::newRow("turned over") << 30.0F << 10.0F << "20" << true;
    QTest::newRow("no value") << 10.0F << 30.0F << "----" << false;
    QTest::newRow("beyond every float") << 10.0F << 30.0F << "1e300" << true;
    QTest::newRow("below every float") << 10.0F << 30.0F << "-1e300" << true;
}

void tst_ConfiguredDevice::alarms()
{
    QFETCH(float, min);
    QFETCH(float, max);
    QFETCH(QString, field);
    QFETCH(bool, alarm);
    ClockedDevice bench;
    bench.device.setAlarmRange(min, max, 0, 0);
    bench.reply(field + "," + field);
    QCOMPARE(bench.device.alarmOnChannel1(), alarm);
    QCOMPARE(bench.device.alarmOnChannel2(), false);
    bench.device.setAlarmRange(0, 0, min, max);
    bench.reply(field + "," + field);
    QCOMPARE(bench.device.alarmOnChannel1(), false);
    QCOMPARE(bench.device.alarmOnChannel2(), alarm);
}

void tst_ConfiguredDevice::alarmClearsWithTheNextReading()
{
    ClockedDevice bench;
    bench.device.setAlarmRange(10, 30, 10, 30);
    bench.reply("40,40");
    QVERIFY(bench.device.alarmOnChannel1() && bench.device.alarmOnChannel2());
    bench.reply("20,20", 1000);
    QVERIFY(!bench.device.alarmOnChannel1() && !bench.device.alarmOnChannel2());
}

void tst_ConfiguredDevice::checkAlarmAllJudgesTheValuesShown()
{
    ClockedDevice bench;
    bench.device.checkAlarmAll();
    QVERIFY(!bench.device.alarmOnChannel1());
    bench.reply("40,----");
    bench.device.setAlarmRange(10, 30, 10, 30);
    QVERIFY(!bench.device.alarmOnChannel1());
    LogCapture log;
    bench.device.checkAlarmAll();
    QVERIFY(bench.device.alarmOnChannel1());
    QVERIFY(!bench.device.alarmOnChannel2());
    QCOMPARE(log.lines(), QStringList({"@@@@@@@@@@@@@@ checkAlarmAll A : 40, B : 1.7e+308",
                                       "- ConfiguredDevice::setCheckAlarmSet1() : A1"}));
    bench.device.setAlarmRange(10, 50, 10, 30);
    bench.device.checkAlarmAll();
    QVERIFY(!bench.device.alarmOnChannel1());
}

void tst_ConfiguredDevice::historyAppendsWithEachPollTime()
{
    ClockedDevice bench;
    bench.reply("1,10");
    bench.reply("2,20", 1000);
    bench.reply("----,30", 1000);
    const Histories history(bench.device);
    QCOMPARE(history.points(), 3);
    QCOMPARE(history.times[237], 1700000000.0);
    QCOMPARE(history.times[239], 1700000002.0);
    QCOMPARE(history.channel1[238], 2.0);
    QVERIFY(isNoValue(history.channel1[239]));
    QCOMPARE(history.channel2[239], 30.0);
}

void tst_ConfiguredDevice::historyOverwritesAtTheSamePollTime()
{
    ClockedDevice bench;
    bench.reply("1,10\n2,20\n");
    bench.device.pollForDisplay();
    QCOMPARE(Histories(bench.device).points(), 1);
    QCOMPARE(Histories(bench.device).channel1.back(), 2.0);
    bench.device.readData("3,30");
    QCOMPARE(Histories(bench.device).points(), 1);
    QCOMPARE(Histories(bench.device).channel2.back(), 30.0);
}

void tst_ConfiguredDevice::historyDropsTheOldest()
{
    ClockedDevice bench;
    for (int i = 0; i < historyLength + 10; ++i)
        bench.reply(QString("%1,%2").arg(i).arg(-i), 1000);
    const Histories history(bench.device);
    QCOMPARE(history.points(), historyLength);
    QCOMPARE(history.channel1.front(), 10.0);
    QCOMPARE(history.channel2.front(), -10.0);
    QCOMPARE(history.channel1.back(), 249.0);
    QCOMPARE(history.times.back() - history.times.front(), 239.0);
}

void tst_ConfiguredDevice::historyTimesCarryMilliseconds()
{
    ClockedDevice bench;
    bench.reply("1,2", 250);
    QCOMPARE(Histories(bench.device).times.back(), 1700000000.25);
    bench.reply("1,2", 1);
    QCOMPARE(Histories(bench.device).times.back(), 1700000000.251);
    QCOMPARE(Histories(bench.device).points(), 2);
}

void tst_ConfiguredDevice::recordsAReplyToPollForRecord()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    QVERIFY(bench.device.isRecording());
    bench.reply("21.50,----\n", 1999);
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].serial, QString("A1"));
    QCOMPARE(rows[0].channel1.toDouble(), 21.5);
    QVERIFY(rows[0].channel2.isNull());
    QCOMPARE(rows[0].time, 1700000001U);
}

void tst_ConfiguredDevice::recordsNothingUnlessRecording()
{
    ClockedDevice bench;
    bench.reply("1,2\n");
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    bench.device.setRecording(true);
    bench.reply("1,2\n");
    bench.reply("rubbish\n");
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    bench.device.setRecording(false);
    bench.reply("1,2\n");
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_ConfiguredDevice::recordsNoReplyToPollForDisplay()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.device.pollForDisplay();
    bench.device.readData("1,2\n");
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(bench.device.ch1Value(), QString("1.00"));
    bench.reply("3,4\n", 1000);
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_ConfiguredDevice::displayPollHoldsBackOneLineOnly()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.device.pollForDisplay();
    bench.device.readData("rubbish\n");
    bench.device.readData("1,2\n3,4\n");
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows[0].channel1.toDouble(), 3.0);
}

void tst_ConfiguredDevice::recordsEveryLineOfAReply()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.reply("1,2\n3,4\n");
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows[0].channel1.toDouble(), 1.0);
    QCOMPARE(rows[1].channel1.toDouble(), 3.0);
    QCOMPARE(rows[0].time, rows[1].time);
}

void tst_ConfiguredDevice::recordsThousandsOfLines()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    QString reply;
    for (int i = 0; i < 5000; ++i)
        reply += QString("%1,%2\n").arg(i).arg(QString(i % 10 == 0 ? 4000 : 3, '9'));
    bench.reply(reply);
    QCOMPARE(InsertSerialData::pendingCount(), 5000);
    QCOMPARE(Histories(bench.device).points(), 1);
    QCOMPARE(bench.device.ch1Value(), QString("4999.00"));
    QCOMPARE(takeRecordedRows().size(), 5000);
}

void tst_ConfiguredDevice::gapRowFollowsTheLastRecordedOne()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.reply("1,2\n");
    bench.device.setRecording(false);
    bench.reply("3,4\n", 60000);
    LogCapture log;
    bench.device.insertNoValue();
    QCOMPARE(log.lines(), QStringList("- ConfiguredDevice::insertNoValue() : A1"));
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows[1].time, 1700000001U);
    QVERIFY(rows[1].channel1.isNull() && rows[1].channel2.isNull());
}

void tst_ConfiguredDevice::noGapRowWithoutAReading()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.device.pollForRecord();
    LogCapture log;
    bench.device.insertNoValue();
    QCOMPARE(log.lines(), QStringList("- ConfiguredDevice::insertNoValue() : A1"));
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

void tst_ConfiguredDevice::oneGapRowForASeries()
{
    ClockedDevice bench;
    bench.device.setRecording(true);
    bench.reply("1,2\n");
    bench.device.insertNoValue();
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    bench.device.insertNoValue();
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    bench.reply("1,2\n", 60000);
    bench.device.insertNoValue();
    QCOMPARE(InsertSerialData::pendingCount(), 4);
    QCOMPARE(takeRecordedRows().last().time, 1700000061U);
}

void tst_ConfiguredDevice::logsAlarms()
{
    ClockedDevice bench;
    bench.device.setAlarmRange(10, 30, 10, 30);
    LogCapture log;
    bench.device.readData("99,99\n");
    QCOMPARE(log.lines().mid(1), QStringList({"- ConfiguredDevice::setCheckAlarmSet1() : A1",
                                              "- ConfiguredDevice::setCheckAlarmSet2() : A1"}));
}

QTEST_GUILESS_MAIN(tst_ConfiguredDevice)
#include "tst_ConfiguredDevice.moc"
