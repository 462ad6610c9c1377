#include "support/ClockedDevice.h"
#include "support/DeviceFakes.h"

#include <QPointer>
#include <QTest>

/// What a device tells its tiles, chart and list entry, and that it survives what they do about it.
class tst_DeviceViews : public QObject
{
    Q_OBJECT

private slots:
    void pushesIntoItsViews();
    void newestReadingOfAReplyIsShown();
    void disconnectEmptiesEverything();
    void closingTheLinkEmptiesEverything_data();
    void closingTheLinkEmptiesEverything();
    void listEntryStartsDisconnected();
    void detachedViewsHearNothing();
    void mayBeDeletedByAView_data();
    void mayBeDeletedByAView();
    void mayBeDeletedByAViewInsideItsOwnPoll();
};

void tst_DeviceViews::pushesIntoItsViews()
{
    ClockedDevice bench;
    FakeTile tile1;
    FakeTile tile2;
    FakeChart chart;
    FakeListEntry entry;
    bench.device.setTiles(&tile1, &tile2);
    bench.device.setChartView(&chart);
    bench.device.setListItem(&entry);
    bench.reply("1,----\n");
    bench.reply("3,4\n");
    QCOMPARE(tile1.calls, QStringList({"connected A1", "value 1.00", "connected A1", "value 3.00"}));
    QCOMPARE(tile2.calls, QStringList({"connected A1", "value ----", "connected A1", "value 4.00"}));
    QCOMPARE(chart.calls, QStringList({"connected A1", "data 1.00 ----", "connected A1", "data 3.00 4.00"}));
    QCOMPARE(entry.states, QList<bool>({false, true, true}));
    QCOMPARE(chart.times.back(), 1700000000.0);
    QCOMPARE(chart.channel1.back(), 3.0);
    QCOMPARE(chart.channel2.back(), 4.0);
}

/// A hundred numbers of 309 digits each would take as long to format as the station may think about all its loggers.
void tst_DeviceViews::newestReadingOfAReplyIsShown()
{
    ClockedDevice bench;
    FakeTile tile1;
    FakeTile tile2;
    FakeChart chart;
    bench.device.setTiles(&tile1, &tile2);
    bench.device.setChartView(&chart);
    bench.reply(QString("1e308,1e308\n").repeated(100) + "3,4\nno reading\n");
    QCOMPARE(tile1.calls, QStringList({"connected A1", "value 3.00"}));
    QCOMPARE(tile2.calls, QStringList({"connected A1", "value 4.00"}));
    QCOMPARE(chart.calls, QStringList({"connected A1", "data 3.00 4.00"}));
}

void tst_DeviceViews::disconnectEmptiesEverything()
{
    ClockedDevice bench;
    bench.device.setAlarmRange(10, 30, 10, 30);
    bench.reply("99,99");
    FakeTile tile1;
    FakeTile tile2;
    FakeChart chart;
    FakeListEntry entry;
    bench.device.setTiles(&tile1, &tile2);
    bench.device.setChartView(&chart);
    bench.device.setListItem(&entry);
    bench.device.deviceDisconnected();
    QVERIFY(!bench.device.isConnected());
    QVERIFY(!bench.device.alarmOnChannel1() && !bench.device.alarmOnChannel2());
    QCOMPARE(bench.device.ch1Value(), QString());
    QCOMPARE(bench.device.ch2Value(), QString());
    QCOMPARE(tile1.calls, QStringList("disconnected A1"));
    QCOMPARE(tile2.calls, QStringList("disconnected A1"));
    QCOMPARE(chart.calls, QStringList("disconnected A1"));
    QCOMPARE(entry.states, QList<bool>({false, false}));
    History times{};
    History channel1{};
    History channel2{};
    bench.device.history(times, channel1, channel2);
    QCOMPARE(channel1.back(), 99.0); // the history stays
}

void tst_DeviceViews::closingTheLinkEmptiesEverything_data()
{
    QTest::addColumn<bool>("forgetting");
    QTest::newRow("closed") << false;
    QTest::newRow("port forgotten") << true;
}

