#include "UsbBench.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"

/// The station's watch over its USB loggers, with the real enumeration and the real serial ports of a mocked system.
/// "Before the port tells" means that the scan runs before the station has heard that the line went dead.
class tst_UsbWatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void pluggedInAtStart();
    void pluggedInLater();
    void theTimersScanAndPoll();
    void strangersAreLeftAlone();
    void theSameKeyOnTheNetworkIsLeftAlone();

    void pulledOut_data() { whenTheScanRuns(); }
    void pulledOut();
    void theOtherOneGoesOn();
    void openedDroppedAndReopenedByOneScanEach();
    void anAbsentLoggerCostsNothing();
    void closingTheProjectMeanwhile_data() { whenTheScanRuns(); }
    void closingTheProjectMeanwhile();

    void replugged_data();
    void replugged();
    void repluggedWhileTheTimersRun();
    void swapped_data() { whenTheScanRuns(); }
    void swapped();
    void replacedByANewcomer_data() { whenTheScanRuns(); }
    void replacedByANewcomer();
    void bothListedAndReplaced();
    void aPortThatIsAnotherLoggersNow_data();
    void aPortThatIsAnotherLoggersNow();
    void aSecondLoggerReopensAll();
    void aReadingUnderWayIsAskedForAgain();
    void aHangingLoggerIsOpenedByItsNextPoll();
    void editingShowsNothingOldAnyMore();
    void theFirstOfTwoWithOneKeyCounts();

private:
    static void whenTheScanRuns();
    /// Lets the station hear that the line to this logger is dead, unless the scan is to come first.
    void hearOfIt(int number);

    std::unique_ptr<UsbBench> m_bench;
};

void tst_UsbWatch::initTestCase()
{
    QVERIFY2(qgetenv("LD_PRELOAD").contains("umockdev"), "run under umockdev-wrapper, or through CTest");
}

void tst_UsbWatch::init()
{
    m_bench = std::make_unique<UsbBench>();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

void tst_UsbWatch::cleanup()
{
    const QString wrong = m_bench->endAndJudgeRows();
    m_bench.reset();
    QCOMPARE(wrong, QString());
}

void tst_UsbWatch::whenTheScanRuns()
{
    QTest::addColumn<bool>("portTells");
    QTest::newRow("after the port told") << true;
    QTest::newRow("before the port tells") << false;
}

void tst_UsbWatch::hearOfIt(int number)
{
    QFETCH(bool, portTells);
    if (portTells)
        QTRY_VERIFY(!m_bench->isOpen(number));
}

void tst_UsbWatch::pluggedInAtStart()
{
    m_bench->plugIn(1);
    m_bench->open({m_bench->entry(1, 9)});
    QVERIFY(m_bench->isOpen(1));
    QCOMPARE(m_bench->keysInReach(), QStringList{UsbBench::key(1)});
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(1));
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->device(1)->isConnected());
}

void tst_UsbWatch::pluggedInLater()
{
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(!m_bench->isOpen(1));
    m_bench->plugIn(1, 5);
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(5));
}

void tst_UsbWatch::theTimersScanAndPoll()
{
    m_bench->open({1});
    m_bench->plugIn(1);
    m_bench->letTimersRun(100);
    QTRY_VERIFY(!m_bench->device(1)->ch1Value().isEmpty());
    m_bench->pullOut(1);
    QTRY_COMPARE(m_bench->keysInReach(), QStringList());
    QVERIFY(!m_bench->device(1)->isConnected());
}

void tst_UsbWatch::strangersAreLeftAlone()
{
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    QCOMPARE(m_bench->keysInReach(), (QStringList{UsbBench::key(1), UsbBench::key(2)}));
    QCOMPARE(m_bench->logger(2).commands(), quint64(0));
}

