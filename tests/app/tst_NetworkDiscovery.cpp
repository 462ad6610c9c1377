#include "LoggerNetwork.h"
#include "UsbBench.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "device/Discovery.h"
#include "support/LogCapture.h"

#include <QElapsedTimer>
#include <QListWidget>
#include <QNetworkInterface>
#include <QProcess>
#include <QScopeGuard>
#include <QTimer>
#include <csignal>

/// The datagram of that number.
using Datagrams = std::function<QByteArray(int)>;
Q_DECLARE_METATYPE(Datagrams)

namespace {

constexpr quint64 firstMac = 0x020000000000;
constexpr quint64 lastMac = 0x02FFFFFFFFFF;

/// Runs the event loop as the program does and measures the longest time in which it did not come round.
class Heartbeat
{
public:
    bool runUntil(const std::function<bool()> &condition)
    {
        QEventLoop loop;
        QTimer timer;
        QElapsedTimer sinceStart;
        QElapsedTimer sinceLast;
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            m_longestMs = qMax(m_longestMs, sinceLast.restart());
            if (condition() || sinceStart.hasExpired(60000))
                loop.quit();
        });
        sinceStart.start();
        sinceLast.start();
        timer.start(10);
        loop.exec();
        return condition();
    }
    qint64 longestMs() const { return m_longestMs; }

private:
    qint64 m_longestMs = 0;
};

QStringList theLoggersAddresses()
{
    QStringList addresses;
    for (int host = 2; host < 10; ++host)
        addresses << QStringLiteral("10.77.0.%1/24").arg(host);
    return addresses;
}

bool giveAddresses(const QString &card, const QStringList &addresses)
{
    QStringList commands{QStringLiteral("address flush dev %1 scope global").arg(card)};
    for (const QString &address : addresses)
        commands << QStringLiteral("address add %1 dev %2").arg(address, card);
    return runIp(commands);
}

/// Replaces the addresses at both ends of the cable.
bool layOut(const QString &station, const QStringList &loggers)
{
    const bool done = giveAddresses(QStringLiteral("station"), {station});
    const InLoggerNetwork scope;
    return giveAddresses(QStringLiteral("loggers"), loggers) && done;
}

/// The simulator's program in the loggers' network.
class Loggers : public QProcess
{
public:
    bool begin(const QStringList &arguments)
    {
        const InLoggerNetwork scope;
        start(QStringLiteral(LOGGERSIM), arguments);
        return QTest::qWaitFor([this] { return (m_output += readAllStandardOutput()).endsWith("ready\n"); }, 20000);
    }
    ~Loggers() override
    {
        terminate();
        if (!waitForFinished())
            kill();
    }
    /// The TCP port that the logger was given.
    quint16 portOf(const QByteArray &key) const
    {
        const int line = m_output.indexOf(key + ' ');
        const QByteArrayList words = m_output.mid(line, m_output.indexOf('\n', line) - line).split(' ');
        return line < 0 ? quint16(0) : static_cast<quint16>(words.last().toUInt());
    }

private:
    QByteArray m_output;
};

} // namespace

/// The station's search for network loggers: real broadcasts in a network of the test's own.
class tst_NetworkDiscovery : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void loggersAreFoundAndPolled();
    void theSearchGoesToTheLocal256();
    void theSearchGoesToTheLocal256InALargerNetwork();
    void oneRecordALogger();
    void thePortIsCutTo16Bits();
    void strangeDatagramsAddNoRecord_data();
    void strangeDatagramsAddNoRecord();
    void withoutANetworkCardTheOperatorIsTold();
    void aNetworkThatRefusesTheSearchIsTold();

    void aSecondSearchReplacesTheFirst();
    void closingTheProjectEndsTheSearch();
    void pullingUsbLoggersKeepsTheRecords();

    void aBurstIsReadInPortions();
    void theWindowAnswersDuringAFlood_data();
    void theWindowAnswersDuringAFlood();
    void aBurstIsShownOnce();

private:
    static void verifySearch(const QNetworkDatagram &heard);
    /// Has the station search and hears it.
    bool search();
    /// The same as a new project does it: the device manager is shown from then on.
    bool searchForTheManager();
    QListWidget *foundList() const { return child<QListWidget>(*m_station, "availlable_list"); }
    QList<QUdpSocket *> sockets() const { return m_station->findChildren<QUdpSocket *>(); }
    QUdpSocket *receiver() const;
    /// "KEY address port" of every record, in their order.
    QStringList records() const;

    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
    std::unique_ptr<Answerer> m_answerer;
};

