#include "UsbBench.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/LogCapture.h"

#include <QSerialPort>

/// Which port the station opens for a USB logger when its name for it may be out of date: the one that the logger has
/// at that moment, and none that is another logger's.
class tst_UsbPorts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aRefusedPortIsOpenedByTheNextScan();
    void aRefusedPortIsOpenedByARefresh();
    void aRefusedPortThatIsAnotherLoggersNow_data();
    void aRefusedPortThatIsAnotherLoggersNow();
    void swappedBeforeTheProjectOpens();
    void confirmedAfterItWasReplaced_data();
    void confirmedAfterItWasReplaced();

private:
    std::unique_ptr<UsbBench> m_bench;
};

void tst_UsbPorts::initTestCase()
{
    QVERIFY2(qgetenv("LD_PRELOAD").contains("umockdev"), "run under umockdev-wrapper, or through CTest");
}

void tst_UsbPorts::init()
{
    m_bench = std::make_unique<UsbBench>();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

void tst_UsbPorts::cleanup()
{
    const QString wrong = m_bench->endAndJudgeRows();
    m_bench.reset();
    QCOMPARE(wrong, QString());
}

void tst_UsbPorts::aRefusedPortIsOpenedByTheNextScan()
{
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    QSerialPort otherProgram(UsbBench::port(1));
    QVERIFY(otherProgram.open(QIODevice::ReadWrite));
    m_bench->open({1, 2});
    m_bench->scan();
    QVERIFY(!m_bench->isOpen(1));
    QVERIFY(!m_bench->device(1)->isConnected());
    QVERIFY(m_bench->answers(2));
    otherProgram.close();
    const LogCapture log;
    m_bench->scan();
    QCOMPARE(log.count(QStringLiteral("SerialDevice::open")), 1);
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
}

void tst_UsbPorts::aRefusedPortIsOpenedByARefresh()
{
    m_bench->plugIn(1);
    QSerialPort otherProgram(UsbBench::port(1));
    QVERIFY(otherProgram.open(QIODevice::ReadWrite));
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(!m_bench->isOpen(1));
    otherProgram.close();
    m_bench->station().slotRefreshDevice();
    QVERIFY(m_bench->answers(1));
}

void tst_UsbPorts::aRefusedPortThatIsAnotherLoggersNow_data()
{
    QTest::addColumn<bool>("listed");
    QTest::newRow("of a stranger") << false;
    QTest::newRow("of a logger of the project") << true;
}

/// Between two scans a refresh opens refused ports again, by what is plugged in at that moment.
void tst_UsbPorts::aRefusedPortThatIsAnotherLoggersNow()
{
    QFETCH(bool, listed);
    m_bench->plugIn(1);
    QSerialPort otherProgram(UsbBench::port(1));
    QVERIFY(otherProgram.open(QIODevice::ReadWrite));
    m_bench->open(listed ? QList<DeviceEntry>{m_bench->entry(1, 1), m_bench->entry(2, 2)}
                         : QList<DeviceEntry>{m_bench->entry(1, 1)});
    m_bench->scan();
    otherProgram.close();
    m_bench->pullOut(1);
    m_bench->plugIn(2, 1);
    m_bench->station().slotRefreshDevice();
    QVERIFY(!m_bench->isOpen(1));
    if (listed)
        QVERIFY(m_bench->answers(2));
    m_bench->station().writeDevice();
    QVERIFY(!m_bench->device(1)->isConnected());
    QVERIFY(listed || m_bench->logger(2).commands() == 0);
}

void tst_UsbPorts::swappedBeforeTheProjectOpens()
{
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1, 2});
    m_bench->scan();
    m_bench->station().slotStopRecord();
    m_bench->station().slotCloseProject();
    m_bench->pullOut(1);
    m_bench->pullOut(2);
    m_bench->plugIn(1, 2);
    m_bench->plugIn(2, 1);
    m_bench->station().projectLoaded(m_bench->projectPath());
    m_bench->station().slotStartRecord();
    QCOMPARE(m_bench->device(1)->address(), UsbBench::port(2));
    QCOMPARE(m_bench->device(2)->address(), UsbBench::port(1));
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
}

void tst_UsbPorts::confirmedAfterItWasReplaced_data()
{
    QTest::addColumn<bool>("scannedMeanwhile");
    QTest::newRow("and the scan saw it") << true;
    QTest::newRow("since the scan") << false;
}

/// A logger that was chosen for the project, but pulled out before the choice was confirmed.
void tst_UsbPorts::confirmedAfterItWasReplaced()
{
    QFETCH(bool, scannedMeanwhile);
    m_bench->plugIn(1);
    m_bench->open({3});
    m_bench->scan();
    m_bench->station().slotStopRecord();
    m_bench->station().slotAddDeviceProject();
    auto *chosen = new ConfiguredDevice(UsbBench::key(1), UsbInterface);
    chosen->setDeviceInfo(QStringLiteral("Room 1"), QStringLiteral("CH1"), QStringLiteral("CH2"), UsbBench::port(1),
                          defaultDevicePort);
    m_bench->pullOut(1);
    m_bench->plugIn(2, 1);
    if (scannedMeanwhile)
        m_bench->scan();
    m_bench->station().projectListConfirm(m_bench->station().configuredDevices() << chosen, {QStringLiteral("One")});
    QVERIFY(!m_bench->isOpen(1));
    m_bench->station().slotRefreshDevice();
    QVERIFY(!m_bench->isOpen(1));
    m_bench->station().writeDevice();
    QVERIFY(!m_bench->device(1)->isConnected());
    QCOMPARE(m_bench->logger(2).commands(), quint64(0));
}

STATION_TEST_MAIN(tst_UsbPorts)
#include "tst_UsbPorts.moc"
