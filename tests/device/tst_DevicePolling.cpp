#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/DeviceFakes.h"
#include "support/LogCapture.h"
#include "support/RecordedRows.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QPointer>
#include <QTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

/// A network device on its real link: polls, missed replies, and every way a logger can go away and come back.
class tst_DevicePolling : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void pollsANetworkLogger();
    void kindNoneIsNeverPolledNorOpened();
    void missedReplies_data();
    void missedReplies();
    void everyKindOfPollCountsAsMissed();
    void replyResetsTheCount();
    void disconnectingClosesTheSilentConnection();
    void slowLoggerGetsItsChanceAfterwards();
    void connectUnderWayIsNotAborted();
    void comesBackAfter_data();
    void comesBackAfter();
    void neverAnsweringLoggerIsGivenUpAgainAndAgain();
    void hostileLoggerCostsTheOthersNothing();
    void passesKeepConnectionOn();
    void deletedNetworkDeviceLeavesNoConnection();
    void readdressedDeviceUsesItsNewLogger();
    void mayBeDeletedInsideItsLinksReply();
};

namespace {

struct NetworkPair
{
    TemporaryInterval interval;
    ScriptedLogger logger;
    ConfiguredDevice device{"A1", NetworkInterface};

    explicit NetworkPair(int intervalMs) : interval(intervalMs)
    {
        device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    }

    bool connect()
    {
        device.pollForRecord();
        return QTest::qWaitFor([this] { return device.isConnected(); });
    }

    /// Polls until the device counts as disconnected; the number of polls it took, at most 10.
    int pollUntilDisconnected()
    {
        int polls = 0;
        while (device.isConnected() && polls < 10) {
            device.pollForRecord();
            ++polls;
        }
        return polls;
    }

    /// Polls again whenever a poll has not brought the device back after a while.
    bool pollUntilConnected()
    {
        for (int poll = 0; poll < 25 && !device.isConnected(); ++poll) {
            device.pollForRecord();
            if (QTest::qWaitFor([this] { return device.isConnected(); }, 200))
                return true;
        }
        return device.isConnected();
    }
};

/// A port whose queue of connections is full, so that the kernel drops every further attempt, as for a vanished host.
class FullBacklog
{
public:
    FullBacklog()
    {
        m_address.sin_family = AF_INET;
        m_address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_listener = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        socklen_t size = sizeof m_address;
        if (::bind(m_listener, generic(), size) != 0 || ::listen(m_listener, 0) != 0 ||
            ::getsockname(m_listener, generic(), &size) != 0)
            qFatal("no port to listen on");
        while (connectsAtOnce()) {
        }
    }
    ~FullBacklog()
    {
        for (int descriptor : m_descriptors)
            ::close(descriptor);
        ::close(m_listener);
    }

    quint16 port() const { return ntohs(m_address.sin_port); }
    /// Makes room for those who keep trying.
    void acceptAll()
    {
        for (int peer = ::accept(m_listener, nullptr, nullptr); peer >= 0;
             peer = ::accept(m_listener, nullptr, nullptr))
            m_descriptors << peer;
    }

private:
    sockaddr *generic() { return reinterpret_cast<sockaddr *>(&m_address); }
    bool connectsAtOnce()
    {
        const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        m_descriptors << client;
        ::connect(client, generic(), sizeof m_address);
        pollfd state{client, POLLOUT, 0};
        return ::poll(&state, 1, 0) == 1;
    }

    sockaddr_in m_address{};
    int m_listener = -1;
    QList<int> m_descriptors;
};

} // namespace

void tst_DevicePolling::cleanup()
{
    takeRecordedRows();
}