void tst_NetworkDiscovery::init()
{
    // A card that was just switched on takes a moment until it counts as running.
    QHostAddress local;
    QTRY_VERIFY(findLocalIpv4Address(local));
    m_fixture = std::make_unique<StationFixture>();
    m_station = std::make_unique<SorvantoMain>();
    m_answerer = std::make_unique<Answerer>();
}

void tst_NetworkDiscovery::cleanup()
{
    m_answerer.reset();
    m_station.reset();
    m_fixture.reset();
}

bool tst_NetworkDiscovery::search()
{
    m_station->broadcastDevice();
    return m_answerer->hear().isValid();
}

bool tst_NetworkDiscovery::searchForTheManager()
{
    m_station->projectCreated(m_fixture->projectPath(QStringLiteral("Kitchen")));
    return m_answerer->hear().isValid();
}

QUdpSocket *tst_NetworkDiscovery::receiver() const
{
    const QList<QUdpSocket *> all = sockets();
    for (QUdpSocket *socket : all) {
        if (socket->state() == QAbstractSocket::BoundState)
            return socket;
    }
    return nullptr;
}

QStringList tst_NetworkDiscovery::records() const
{
    QStringList texts;
    const QList<AvailDevice *> all = m_station->availDevices();
    for (const AvailDevice *record : all)
        texts << QStringLiteral("%1 %2 %3").arg(record->key, record->address).arg(record->port);
    return texts;
}

void tst_NetworkDiscovery::loggersAreFoundAndPolled()
{
    Loggers loggers;
    QVERIFY(loggers.begin({QStringLiteral("--network"), QStringLiteral("3"), QStringLiteral("--addresses"),
                           QStringLiteral("10.77.0.3"), QStringLiteral("--discovery"), QStringLiteral("any")}));
    m_station->slotRefreshAvailDeviceList();
    QTRY_COMPARE(m_station->availDevices().size(), 3);
    QStringList expected;
    QList<DeviceEntry> devices;
    for (const AvailDevice *record : m_station->availDevices()) {
        const int number = devices.size() + 1;
        const QString key = QStringLiteral("02000100000%1").arg(number);
        expected << QStringLiteral("%1 10.77.0.%2 %3").arg(key).arg(2 + number).arg(loggers.portOf(key.toLatin1()));
        QCOMPARE(record->kind, qint32(NetworkInterface));
        DeviceEntry entry;
        entry.serialNumber = record->key;
        entry.address = record->address;
        entry.port = record->port;
        devices << entry;
    }
    QCOMPARE(records(), expected);

    m_fixture->writeProject(QStringLiteral("Found"), devices);
    m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Found")));
    for (const ConfiguredDevice *device : m_station->configuredDevices())
        QTRY_VERIFY(!device->ch1Value().isEmpty());
    m_station->slotRefreshAvailDeviceList();
    QVERIFY(m_answerer->hear().isValid());
    QTRY_COMPARE(records(), expected);
}

void tst_NetworkDiscovery::theSearchGoesToTheLocal256()
{
    m_station->broadcastDevice();
    verifySearch(m_answerer->hear());
}

/// In a larger network that address may well be somebody's.
void tst_NetworkDiscovery::theSearchGoesToTheLocal256InALargerNetwork()
{
    const auto restore = qScopeGuard([] { layOut(QStringLiteral("10.77.0.1/24"), theLoggersAddresses()); });
    QVERIFY(layOut(QStringLiteral("10.77.0.1/16"), {QStringLiteral("10.77.0.255/16")}));
    m_station->broadcastDevice();
    verifySearch(m_answerer->hear());
}

void tst_NetworkDiscovery::verifySearch(const QNetworkDatagram &heard)
{
    QCOMPARE(heard.data(), QByteArray(50, '\x01'));
    QCOMPARE(heard.destinationAddress(), QHostAddress(QStringLiteral("10.77.0.255")));
    QCOMPARE(heard.destinationPort(), int(discoveryPort));
    QCOMPARE(heard.senderAddress(), QHostAddress(QStringLiteral("10.77.0.1")));
}

void tst_NetworkDiscovery::oneRecordALogger()
{
    QVERIFY(search());
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2"), 23));
    m_answerer->answer(discoveryReply(firstMac + 0xABCDEF, QStringLiteral("10.77.0.4"), 2323));
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.3"), 4001));
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.5")));
    QTRY_COMPARE(m_station->availDevices().size(), 3);
    QCOMPARE(records(),
             (QStringList{QStringLiteral("020000000000 10.77.0.3 4001"), QStringLiteral("020000ABCDEF 10.77.0.4 2323"),
                          QStringLiteral("02FFFFFFFFFF 10.77.0.5 23")}));
}

