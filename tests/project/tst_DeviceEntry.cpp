#include "project/DeviceEntry.h"

#include <QTest>

class tst_DeviceEntry : public QObject
{
    Q_OBJECT

private slots:
    void survivesTheDevice_data();
    void survivesTheDevice();
    void configuringKeepsIdentityAndKind();
    void configuringAgainReplacesEverything();
    void setsTheRangeInForce();
    void keepsConnectionsOfNetworkDevicesOnly();
};

namespace {

DeviceEntry sample(int kind = NetworkInterface)
{
    DeviceEntry entry;
    entry.name = QStringLiteral("hall");
    entry.ch1Name = QStringLiteral("air");
    entry.ch2Name = QStringLiteral("floor");
    entry.serialNumber = QStringLiteral("0008DC5A11F0");
    entry.interfaceKind = kind;
    entry.address = QStringLiteral("127.0.0.9");
    entry.port = 4000;
    entry.ch1Unit = 1;
    entry.ch2Unit = 4;
    entry.range = {-10.0F, 30.5F, 0.25F, 100.0F};
    entry.ch1CustomUnit = QStringLiteral("hPa");
    entry.ch2CustomUnit = QStringLiteral("ppm");
    entry.buzzerAlarm = QStringLiteral("ON");
    entry.dashboardNumber = 3;
    return entry;
}

} // namespace

void tst_DeviceEntry::survivesTheDevice_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("USB") << int(UsbInterface);
    QTest::newRow("network") << int(NetworkInterface);
}

void tst_DeviceEntry::survivesTheDevice()
{
    QFETCH(int, kind);
    const DeviceEntry entry = sample(kind);
    ConfiguredDevice device(entry.serialNumber, kind);
    configure(device, entry, false);
    QVERIFY(entryOf(device) == entry);
}

void tst_DeviceEntry::configuringKeepsIdentityAndKind()
{
    ConfiguredDevice device(QStringLiteral("77"), UsbInterface);
    configure(device, sample(NetworkInterface), false);
    QCOMPARE(device.serialNumber(), QStringLiteral("77"));
    QCOMPARE(device.interfaceKind(), int(UsbInterface));
    QCOMPARE(entryOf(device).serialNumber, QStringLiteral("77"));
    QCOMPARE(entryOf(device).interfaceKind, int(UsbInterface));
}

void tst_DeviceEntry::configuringAgainReplacesEverything()
{
    DeviceEntry plain;
    plain.serialNumber = sample().serialNumber;
    ConfiguredDevice device(plain.serialNumber, NetworkInterface);
    configure(device, sample(), true);
    configure(device, plain, false);
    QVERIFY(entryOf(device) == plain);
    QVERIFY(!device.keepConnection());
}

void tst_DeviceEntry::setsTheRangeInForce()
{
    ConfiguredDevice device(QStringLiteral("77"), NetworkInterface);
    configure(device, sample(), false);
    QVERIFY(device.alarmRange() == sample().range);
    QCOMPARE(device.buzzerAlarm(), QStringLiteral("ON"));
}

void tst_DeviceEntry::keepsConnectionsOfNetworkDevicesOnly()
{
    ConfiguredDevice network(QStringLiteral("1"), NetworkInterface);
    configure(network, sample(), true);
    QVERIFY(network.keepConnection());
    ConfiguredDevice usb(QStringLiteral("2"), UsbInterface);
    configure(usb, sample(UsbInterface), true);
    QVERIFY(!usb.keepConnection());
}

QTEST_GUILESS_MAIN(tst_DeviceEntry)
#include "tst_DeviceEntry.moc"