void tst_UsbWatch::theSameKeyOnTheNetworkIsLeftAlone()
{
    DeviceEntry entry = m_bench->fixture().addLogger();
    entry.serialNumber = UsbBench::key(1);
    m_bench->fixture().logger(0).setReply("ATDC 10.00,10.00\r\n");
    m_bench->plugIn(1);
    m_bench->open({entry});
    m_bench->scan();
    m_bench->pullOut(1);
    m_bench->scan();
    m_bench->scan();

    const ConfiguredDevice *device = m_bench->device(1);
    QCOMPARE(device->interfaceKind(), int(NetworkInterface));
    QCOMPARE(device->address(), entry.address);
    QCOMPARE(device->port(), entry.port);
    QCOMPARE(m_bench->savedPort(1), entry.address);
    QCOMPARE(m_bench->logger(1).commands(), quint64(0));
    QTRY_VERIFY(device->isConnected());
    const int polls = m_bench->fixture().logger(0).received().count("ATDC");
    m_bench->station().writeDevice();
    QTRY_COMPARE(m_bench->fixture().logger(0).received().count("ATDC"), polls + 1);
    QTRY_COMPARE(device->ch1Value(), QStringLiteral("10.00"));
}

void tst_UsbWatch::pulledOut()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    m_bench->pullOut(1);
    hearOfIt(1);
    m_bench->scan();
    QVERIFY(!m_bench->device(1)->isConnected());
    QVERIFY(!m_bench->isOpen(1));
    QCOMPARE(m_bench->device(1)->ch1Value(), QString());
    QVERIFY(m_bench->station().availDevices().isEmpty());
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(1));
}

void tst_UsbWatch::theOtherOneGoesOn()
{
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1, 2});
    m_bench->scan();
    m_bench->pullOut(1);
    m_bench->scan();
    QVERIFY(!m_bench->isOpen(1));
    QVERIFY(m_bench->answers(2));
    QCOMPARE(m_bench->keysInReach(), QStringList{UsbBench::key(2)});
    m_bench->scan();
    QVERIFY(m_bench->answers(2));
}

void tst_UsbWatch::openedDroppedAndReopenedByOneScanEach()
{
    m_bench->open({1});
    for (int round = 0; round < 3; ++round) {
        m_bench->plugIn(1);
        m_bench->scan();
        QVERIFY(m_bench->answers(1));
        m_bench->pullOut(1);
        m_bench->scan();
        QVERIFY(!m_bench->isOpen(1));
        QCOMPARE(m_bench->keysInReach(), QStringList());
    }
}

void tst_UsbWatch::anAbsentLoggerCostsNothing()
{
    m_bench->plugIn(1);
    m_bench->open({1, 2});
    m_bench->scan();
    const LogCapture log;
    m_bench->pullOut(1);
    QTRY_VERIFY(!m_bench->isOpen(1));
    for (int turn = 0; turn < 1000; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(log.count(QStringLiteral("SerialDevice::serialError")), 1);
    m_bench->scan();
    const auto before = log.lines().size();
    for (int i = 0; i < 100; ++i)
        m_bench->scan();
    QCOMPARE(log.lines().size(), before);
    QCOMPARE(log.warnings(), QStringList());
}

void tst_UsbWatch::closingTheProjectMeanwhile()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    m_bench->pullOut(1);
    hearOfIt(1);
    m_bench->station().slotCloseProject();
    m_bench->scan();
    QCOMPARE(m_bench->keysInReach(), QStringList());
    m_bench->plugIn(1, 5);
    m_bench->scan();
    QCOMPARE(m_bench->keysInReach(), QStringList{UsbBench::key(1)});
    QCOMPARE(m_bench->logger(1).commands(), quint64(0));
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(1));
    m_bench->station().projectLoaded(m_bench->projectPath());
    QVERIFY(m_bench->answers(1));
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(5));
}

void tst_UsbWatch::replugged_data()
{
    QTest::addColumn<bool>("portTells");
    QTest::addColumn<int>("socket");
    QTest::newRow("after the port told") << true << 1;
    QTest::newRow("before the port tells") << false << 1;
    QTest::newRow("elsewhere, after the port told") << true << 5;
    QTest::newRow("elsewhere, before the port tells") << false << 5;
}

void tst_UsbWatch::replugged()
{
    QFETCH(bool, portTells);
    QFETCH(int, socket);
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1, 2});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    m_bench->pullOut(1);
    m_bench->plugIn(1, socket);
    hearOfIt(1);
    m_bench->scan();
    if (!portTells && socket == 1) {
        // Nothing had changed for that scan; the next one finds the port closed.
        QTRY_VERIFY(!m_bench->isOpen(1));
        m_bench->scan();
    }
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(socket));
}

