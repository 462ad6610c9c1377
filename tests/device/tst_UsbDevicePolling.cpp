#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/DeviceFakes.h"
#include "support/LogCapture.h"
#include "support/RecordedRows.h"
#include "support/SerialLine.h"

#include <QPointer>
#include <QTest>

/// A USB device on a real serial line: polls, and ports that come and go.
class tst_UsbDevicePolling : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void pollsAUsbLogger();
    void unpluggedUsbLoggerDisconnects();
    void displayPollReopensAClosedPort();
    void recordPollDoesNotReopen();
    void forgottenPortIsNotOpened();
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
        QObject::connect(&logger, &SerialLine::bytesReceived, &logger, [this] { logger.send("ATCD 21.50,45.10\r\n"); });
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
    // Missed replies are counted for network loggers only.
    pair.logger.disconnect();
    for (int poll = 0; poll < 10; ++poll)
        pair.device.pollForRecord();
    QVERIFY(pair.device.isConnected());
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

void tst_UsbDevicePolling::renamingDoesNotGiveThePortBack()
{
    UsbPair pair;
    pair.device.forgetPort();
    pair.device.setDeviceInfo("Loft", "1", "2", pair.logger.portName(), 23);
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
