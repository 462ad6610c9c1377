#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/DeviceFakes.h"
#include "support/LogCapture.h"
#include "support/RecordedRows.h"
#include "support/SerialLine.h"
#include "support/TemporaryInterval.h"

#include <QPointer>
#include <QTest>

/// A USB device on a real serial line: polls, and ports that come and go.
class tst_UsbDevicePolling : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void pollsAUsbLogger();
    void hangingLoggerIsGivenUp_data();
    void hangingLoggerIsGivenUp();
    void asksAgainAfterAReopening();
    void asksNotAgainWhatWasAskedLongAgo();
    void answerToAClosedPortIsNotTakenForTheNext();
    void unpluggedUsbLoggerDisconnects();
    void displayPollReopensAClosedPort();
    void recordPollDoesNotReopen();
    void forgottenPortIsNotOpened();
    void renamingDoesNotGiveThePortBack_data();
    void renamingDoesNotGiveThePortBack();
    void deletedUsbDeviceLeavesNoPort();
    void mayBeDeletedInsideItsLinksReply();
};

namespace {

struct UsbPair
{
    SerialLine logger;
    ConfiguredDevice device{"B2", UsbInterface};

    UsbPair()
    {
        device.setDeviceInfo("Attic", "1", "2", logger.portName(), 23);
        setHanging(false);
    }

    /// Hanging it takes commands and answers none.
    void setHanging(bool on)
    {
        logger.disconnect();
        if (!on)
            QObject::connect(&logger, &SerialLine::bytesReceived, &logger,
                             [this] { logger.send("ATCD 21.50,45.10\r\n"); });
    }
};

} // namespace

void tst_UsbDevicePolling::cleanup()
{
    takeRecordedRows();
}

void tst_UsbDevicePolling::pollsAUsbLogger()
{
    UsbPair pair;
    pair.device.setRecording(true);
    QVERIFY(pair.device.openDevice());
    QVERIFY(pair.device.isOpen());
    QVERIFY(pair.device.isConnected());
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.device.ch1Value(), QString("21.50"));
    QCOMPARE(pair.logger.received(), QByteArray("ATCD\r\n"));
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_UsbDevicePolling::hangingLoggerIsGivenUp_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<int>("polls");
    QTest::newRow("1 s") << 1000 << 6;
    QTest::newRow("10 s") << 10000 << 3;
}

void tst_UsbDevicePolling::hangingLoggerIsGivenUp()
{
    QFETCH(int, interval);
    QFETCH(int, polls);
    const TemporaryInterval temporary(interval);
    UsbPair pair;
    FakeTile tile;
    QVERIFY(pair.device.openDevice());
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.device.ch1Value(), QString("21.50"));
    pair.device.setTiles(&tile, nullptr);
    pair.setHanging(true);
    for (int round = 0; round < 2; ++round) {
        for (int poll = 1; poll < polls; ++poll)
            pair.device.pollForRecord();
        QVERIFY(pair.device.isConnected());
        QVERIFY(!pair.device.opensWithNextPoll());
        pair.device.pollForDisplay();
        QVERIFY(!pair.device.isConnected());
        QVERIFY(!pair.device.isOpen());
        QVERIFY(pair.device.opensWithNextPoll());
        QCOMPARE(pair.device.ch1Value(), QString());
        QCOMPARE(tile.calls.last(), QString("disconnected B2"));
        pair.device.pollForRecord();
        QVERIFY(pair.device.isOpen());
        --polls; // the one that has opened the port counts
    }
    pair.setHanging(false);
    pair.device.setRecording(true);
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.device.ch1Value(), QString("21.50"));
    pair.device.setRecording(false);
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_UsbDevicePolling::asksAgainAfterAReopening()
{
    UsbPair pair;
    qint64 now = 1700000000;
    pair.device.setClock([&now] { return QDateTime::fromSecsSinceEpoch(now); });
    FakeTile tile;
    QVERIFY(pair.device.openDevice());
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.device.ch1Value(), QString("21.50"));
    pair.device.setTiles(&tile, nullptr);
    pair.device.setRecording(true);
    pair.setHanging(true);
    now += 10;
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.received(), QByteArray("ATCD\r\nATCD\r\n"));
    now += 3;
    pair.device.releasePort();
    QVERIFY(!pair.device.isOpen());
    QVERIFY2(pair.device.isConnected(), "for the moment");
    QCOMPARE(pair.device.ch1Value(), QString("21.50"));
    pair.setHanging(false);
    QVERIFY(pair.device.openDevice());
    QTRY_COMPARE(tile.calls.last(), QString("value 21.50"));
    QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().time, 1700000010U);
    // Once is enough.
    pair.device.releasePort();
    QVERIFY(pair.device.openDevice());
    now += 7;
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.received().count("ATCD"), 4);
    QTRY_COMPARE((rows += takeRecordedRows()).size(), 2);
    QCOMPARE(rows.last().time, 1700000020U);
}