void tst_UsbWatch::repluggedWhileTheTimersRun()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->letTimersRun(100);
    QTRY_VERIFY(!m_bench->device(1)->ch1Value().isEmpty());
    m_bench->logger(1).replug(300);
    QTRY_VERIFY(m_bench->device(1)->ch1Value().isEmpty());
    QTRY_VERIFY(!m_bench->device(1)->ch1Value().isEmpty());
}

void tst_UsbWatch::swapped()
{
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1, 2});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
    m_bench->pullOut(1);
    m_bench->pullOut(2);
    m_bench->plugIn(1, 2);
    m_bench->plugIn(2, 1);
    hearOfIt(1);
    hearOfIt(2);
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
    QCOMPARE(m_bench->device(1)->address(), UsbBench::port(2));
    QCOMPARE(m_bench->savedPort(1), UsbBench::port(2));
    QCOMPARE(m_bench->savedPort(2), UsbBench::port(1));
}

void tst_UsbWatch::replacedByANewcomer()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    m_bench->pullOut(1);
    m_bench->plugIn(3, 1);
    hearOfIt(1);
    m_bench->scan();
    QCOMPARE(m_bench->keysInReach(), QStringList{UsbBench::key(3)});
    QVERIFY(!m_bench->isOpen(1));
    QVERIFY(!m_bench->device(1)->isConnected());
    m_bench->station().slotRefreshDevice();
    m_bench->station().writeDevice();
    m_bench->scan();
    m_bench->station().writeDevice();
    QVERIFY(!m_bench->isOpen(1));
    QCOMPARE(m_bench->logger(3).commands(), quint64(0));
    QCOMPARE(m_bench->device(1)->address(), UsbBench::port(1));
}

void tst_UsbWatch::bothListedAndReplaced()
{
    m_bench->plugIn(1);
    m_bench->open({1, 3});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    m_bench->pullOut(1);
    m_bench->plugIn(3, 1);
    m_bench->scan();
    QVERIFY(m_bench->answers(3));
    QVERIFY(!m_bench->isOpen(1));
    QVERIFY(!m_bench->device(1)->isConnected());
    QCOMPARE(m_bench->savedPort(3), UsbBench::port(1));
}

void tst_UsbWatch::aPortThatIsAnotherLoggersNow_data()
{
    QTest::addColumn<bool>("wasThere");
    QTest::addColumn<bool>("portTells");
    QTest::newRow("from another day") << false << false;
    QTest::newRow("pulled out, the port told") << true << true;
    QTest::newRow("pulled out, before the port tells") << true << false;
}

/// Whatever is asked of a device between two scans, its link does not open the port that another logger got.
void tst_UsbWatch::aPortThatIsAnotherLoggersNow()
{
    QFETCH(bool, wasThere);
    if (wasThere)
        m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    m_bench->pullOut(1);
    m_bench->plugIn(2, 1);
    hearOfIt(1);
    for (int i = 0; i < 3; ++i) {
        m_bench->station().writeDevice();
        m_bench->station().slotRefreshDevice();
        QTRY_VERIFY(!m_bench->isOpen(1));
    }
    m_bench->scan();
    m_bench->station().slotRefreshDevice();
    m_bench->station().writeDevice();
    QVERIFY(!m_bench->isOpen(1));
    QCOMPARE(m_bench->device(1)->ch1Value(), QString());
    QCOMPARE(m_bench->logger(2).commands(), quint64(0));
}

void tst_UsbWatch::aSecondLoggerReopensAll()
{
    m_bench->plugIn(1);
    m_bench->open({1, 2});
    m_bench->scan();
    const LogCapture log;
    const QString opening = QStringLiteral("SerialDevice::open : [%1]");
    m_bench->scan();
    QCOMPARE(log.count(QStringLiteral("SerialDevice::open")), 0);
    m_bench->plugIn(2);
    m_bench->scan();
    QCOMPARE(log.count(opening.arg(UsbBench::port(1))), 1);
    QCOMPARE(log.count(opening.arg(UsbBench::port(2))), 1);
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->answers(2));
}