void tst_DevicePolling::pollsANetworkLogger()
{
    NetworkPair pair(10000);
    pair.device.setRecording(true);
    const QDateTime before = QDateTime::currentDateTime();
    QVERIFY(pair.connect());
    QVERIFY(pair.device.pollTime() >= before);
    QCOMPARE(pair.device.ch1Value(), QString("21.50"));
    QCOMPARE(pair.device.ch2Value(), QString("45.10"));
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    pair.device.pollForDisplay();
    QTRY_COMPARE(pair.logger.commands().size(), 2);
    QTRY_VERIFY(!pair.device.isOpen());
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_DevicePolling::kindNoneIsNeverPolledNorOpened()
{
    ScriptedLogger logger;
    ConfiguredDevice device("A1", NoInterface);
    device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    const QDateTime polled = device.pollTime();
    LogCapture log;
    QVERIFY(!device.openDevice());
    device.pollForRecord();
    device.pollForDisplay();
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(device.pollTime(), polled);
}

void tst_DevicePolling::missedReplies_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<int>("polls");
    QTest::newRow("1 s") << 1000 << 6;
    QTest::newRow("5 s") << 5000 << 3;
    QTest::newRow("10 s") << 10000 << 3;
    QTest::newRow("10 min") << 600000 << 3;
}

void tst_DevicePolling::missedReplies()
{
    QFETCH(int, interval);
    QFETCH(int, polls);
    TemporaryInterval temporary(interval);
    ConfiguredDevice device("A1", NetworkInterface);
    FakeListEntry entry;
    device.setListItem(&entry);
    device.readData("21.50,45.10\n");
    for (int poll = 1; poll < polls; ++poll) {
        device.pollForRecord();
        QVERIFY(device.isConnected());
    }
    device.pollForRecord();
    QVERIFY(!device.isConnected());
    device.pollForRecord();
    QVERIFY(!device.isConnected());
    QCOMPARE(entry.states, QList<bool>({false, true, false, false}));
}

void tst_DevicePolling::everyKindOfPollCountsAsMissed()
{
    TemporaryInterval interval(10000);
    ConfiguredDevice device("A1", NetworkInterface);
    device.readData("21.50,45.10\n");
    device.pollForDisplay();
    device.pollForRecord();
    QVERIFY(device.isConnected());
    device.pollForDisplay();
    QVERIFY(!device.isConnected());
}

void tst_DevicePolling::replyResetsTheCount()
{
    TemporaryInterval interval(10000);
    ConfiguredDevice device("A1", NetworkInterface);
    for (int round = 0; round < 5; ++round) {
        device.readData("21.50,45.10\n");
        device.pollForRecord();
        device.pollForRecord();
        QVERIFY(device.isConnected());
    }
}

void tst_DevicePolling::disconnectingClosesTheSilentConnection()
{
    NetworkPair pair(1000);
    QVERIFY(pair.connect());
    QVERIFY(pair.device.isOpen());
    pair.logger.setSilent();
    for (int poll = 0; poll < 5; ++poll)
        pair.device.pollForRecord();
    QVERIFY(pair.device.isConnected());
    QVERIFY(pair.device.isOpen());
    pair.device.pollForRecord();
    QVERIFY(!pair.device.isConnected());
    QVERIFY(!pair.device.isOpen());
    QTRY_COMPARE(pair.logger.openConnections(), 0);
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.accepted(), 2);
}

void tst_DevicePolling::slowLoggerGetsItsChanceAfterwards()
{
    NetworkPair pair(1000);
    QVERIFY(pair.connect());
    pair.logger.setSilent();
    QCOMPARE(pair.pollUntilDisconnected(), 6);
    pair.device.pollForRecord();
    QTRY_VERIFY(pair.device.isOpen());
    // It answers later than the next poll or two.
    pair.device.pollForRecord();
    pair.device.pollForRecord();
    QVERIFY2(pair.device.isOpen(), "a fresh connection is not closed by every further missed poll");
    QTRY_COMPARE(pair.logger.openConnections(), 1);
    pair.logger.send("ATDC 1,2\r\n");
    QTRY_VERIFY(pair.device.isConnected());
    QCOMPARE(pair.logger.accepted(), 2);
}