/// What the logger says now is not what it would have said then.
void tst_UsbDevicePolling::asksNotAgainWhatWasAskedLongAgo()
{
    UsbPair pair;
    qint64 now = 1700000000;
    pair.device.setClock([&now] { return QDateTime::fromSecsSinceEpoch(now); });
    QVERIFY(pair.device.openDevice());
    pair.device.setRecording(true);
    pair.setHanging(true);
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.received(), QByteArray("ATCD\r\n"));
    now += 300;
    pair.device.releasePort();
    pair.setHanging(false);
    QVERIFY(pair.device.openDevice());
    now += 300;
    pair.device.pollForRecord();
    QList<RecordedRow> rows;
    QTRY_VERIFY(!(rows += takeRecordedRows()).isEmpty());
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().time, 1700000600U);
    QCOMPARE(pair.logger.received().count("ATCD"), 2);
}

void tst_UsbDevicePolling::answerToAClosedPortIsNotTakenForTheNext()
{
    UsbPair pair;
    QVERIFY(pair.device.openDevice());
    pair.setHanging(true);
    pair.device.setRecording(true);
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.received(), QByteArray("ATCD\r\n"));
    pair.logger.send("ATCD 1,1\r\n"); // is there when the port is closed, and not read
    pair.device.releasePort();
    pair.setHanging(false);
    QVERIFY(pair.device.openDevice());
    QTRY_VERIFY(!pair.device.ch1Value().isEmpty());
    QCOMPARE(pair.device.ch1Value(), QString("21.50"));
    QCOMPARE(takeRecordedRows().size(), 1);
}

void tst_UsbDevicePolling::unpluggedUsbLoggerDisconnects()
{
    UsbPair pair;
    FakeListEntry entry;
    pair.device.setListItem(&entry);
    QVERIFY(pair.device.openDevice());
    pair.logger.unplug();
    QTRY_VERIFY(!pair.device.isConnected());
    QTRY_VERIFY(!pair.device.isOpen());
    QCOMPARE(entry.states, QList<bool>({false, true, false}));
    SerialLine replugged;
    pair.device.setDeviceInfo("Attic", "1", "2", replugged.portName(), 23);
    QVERIFY(pair.device.openDevice());
    QVERIFY(pair.device.isConnected());
}

void tst_UsbDevicePolling::displayPollReopensAClosedPort()
{
    UsbPair pair;
    QVERIFY(pair.device.openDevice());
    pair.device.closeDevice();
    pair.device.pollForDisplay();
    QVERIFY(pair.device.isOpen());
    QVERIFY(pair.device.isConnected());
}

void tst_UsbDevicePolling::recordPollDoesNotReopen()
{
    UsbPair pair;
    LogCapture log;
    pair.device.pollForRecord();
    QVERIFY(!pair.device.isOpen());
    QVERIFY(!pair.device.isConnected());
    QCOMPARE(log.count("SerialDevice::open"), 0);
}

void tst_UsbDevicePolling::forgottenPortIsNotOpened()
{
    UsbPair pair;
    QVERIFY(pair.device.openDevice());
    pair.device.forgetPort();
    QVERIFY(!pair.device.isOpen());
    QCOMPARE(pair.device.address(), pair.logger.portName());
    LogCapture log;
    pair.device.pollForDisplay();
    QVERIFY(!pair.device.isOpen());
    QVERIFY(!pair.device.isConnected());
    QCOMPARE(log.warnings(), QStringList());
    QVERIFY(pair.device.openDevice());
}

void tst_UsbDevicePolling::renamingDoesNotGiveThePortBack_data()
{
    QTest::addColumn<int>("portNumber");
    QTest::newRow("same number") << 23;
    QTest::newRow("another number") << 4001;
}

void tst_UsbDevicePolling::renamingDoesNotGiveThePortBack()
{
    QFETCH(int, portNumber);
    UsbPair pair;
    pair.device.forgetPort();
    pair.device.setDeviceInfo("Loft", "1", "2", pair.logger.portName(), static_cast<quint16>(portNumber));
    QCOMPARE(int(pair.device.port()), portNumber);
    QCOMPARE(pair.device.deviceName(), QString("Loft"));
    pair.device.pollForDisplay();
    QVERIFY(!pair.device.isOpen());
}

void tst_UsbDevicePolling::deletedUsbDeviceLeavesNoPort()
{
    SerialLine logger;
    for (int round = 0; round < 2; ++round) {
        ConfiguredDevice device("B2", UsbInterface);
        device.setDeviceInfo("Attic", "1", "2", logger.portName(), 23);
        QVERIFY(device.openDevice());
    }
}

void tst_UsbDevicePolling::mayBeDeletedInsideItsLinksReply()
{
    UsbPair other; // only its logger is used
    FakeTile tile;
    QPointer<ConfiguredDevice> device = new ConfiguredDevice("C3", UsbInterface);
    tile.onCall = [&] {
        if (tile.calls.last().startsWith("value"))
            delete device.data();
    };
    device->setTiles(&tile, nullptr);
    device->setDeviceInfo("Attic", "1", "2", other.logger.portName(), 23);
    QVERIFY(device->openDevice());
    device->pollForRecord();
    QTRY_VERIFY(!device);
}

QTEST_GUILESS_MAIN(tst_UsbDevicePolling)
#include "tst_UsbDevicePolling.moc"
