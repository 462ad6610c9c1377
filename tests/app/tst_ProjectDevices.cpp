#include "app/ProjectDevices.h"

#include <QPointer>
#include <QTest>

namespace {

DeviceEntry entry(const char *key, int kind = NetworkInterface)
{
    DeviceEntry entry;
    entry.name = QStringLiteral("Room ") + QLatin1String(key);
    entry.serialNumber = QLatin1String(key);
    entry.interfaceKind = kind;
    return entry;
}

} // namespace

/// Who owns the devices of a project, and for how long.
class tst_ProjectDevices : public QObject
{
    Q_OBJECT

private slots:
    void readsAProject()
    {
        ProjectDevices devices(this);
        const QList<DeviceEntry> entries{entry("A"), entry("B", UsbInterface)};
        devices.load(entries, true);
        QCOMPARE(devices.entries(), entries);
        QCOMPARE(devices.all().first()->parent(), this);
        QVERIFY(devices.all().first()->keepConnection());
        QCOMPARE(devices.find("B"), devices.all().at(1));
        QVERIFY(!devices.find("C"));
    }

    void theLastEntryOfAKeyCounts()
    {
        ProjectDevices devices(this);
        DeviceEntry again = entry("A");
        again.name = QStringLiteral("Cellar");
        devices.load({entry("A"), entry("B"), again}, false);
        QCOMPARE(devices.entries(), (QList<DeviceEntry>{again, entry("B")}));
    }

    void onlyUsbDevicesAreTheWatchsBusiness()
    {
        ProjectDevices devices(this);
        devices.load({entry("A"), entry("B", UsbInterface)}, false);
        QVERIFY(!devices.findUsb("A"));
        QCOMPARE(devices.findUsb("B"), devices.all().at(1));
    }

    void whatIsNotChosenGoes()
    {
        ProjectDevices devices(this);
        devices.load({entry("A"), entry("B")}, false);
        const QPointer<ConfiguredDevice> leaving = devices.find("A");
        const QPointer<ConfiguredDevice> staying = devices.find("B");
        const QPointer<ConfiguredDevice> coming = new ConfiguredDevice(QStringLiteral("C"), NetworkInterface);
        devices.adopt({coming, staying});
        QVERIFY(!leaving);
        QCOMPARE(devices.all(), (QList<ConfiguredDevice *>{coming, staying}));
        QCOMPARE(coming->parent(), this);
        devices.clear();
        QVERIFY(!staying);
        QVERIFY(!coming);
        QCOMPARE(devices.size(), 0);
    }

    void anyChannelOutOfItsRangeIsAnAlarm()
    {
        ProjectDevices devices(this);
        devices.load({entry("A"), entry("B")}, false);
        QVERIFY(!devices.anyAlarm());
        devices.find("B")->setAlarmRange(0, 0, 10, 20);
        devices.find("B")->readData(QStringLiteral("15.00,25.00"));
        QVERIFY(devices.anyAlarm());
    }
};

QTEST_GUILESS_MAIN(tst_ProjectDevices)
#include "tst_ProjectDevices.moc"