void tst_DevicePolling::connectUnderWayIsNotAborted()
{
    TemporaryInterval interval(10000);
    FullBacklog host;
    ConfiguredDevice device("A1", NetworkInterface);
    device.setDeviceInfo("Cellar", "1", "2", "127.0.0.1", host.port());
    device.readData("21.50,45.10\n");
    LogCapture log;
    for (int poll = 0; poll < 10; ++poll) {
        device.pollForRecord();
        QCoreApplication::processEvents();
    }
    QVERIFY(!device.isConnected());
    QVERIFY(!device.isOpen());
    QCOMPARE(log.count("TelnetDevice::close"), 0);
    host.acceptAll();
    QTRY_VERIFY_WITH_TIMEOUT(device.isOpen(), 20000);
    QCOMPARE(log.count("#### TelnetDevice::sockConnected"), 1);
}

void tst_DevicePolling::comesBackAfter_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("interval");
    for (int interval : {1000, 10000}) {
        for (const char *fault : {"silence", "refusal", "accepting only", "closing its end", "no echo"})
            QTest::addRow("%s at %d ms", fault, interval) << fault << interval;
    }
}

void tst_DevicePolling::comesBackAfter()
{
    QFETCH(QString, fault);
    QFETCH(int, interval);
    NetworkPair pair(interval);
    pair.device.setKeepConnection(true);
    QVERIFY(pair.connect());
    if (fault == "refusal" || fault == "closing its end") {
        pair.logger.stopListening();
        pair.logger.dropConnections();
    } else if (fault == "accepting only") {
        pair.logger.dropConnections();
        pair.logger.setSilent();
    } else if (fault == "no echo") {
        pair.logger.setReply("21.50,45.10\r\n");
    } else {
        pair.logger.setSilent();
    }
    QCOMPARE(pair.pollUntilDisconnected(), interval == 1000 ? 6 : 3);
    // It stays away for a while.
    for (int poll = 0; poll < 20; ++poll) {
        pair.device.pollForRecord();
        for (int turn = 0; turn < 20; ++turn)
            QCoreApplication::processEvents();
    }
    QVERIFY(!pair.device.isConnected());
    pair.logger.setReply("ATDC 22.50,46.10\r\n");
    if (fault == "refusal" || fault == "closing its end")
        QVERIFY(pair.logger.listenAgain());
    QVERIFY(pair.pollUntilConnected());
    QCOMPARE(pair.device.ch1Value(), QString("22.50"));
}

void tst_DevicePolling::neverAnsweringLoggerIsGivenUpAgainAndAgain()
{
    NetworkPair pair(10000);
    pair.logger.setSilent(); // from the start: the device was never connected
    for (int connection = 1; connection <= 3; ++connection) {
        pair.device.pollForRecord();
        QTRY_VERIFY(pair.device.isOpen());
        QTRY_COMPARE(pair.logger.accepted(), connection);
        for (int poll = 0; poll < 3; ++poll) {
            QVERIFY(pair.device.isOpen());
            pair.device.pollForRecord();
        }
        QVERIFY(!pair.device.isOpen());
    }
}