void tst_NetworkDiscovery::thePortIsCutTo16Bits()
{
    QVERIFY(search());
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2"), 0x00010017));
    QTRY_COMPARE(records(), QStringList{QStringLiteral("020000000000 10.77.0.2 23")});
}

void tst_NetworkDiscovery::strangeDatagramsAddNoRecord_data()
{
    QTest::addColumn<QByteArray>("datagram");
    const QByteArray reply = discoveryReply(firstMac, QStringLiteral("10.77.0.2"));
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one byte short") << reply.chopped(1);
    QTest::newRow("the marker alone") << QByteArray("OSTRIVANE");
    QTest::newRow("another maker's") << QByteArray(reply).replace("OSTRIVANE", "OSTRIVARE");
    QTest::newRow("marker in lower case") << QByteArray(reply).replace("OSTRIVANE", "ostrivane");
    QTest::newRow("marker after a zero") << '\0' + reply;
    QTest::newRow("zeros") << QByteArray(28, '\0');
    QTest::newRow("the search itself") << discoveryRequest();
    QTest::newRow("as large as they come") << QByteArray(65507, 'x');
}

void tst_NetworkDiscovery::strangeDatagramsAddNoRecord()
{
    QFETCH(QByteArray, datagram);
    QVERIFY(search());
    for (int i = 0; i < 3; ++i)
        m_answerer->answer(datagram);
    // Datagrams arrive in their order here, so the strange ones have been read when this one has.
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.9")));
    QTRY_COMPARE(m_station->availDevices().size(), 1);
    QCOMPARE(records(), QStringList{QStringLiteral("02FFFFFFFFFF 10.77.0.9 23")});
}

void tst_NetworkDiscovery::withoutANetworkCardTheOperatorIsTold()
{
    QVERIFY(runIp({QStringLiteral("link set station down")}));
    m_station->broadcastDevice();
    const QStringList told = shownMessages();
    QVERIFY(runIp({QStringLiteral("link set station up")}));
    QCOMPARE(told, QStringList{QStringLiteral("Cannot Get Local IP address.\nPlease retry.")});
    QVERIFY(!receiver());

    QHostAddress local;
    QTRY_VERIFY(findLocalIpv4Address(local));
    QVERIFY(search());
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2")));
    QTRY_COMPARE(m_station->availDevices().size(), 1);
}

void tst_NetworkDiscovery::aNetworkThatRefusesTheSearchIsTold()
{
    const auto restore = qScopeGuard([] { layOut(QStringLiteral("10.77.0.1/24"), theLoggersAddresses()); });
    // An address without a network around it: nothing leads to the .255.
    QVERIFY(giveAddresses(QStringLiteral("station"), {QStringLiteral("10.77.0.1/32")}));
    const LogCapture log;
    m_station->broadcastDevice();
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("UDP Send Socket Down.\nPlease retry.")});
    QCOMPARE(log.count(QStringLiteral("[ERROR] SorvantoMain::broadcastDevice : m_sndUdpSocket->isValid() : false")), 1);
    QVERIFY(!receiver());
}

void tst_NetworkDiscovery::aSecondSearchReplacesTheFirst()
{
    const LogCapture log;
    QVERIFY(search());
    const quint16 firstPort = m_answerer->stationPort();
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2")));
    m_station->broadcastDevice();
    QVERIFY(m_answerer->hear().isValid());
    QVERIFY(m_answerer->stationPort() != firstPort);
    QTRY_COMPARE(sockets().size(), 2);
    QCOMPARE(log.count(QStringLiteral("SorvantoMain::slotSndUdpSocketDeleted")), 1);
    QCOMPARE(log.count(QStringLiteral("SorvantoMain::slotRcvUdpSocketDeleted")), 1);
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.9")));
    QTRY_VERIFY(records().contains(QStringLiteral("02FFFFFFFFFF 10.77.0.9 23")));

    m_station->broadcastDevice();
    m_station->broadcastDevice();
    m_station->broadcastDevice();
    QTRY_COMPARE(sockets().size(), 2);
    for (int i = 0; i < 3; ++i)
        QVERIFY(m_answerer->hear().isValid());
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.8")));
    QTRY_VERIFY(records().contains(QStringLiteral("02FFFFFFFFFF 10.77.0.8 23")));
}