void tst_UsbWatch::aReadingUnderWayIsAskedForAgain()
{
    m_bench->plugIn(1);
    m_bench->open({1, 2});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    qint64 now = QDateTime::currentSecsSinceEpoch();
    ConfiguredDevice *device = m_bench->device(1);
    device->setClock([&now] { return QDateTime::fromSecsSinceEpoch(now); });
    const int before = InsertSerialData::pendingCount();
    m_bench->logger(1).setFault({loggersim::FaultKind::Silent, 0, {}});
    const quint64 commands = m_bench->logger(1).commands();
    const qint64 polled = now += 100;
    m_bench->station().writeDevice();
    QTRY_COMPARE(m_bench->logger(1).commands(), commands + 1);
    m_bench->logger(1).setFault({});
    now += 5;
    m_bench->plugIn(2);
    m_bench->scan();
    QTRY_COMPARE(InsertSerialData::pendingCount(), before + 1);
    QVERIFY(m_bench->answers(2));
    m_bench->station().stopRunningRecording();
    const QList<RecordedRow> rows = m_bench->fixture().rows(QStringLiteral("Kitchen"));
    QVERIFY(std::any_of(rows.cbegin(), rows.cend(), [polled](const RecordedRow &row) {
        return row.serial == UsbBench::key(1) && row.time == polled && !row.isGap();
    }));
}

void tst_UsbWatch::aHangingLoggerIsOpenedByItsNextPoll()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    QVERIFY(m_bench->answers(1));
    m_bench->logger(1).setFault({loggersim::FaultKind::Stall, 0, {}});
    for (int poll = 1; poll <= 3; ++poll) {
        QVERIFY(m_bench->device(1)->isConnected());
        m_bench->station().writeDevice();
        m_bench->scan();
    }
    QVERIFY(!m_bench->device(1)->isConnected());
    QCOMPARE(m_bench->device(1)->ch1Value(), QString());
    m_bench->scan();
    QVERIFY(!m_bench->isOpen(1));
    m_bench->logger(1).setFault({});
    QVERIFY(m_bench->answers(1));
    QVERIFY(m_bench->isOpen(1));
}

void tst_UsbWatch::editingShowsNothingOldAnyMore()
{
    m_bench->plugIn(1);
    m_bench->open({1});
    m_bench->scan();
    ConfiguredDevice *device = m_bench->device(1);
    device->setAlarmRange(1, 2, 1, 2);
    QVERIFY(m_bench->answers(1));
    QVERIFY(device->alarmOnChannel1());
    m_bench->station().stopRunningRecording();
    m_bench->station().slotAddDeviceProject();
    QVERIFY(!device->isConnected());
    QCOMPARE(device->ch1Value(), QString());
    QVERIFY(!device->alarmOnChannel1() && !device->alarmOnChannel2());
}

void tst_UsbWatch::theFirstOfTwoWithOneKeyCounts()
{
    m_bench->makeDouble(2, 1);
    m_bench->plugIn(1);
    m_bench->plugIn(2);
    m_bench->open({1});
    const LogCapture log;
    const auto projectFile = [this] {
        QFile file(m_bench->projectPath());
        return file.open(QIODevice::ReadOnly) ? QFileInfo(file).lastModified() : QDateTime();
    };
    // Whoever writes the project now changes that.
    QFile file(m_bench->projectPath());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime::fromSecsSinceEpoch(1000000000), QFileDevice::FileModificationTime));
    file.close();
    for (int i = 0; i < 5; ++i) {
        m_bench->scan();
        QVERIFY(m_bench->answers(1));
    }
    QCOMPARE(log.count(QStringLiteral("SerialDevice::open")), 0);
    QCOMPARE(projectFile(), QDateTime::fromSecsSinceEpoch(1000000000));
    QCOMPARE(m_bench->device(1)->address(), UsbBench::port(1));
    QCOMPARE(m_bench->logger(2).commands(), quint64(0));

    m_bench->pullOut(2);
    m_bench->scan();
    m_bench->plugIn(2);
    m_bench->scan();
    m_bench->scan();
    const QString said = QStringLiteral("ReachableLoggers::mergeUsb : [ERROR]");
    QCOMPARE(log.count(said), 1);
    QVERIFY(m_bench->answers(1));
}

STATION_TEST_MAIN(tst_UsbWatch)
#include "tst_UsbWatch.moc"