void tst_DevicePolling::hostileLoggerCostsTheOthersNothing()
{
    NetworkPair healthy(1000);
    ScriptedLogger hostileLogger;
    QByteArray lines("ATDC ");
    for (int i = 0; i < 5000; ++i)
        lines += i % 2 ? "nan,'\"\n" : QByteArray(400, '9') + ",\x01\xFF\n";
    const QList<QByteArray> attacks{lines,
                                    QByteArray("ATDC ") + QByteArray(4000, '7') + ",1\r\n",
                                    QByteArray("ATDC \0\xFF,\0\n", 10),
                                    QByteArray(200000, ','),
                                    "ATDC" + QByteArray(200000, ','),
                                    "'); drop table ostrivane; --,1\r\n"};
    int attack = 0;
    hostileLogger.setScript([&](const QByteArray &) { return QList<QByteArray>{attacks[attack++ % attacks.size()]}; });
    ConfiguredDevice hostile("B2", NetworkInterface);
    hostile.setDeviceInfo("Hostile", "1", "2", hostileLogger.address(), hostileLogger.port());
    healthy.device.setRecording(true);
    hostile.setRecording(true);
    QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000);
    healthy.device.setClock([&now] { return now; });

    const int polls = 20;
    for (int poll = 1; poll <= polls; ++poll) {
        now = now.addSecs(1);
        healthy.logger.setReply("ATDC " + QByteArray::number(poll) + ",1\r\n");
        hostile.pollForRecord();
        healthy.device.pollForRecord();
        QTRY_COMPARE(healthy.device.ch1Value(), QString("%1.00").arg(poll));
        // A poll that meets the rest of an attack is cut off with it.
        QVERIFY(QTest::qWaitFor([&] {
            if (hostileLogger.commands().size() < poll && !hostile.isOpen())
                hostile.pollForRecord();
            return hostileLogger.commands().size() >= poll;
        }));
    }
    QList<RecordedRow> rows = takeRecordedRows();
    rows.erase(std::remove_if(rows.begin(), rows.end(), [](const RecordedRow &row) { return row.serial != "A1"; }),
               rows.end());
    QCOMPARE(rows.size(), polls);
}

void tst_DevicePolling::passesKeepConnectionOn()
{
    NetworkPair pair(10000);
    QVERIFY(pair.connect());
    QVERIFY(!pair.device.isOpen());
    pair.device.setKeepConnection(true);
    pair.device.pollForRecord();
    QTRY_VERIFY(pair.device.isOpen());
    QTRY_COMPARE(pair.logger.commands().size(), 2);
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.logger.commands().size(), 3);
    QCOMPARE(pair.logger.accepted(), 2);
    pair.device.closeDevice();
    QVERIFY(!pair.device.isOpen());
}

void tst_DevicePolling::deletedNetworkDeviceLeavesNoConnection()
{
    TemporaryInterval interval(1000);
    ScriptedLogger logger;
    auto device = std::make_unique<ConfiguredDevice>("A1", NetworkInterface);
    device->setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    QVERIFY(device->openDevice());
    QTRY_COMPARE(logger.openConnections(), 1);
    device.reset();
    QTRY_COMPARE(logger.openConnections(), 0);
}

void tst_DevicePolling::readdressedDeviceUsesItsNewLogger()
{
    NetworkPair pair(10000);
    ScriptedLogger other;
    other.setReply("ATDC 5,6\r\n");
    QVERIFY(pair.connect());
    pair.device.setDeviceInfo("Cellar", "1", "2", other.address(), other.port());
    pair.device.pollForRecord();
    QTRY_COMPARE(pair.device.ch1Value(), QString("5.00"));
    pair.device.forgetPort();
    QCOMPARE(pair.device.address(), other.address());
    pair.device.pollForRecord();
    QVERIFY(!pair.device.isOpen());
    pair.device.openDevice();
    QTRY_COMPARE(other.accepted(), 2);
}

void tst_DevicePolling::mayBeDeletedInsideItsLinksReply()
{
    TemporaryInterval interval(1000);
    ScriptedLogger logger;
    FakeTile tile;
    QPointer<ConfiguredDevice> device = new ConfiguredDevice("A1", NetworkInterface);
    tile.onCall = [&] {
        if (tile.calls.last().startsWith("value"))
            delete device.data();
    };
    device->setTiles(&tile, nullptr);
    device->setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
    device->pollForRecord();
    QTRY_VERIFY(!device);
    QTRY_COMPARE(logger.openConnections(), 0);
}

QTEST_GUILESS_MAIN(tst_DevicePolling)
#include "tst_DevicePolling.moc"