void tst_NetworkDiscovery::closingTheProjectEndsTheSearch()
{
    m_fixture->writeProject(QStringLiteral("Empty"), {});
    m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Empty")));
    QVERIFY(search());
    QVERIFY(receiver());
    // Answers that wait in a socket die with it.
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2")));
    m_station->slotCloseProject();
    QVERIFY(!receiver());
    QTRY_VERIFY(sockets().isEmpty());
    QCOMPARE(records(), QStringList());
    QVERIFY(search());
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2")));
    QTRY_COMPARE(m_station->availDevices().size(), 1);
}

void tst_NetworkDiscovery::pullingUsbLoggersKeepsTheRecords()
{
    UsbBench bench;
    bench.plugIn(1);
    bench.plugIn(2);
    bench.open({1});
    bench.scan();
    bench.station().broadcastDevice();
    QVERIFY(m_answerer->hear().isValid());
    m_answerer->answer(discoveryReply(firstMac, QStringLiteral("10.77.0.2")));
    QTRY_COMPARE(bench.station().availDevices().size(), 3);
    bench.pullOut(1);
    bench.scan();
    QCOMPARE(bench.keysInReach(), QStringList{UsbBench::key(2)});
    QCOMPARE(bench.station().availDevices().size(), 2);
    bench.pullOut(2);
    bench.scan();
    QCOMPARE(bench.station().availDevices().size(), 1);
    QCOMPARE(bench.station().availDevices().first()->key, QStringLiteral("020000000000"));
    QCOMPARE(bench.endAndJudgeRows(), QString());
}

void tst_NetworkDiscovery::aBurstIsReadInPortions()
{
    constexpr int burst = 150;
    QVERIFY(search());
    const LogCapture log;
    for (int i = 0; i < burst; ++i)
        m_answerer->answer(discoveryReply(firstMac + quint64(i), QStringLiteral("10.77.0.2")));
    QTRY_COMPARE(m_station->availDevices().size(), burst);
    const QString counter = QStringLiteral("SorvantoMain::readPendingDatagrams : cnt : %1,");
    QVERIFY(log.count(counter.arg(0)) > 1);
    QCOMPARE(log.count(counter.arg(100)), 0);
}

void tst_NetworkDiscovery::theWindowAnswersDuringAFlood_data()
{
    QTest::addColumn<Datagrams>("datagramAt");
    QTest::newRow("empty") << Datagrams([](int) { return QByteArray(); });
    QTest::newRow("strangers") << Datagrams([](int number) { return QByteArray(400, char('a' + number % 26)); });
    QTest::newRow("one logger") << Datagrams([](int) { return discoveryReply(firstMac, QStringLiteral("10.77.0.2")); });
    QTest::newRow("as many loggers") << Datagrams(
        [](int number) { return discoveryReply(firstMac + quint64(number), QStringLiteral("10.77.0.2")); });
}

void tst_NetworkDiscovery::theWindowAnswersDuringAFlood()
{
    QFETCH(Datagrams, datagramAt);
    m_station->show();
    QVERIFY(searchForTheManager());
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.8")));
    QTRY_VERIFY(records().contains(QStringLiteral("02FFFFFFFFFF 10.77.0.8 23")));
    Heartbeat heartbeat;
    {
        const Flood flood(m_answerer->station(), m_answerer->stationPort(), *receiver(), 100000, datagramAt);
        QVERIFY(heartbeat.runUntil([&flood] { return flood.isOver(); }));
    }
    // The flood has been read when this one has.
    m_answerer->answer(discoveryReply(lastMac, QStringLiteral("10.77.0.9")));
    QVERIFY(heartbeat.runUntil([this] { return records().contains(QStringLiteral("02FFFFFFFFFF 10.77.0.9 23")); }));
    QVERIFY2(heartbeat.longestMs() < 1000, QByteArray::number(heartbeat.longestMs()).constData());
    QCOMPARE(foundList()->count(), m_station->availDevices().size());
}

/// Portions of a burst are no news each: the list would be made anew for all of them.
void tst_NetworkDiscovery::aBurstIsShownOnce()
{
    constexpr int burst = 150;
    QVERIFY(searchForTheManager());
    int readAtFirstRow = 0;
    connect(foundList()->model(), &QAbstractItemModel::rowsInserted, this, [&] {
        if (readAtFirstRow == 0)
            readAtFirstRow = m_station->availDevices().size();
    });
    for (int i = 0; i < burst; ++i)
        m_answerer->answer(discoveryReply(firstMac + quint64(i), QStringLiteral("10.77.0.2")));
    QTRY_COMPARE(foundList()->count(), burst);
    QCOMPARE(readAtFirstRow, burst);
}

STATION_TEST_MAIN(tst_NetworkDiscovery)
#include "tst_NetworkDiscovery.moc"
