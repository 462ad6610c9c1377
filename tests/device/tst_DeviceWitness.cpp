#include "device/DeviceWitness.h"
#include "store/PendingRow.h"
#include "support/ClockedDevice.h"

#include <QTest>

namespace {

/// Notes what it was told: "connected", "lost 0", "alarm 1 on 9.00 in 2.00..8.00", "refused why".
class FakeWitness : public DeviceWitness
{
public:
    QStringList told;

    void loggerConnected(const ConfiguredDevice & /*device*/) override { told << QStringLiteral("connected"); }
    void loggerLost(const ConfiguredDevice & /*device*/, LossReason reason) override
    {
        told << QStringLiteral("lost %1").arg(int(reason));
    }
    void alarmChanged(const ConfiguredDevice & /*device*/, const AlarmChange &change) override
    {
        const QString value =
            isNoValue(change.value) ? QStringLiteral("nothing") : QString::number(change.value, 'f', 2);
        told << QStringLiteral("alarm %1 %2 %3 in %4..%5")
                    .arg(QString::number(change.channel), change.isOn ? QStringLiteral("on") : QStringLiteral("off"),
                         value, QString::number(double(change.min), 'f', 2),
                         QString::number(double(change.max), 'f', 2));
    }
    void exchangeFailed(const ConfiguredDevice & /*device*/, const QString &reason) override
    {
        told << QStringLiteral("refused ") + reason;
    }
};

struct WitnessedDevice : ClockedDevice
{
    FakeWitness witness;

    WitnessedDevice()
    {
        device.setAlarmRange(2, 8, 10, 20);
        device.setWitness(&witness);
    }
    ~WitnessedDevice() { device.setWitness(nullptr); }
    QStringList heard() { return std::exchange(witness.told, {}); }
};

} // namespace

/// What a device tells whoever keeps account of it: each change once, with what it was.
class tst_DeviceWitness : public QObject
{
    Q_OBJECT

private slots:
    void connectedOnce()
    {
        WitnessedDevice bench;
        bench.reply("5,15\n");
        bench.reply("5,15\n");
        QCOMPARE(bench.heard(), QStringList{"connected"});
    }

    void alarmsBeginAndEnd()
    {
        WitnessedDevice bench;
        bench.reply("5,15\n");
        bench.heard();
        bench.reply("9,15\n");
        bench.reply("9.5,15\n");
        QCOMPARE(bench.heard(), QStringList{"alarm 1 on 9.00 in 2.00..8.00"});
        bench.reply("8,21\n");
        QCOMPARE(bench.heard(), QStringList({"alarm 1 off 8.00 in 2.00..8.00", "alarm 2 on 21.00 in 10.00..20.00"}));
        bench.reply("8,----\n");
        QCOMPARE(bench.heard(), QStringList{"alarm 2 off nothing in 10.00..20.00"});
    }

    void alarmFollowsTheLimits()
    {
        WitnessedDevice bench;
        bench.reply("9,15\n");
        bench.heard();
        bench.device.setAlarmRange(2, 10, 10, 20);
        bench.device.checkAlarmAll();
        QCOMPARE(bench.heard(), QStringList{"alarm 1 off 9.00 in 2.00..10.00"});
    }

    void lossHasItsReason_data()
    {
        QTest::addColumn<int>("reason");
        for (const LossReason reason :
             {LossReason::NoAnswer, LossReason::LinkFailed, LossReason::Unplugged, LossReason::Closed})
            QTest::addRow("%d", int(reason)) << int(reason);
    }

    void lossHasItsReason()
    {
        QFETCH(int, reason);
        WitnessedDevice bench;
        bench.reply("5,15\n");
        bench.heard();
        switch (LossReason(reason)) {
        case LossReason::NoAnswer:
            for (int i = 0; i < 20; ++i)
                bench.device.pollForRecord();
            break;
        case LossReason::LinkFailed:
            bench.device.deviceDisconnected();
            break;
        case LossReason::Unplugged:
            bench.device.forgetPort();
            break;
        case LossReason::Closed:
            bench.device.closeDevice();
            break;
        }
        QCOMPARE(bench.heard(), QStringList{QStringLiteral("lost %1").arg(reason)});
        bench.device.closeDevice();
        bench.device.deviceDisconnected();
        QCOMPARE(bench.heard(), QStringList());
    }

    void alarmEndsWithTheLoss()
    {
        WitnessedDevice bench;
        bench.reply("9,15\n");
        bench.heard();
        bench.device.deviceDisconnected();
        QCOMPARE(bench.heard(), QStringList({"alarm 1 off nothing in 2.00..8.00", "lost 1"}));
    }

    void unconfirmedSettings_data()
    {
        QTest::addColumn<QString>("doing");
        QTest::addColumn<QStringList>("told");
        QTest::newRow("refused") << "NG" << QStringList{"refused The logger refused."};
        QTest::newRow("given up") << "stop" << QStringList{"refused It was given up before the logger had confirmed."};
        QTest::newRow("lost") << "lose" << QStringList({"refused The logger was lost.", "lost 1"});
    }

    void unconfirmedSettings()
    {
        QFETCH(QString, doing);
        QFETCH(QStringList, told);
        WitnessedDevice bench;
        bench.reply("5,15\n");
        bench.heard();
        bench.device.startSyncTelnet();
        QVERIFY(bench.device.isExchangeRunning());
        if (doing == QLatin1String("stop"))
            bench.device.stopSyncTelnet();
        else if (doing == QLatin1String("lose"))
            bench.device.deviceDisconnected();
        else
            bench.device.readData(doing);
        bench.device.stopSyncTelnet();
        QCOMPARE(bench.heard(), told);
    }
};

QTEST_GUILESS_MAIN(tst_DeviceWitness)
#include "tst_DeviceWitness.moc"