void tst_DeviceViews::closingTheLinkEmptiesEverything()
{
    QFETCH(bool, forgetting);
    ClockedDevice bench;
    bench.device.setAlarmRange(10, 30, 10, 30);
    bench.reply("99,99");
    FakeTile tile;
    FakeChart chart;
    FakeListEntry entry;
    bench.device.setTiles(&tile, nullptr);
    bench.device.setChartView(&chart);
    bench.device.setListItem(&entry);
    forgetting ? bench.device.forgetPort() : bench.device.closeDevice();
    QVERIFY(!bench.device.isConnected());
    QVERIFY(!bench.device.alarmOnChannel1() && !bench.device.alarmOnChannel2());
    QCOMPARE(bench.device.ch1Value(), QString());
    QCOMPARE(bench.device.ch2Value(), QString());
    QCOMPARE(tile.calls, QStringList("disconnected A1"));
    QCOMPARE(chart.calls, QStringList("disconnected A1"));
    QCOMPARE(entry.states, QList<bool>({false, false}));
    bench.device.closeDevice();
    QCOMPARE(tile.calls.size(), 1);
}

void tst_DeviceViews::listEntryStartsDisconnected()
{
    ClockedDevice bench;
    bench.reply("1,2");
    FakeListEntry entry;
    bench.device.setListItem(&entry);
    QCOMPARE(entry.states, QList<bool>{false});
    bench.device.setListItem(nullptr);
    bench.device.deviceConnected();
    QCOMPARE(entry.states, QList<bool>{false});
}

void tst_DeviceViews::detachedViewsHearNothing()
{
    ClockedDevice bench;
    FakeTile tile1;
    FakeTile tile2;
    FakeChart chart;
    FakeListEntry entry;
    bench.device.setTiles(&tile1, &tile2);
    bench.device.setChartView(&chart);
    bench.device.setListItem(&entry);
    bench.device.detachViews();
    bench.reply("1,2");
    bench.device.deviceDisconnected();
    QVERIFY(tile1.calls.isEmpty() && tile2.calls.isEmpty() && chart.calls.isEmpty());
    QCOMPARE(entry.states, QList<bool>{false});
}

void tst_DeviceViews::mayBeDeletedByAView_data()
{
    QTest::addColumn<int>("call");
    QTest::newRow("when connected") << 1;
    QTest::newRow("with the first value") << 2;
    QTest::newRow("with the second value") << 3;
    QTest::newRow("when disconnected") << 4;
}

void tst_DeviceViews::mayBeDeletedByAView()
{
    QFETCH(int, call);
    QPointer<ConfiguredDevice> device = new ConfiguredDevice("A1", NetworkInterface);
    FakeTile tile1;
    FakeTile tile2;
    tile1.onCall = [&] {
        if (tile1.calls.size() == call)
            delete device.data();
    };
    device->setTiles(&tile1, &tile2);
    device->setRecording(true);
    device->readData("1,2\n3,4\n");
    for (int poll = 0; device && poll < 6; ++poll)
        device->pollForRecord();
    QVERIFY(!device);
    QCOMPARE(tile1.calls.size(), call);
    QCOMPARE(tile2.calls.size(), call - 1);
}

void tst_DeviceViews::mayBeDeletedByAViewInsideItsOwnPoll()
{
    for (const bool forRecord : {true, false}) {
        QPointer<ConfiguredDevice> device = new ConfiguredDevice("B2", UsbInterface);
        FakeTile tile;
        tile.onCall = [&] {
            delete device.data();
        };
        device->setTiles(&tile, nullptr);
        forRecord ? device->pollForRecord() : device->pollForDisplay(); // the port is closed, so the poll fails
        QVERIFY(!device);
        QCOMPARE(tile.calls, QStringList("disconnected B2"));
    }
}

QTEST_GUILESS_MAIN(tst_DeviceViews)
#include "tst_DeviceViews.moc"
