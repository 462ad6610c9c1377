#include "device/TelnetDevice.h"
#include "support/LogCapture.h"
#include "support/MetaMethods.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTest>

class tst_TelnetDevice : public QObject
{
    Q_OBJECT

private slots:
    void castsToItsInterface();
    void declaresSignalsAndSlotsInOrder();
    void startsWithItsDefaults();
    void storesItsAddress();
    void pollBecomesAConnectAndThenAPoll();
    void openOnAStandingConnectionPolls();
    void standingConnectionIsPolledAtOnce();
    void lowDelayHoldsOnceConnected();
    void usesNoProxy();
    void refusesWhatIsNoAddress_data();
    void refusesWhatIsNoAddress();
    void passesOnOneNotification_data();
    void passesOnOneNotification();
    void dropsWhatHasNoEcho();
    void judgesEachNotificationAlone();
    void connectionPolicy_data();
    void connectionPolicy();
    void policyClosesBeforeTheReplyIsJudged();
    void everyPollReconnectsWithKeepConnectionOff();
    void buzzerFlagPassesRepliesUnjudged();
    void buzzerFlagAsksForTheExchange();
    void remoteCloseIsNotAnError();
    void refusedConnectionCloses();
    void errors_data();
    void errors();
    void writeCommandWithoutConnection();
    void survivesTheSocketsDeletion();
    void mayBeDeletedInsideItsSignals_data();
    void mayBeDeletedInsideItsSignals();
    void leavesNoSocketBehind();
    void logsOneReading();
};

namespace {

QTcpSocket *socketOf(TelnetDevice &link)
{
    return link.findChild<QTcpSocket *>();
}

/// A link that stays connected, and a silent logger that has received its first poll.
struct ConnectedPair
{
    TemporaryInterval interval{1000};
    ScriptedLogger logger;
    TelnetDevice link;

    bool connect()
    {
        logger.setSilent();
        link.setDeviceInfo(logger.address(), logger.port());
        link.open();
        return QTest::qWaitFor([this] { return logger.commands().size() == 1; });
    }
};

} // namespace

void tst_TelnetDevice::castsToItsInterface()
{
    TelnetDevice link;
    AbstractDevice *expected = &link;
    QCOMPARE(static_cast<AbstractDevice *>(link.qt_metacast("AbstractDevice")), expected);
    QCOMPARE(static_cast<AbstractDevice *>(link.qt_metacast("com.sorvanto.AbstractDevice")), expected);
    QCOMPARE(link.deviceType(), 2);
}

void tst_TelnetDevice::declaresSignalsAndSlotsInOrder()
{
    const QMetaObject &meta = TelnetDevice::staticMetaObject;
    QCOMPARE(methodsOf(meta, QMetaMethod::Signal), QStringList({"readyRead(QString)", "writeStartSync()"}));
    QCOMPARE(methodsOf(meta, QMetaMethod::Slot),
             QStringList({"readData()", "telnetDeleted()", "telnetStateChanged(QAbstractSocket::SocketState)",
                          "sockConnected()", "sockError(QAbstractSocket::SocketError)"}));
}

void tst_TelnetDevice::startsWithItsDefaults()
{
    TelnetDevice link;
    QCOMPARE(int(link.port()), 23);
    QVERIFY(!link.isOpen());
    QVERIFY(!link.buzzerFlag());
    QVERIFY(!link.keepConnection());
}

void tst_TelnetDevice::storesItsAddress()
{
    LogCapture log;
    TelnetDevice link;
    link.setDeviceInfo("192.168.7.23", 4001);
    QCOMPARE(link.deviceName(), QString("192.168.7.23"));
    QCOMPARE(int(link.port()), 4001);
    QCOMPARE(log.lines(), QStringList("TelnetDevice::setDeviceInfo : [192.168.7.23] : [4001]"));
}

void tst_TelnetDevice::pollBecomesAConnectAndThenAPoll()
{
    TemporaryInterval interval(1000);
    ScriptedLogger logger;
    TelnetDevice link;
    QSignalSpy readyRead(&link, &TelnetDevice::readyRead);
    link.setDeviceInfo(logger.address(), logger.port());
    link.write();
    QVERIFY(!link.isOpen());
    QVERIFY(readyRead.wait());
    QVERIFY(link.isOpen());
    QCOMPARE(logger.received(), QByteArray("ATDC\r\n"));
    QCOMPARE(readyRead.first().first().toString(), QString("21.50,45.10\n"));
}

void tst_TelnetDevice::openOnAStandingConnectionPolls()
{
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QVERIFY(pair.link.open());
    QTRY_COMPARE(pair.logger.commands(), QList<QByteArray>({"ATDC", "ATDC"}));
    QCOMPARE(pair.logger.accepted(), 1);
}

void tst_TelnetDevice::standingConnectionIsPolledAtOnce()
{
    ConnectedPair pair;
    QVERIFY(pair.connect());
    pair.link.write();
    QTRY_COMPARE(pair.logger.commands(), QList<QByteArray>({"ATDC", "ATDC"}));
    QCOMPARE(pair.link.writeCommand("HELLO\r\n"), qint64(7));
    QTRY_COMPARE(pair.logger.commands().last(), QByteArray("HELLO"));
}

void tst_TelnetDevice::lowDelayHoldsOnceConnected()
{
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QCOMPARE(socketOf(pair.link)->socketOption(QAbstractSocket::LowDelayOption).toInt(), 1);
    QCOMPARE(socketOf(pair.link)->socketOption(QAbstractSocket::KeepAliveOption).toInt(), 0);
}

void tst_TelnetDevice::usesNoProxy()
{
    // The loopback address goes past a proxy by itself, so a connection would prove nothing.
    TelnetDevice link;
    QCOMPARE(socketOf(link)->proxy().type(), QNetworkProxy::NoProxy);
}

void tst_TelnetDevice::refusesWhatIsNoAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("empty") << "";
    QTest::newRow("host name") << "localhost";
    QTest::newRow("too many parts") << "1.2.3.4.5";
    QTest::newRow("part too large") << "1.2.3.256";
    QTest::newRow("rubbish") << "'; drop --";
}

void tst_TelnetDevice::refusesWhatIsNoAddress()
{
    QFETCH(QString, address);
    LogCapture log;
    TelnetDevice link;
    QSignalSpy stateChanged(socketOf(link), &QTcpSocket::stateChanged);
    link.setDeviceInfo(address, 23);
    QVERIFY(!link.open());
    link.write();
    QVERIFY(!link.isOpen());
    QCOMPARE(stateChanged.count(), 0);
    QCOMPARE(log.count("[ERROR] TelnetDevice::open : [" + address + "]"), 2);
}

void tst_TelnetDevice::passesOnOneNotification_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<QString>("passedOn");
    QTest::newRow("echo and reading") << QByteArray("ATDC 21.50,45.10\r\n") << "21.50,45.10\n";
    QTest::newRow("two replies") << QByteArray("ATDC 1,2\r\nATDC 3,4\r\n") << "1,2\n3,4\n";
    QTest::newRow("zero byte") << QByteArray("\0ATDC 1\0,2\n", 11) << QString::fromLatin1("\0001\0,2\n", 6);
    QTest::newRow("eight bits") << QByteArray("ATDC \xB0\xFF,2\n") << QString::fromLatin1("\xB0\xFF,2\n");
}

void tst_TelnetDevice::passesOnOneNotification()
{
    QFETCH(QByteArray, sent);
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QSignalSpy readyRead(&pair.link, &TelnetDevice::readyRead);
    pair.logger.send(sent);
    QVERIFY(readyRead.wait());
    QTEST(readyRead.first().first().toString(), "passedOn");
}

void tst_TelnetDevice::dropsWhatHasNoEcho()
{
    LogCapture log;
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QSignalSpy readyRead(&pair.link, &TelnetDevice::readyRead);
    const QString errorStart = "[ERROR] TelnetDevice::readData no 'ATDC' : buzzer flag :false [127.0.0.1] :";
    pair.logger.send("21.50,45.10\r\n");
    QTRY_VERIFY(log.lines().contains(errorStart + "21.50,45.10\n"));
    pair.logger.send("ATCD 21.50,45.10\r\n");
    QTRY_VERIFY(log.lines().contains(errorStart + "ATCD 21.50,45.10\n"));
    QCOMPARE(readyRead.count(), 0);
}

void tst_TelnetDevice::judgesEachNotificationAlone()
{
    LogCapture log;
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QSignalSpy readyRead(&pair.link, &TelnetDevice::readyRead);
    pair.logger.send("ATDC 21.5");
    QTRY_COMPARE(readyRead.count(), 1);
    pair.logger.send("0,45.10\r\n");
    QTRY_COMPARE(log.count("[ERROR] TelnetDevice::readData no 'ATDC'"), 1);
    QCOMPARE(readyRead.count(), 1);
}

void tst_TelnetDevice::connectionPolicy_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("keep");
    QTest::addColumn<bool>("staysOpen");
    QTest::newRow("1 s, keep off") << 1000 << false << true;
    QTest::newRow("1 s, keep on") << 1000 << true << true;
    QTest::newRow("5 s, keep off") << 5000 << false << false;
    QTest::newRow("10 s, keep off") << 10000 << false << false;
    QTest::newRow("10 s, keep on") << 10000 << true << true;
    QTest::newRow("1 min, keep off") << 60000 << false << false;
    QTest::newRow("1 min, keep on") << 60000 << true << true;
    QTest::newRow("5 min, keep off") << 300000 << false << false;
    QTest::newRow("5 min, keep on") << 300000 << true << false;
}

void tst_TelnetDevice::connectionPolicy()
{
    QFETCH(int, interval);
    QFETCH(bool, keep);
    QFETCH(bool, staysOpen);
    TemporaryInterval temporary(interval);
    ScriptedLogger logger;
    TelnetDevice link;
    QSignalSpy readyRead(&link, &TelnetDevice::readyRead);
    link.setKeepConnection(keep);
    link.setDeviceInfo(logger.address(), logger.port());
    link.write();
    QVERIFY(readyRead.wait());
    QCOMPARE(link.isOpen(), staysOpen);
    QTRY_COMPARE(logger.openConnections(), staysOpen ? 1 : 0);
}

void tst_TelnetDevice::policyClosesBeforeTheReplyIsJudged()
{
    TemporaryInterval interval(10000);
    LogCapture log;
    ScriptedLogger logger;
    logger.setReply("rubbish\r\n");
    TelnetDevice link;
    link.setDeviceInfo(logger.address(), logger.port());
    link.write();
    QTRY_COMPARE(log.count("[ERROR] TelnetDevice::readData no 'ATDC'"), 1);
    QVERIFY(!link.isOpen());
    const int closed = log.lines().indexOf("TelnetDevice::close : buzzer flag :false [127.0.0.1]");
    QVERIFY(closed >= 0);
    QVERIFY(log.lines().at(log.lines().size() - 1).startsWith("[ERROR] TelnetDevice::readData"));
}

void tst_TelnetDevice::everyPollReconnectsWithKeepConnectionOff()
{
    TemporaryInterval interval(10000);
    ScriptedLogger logger;
    TelnetDevice link;
    QSignalSpy readyRead(&link, &TelnetDevice::readyRead);
    link.setDeviceInfo(logger.address(), logger.port());
    for (int poll = 1; poll <= 3; ++poll) {
        link.write();
        QVERIFY(readyRead.wait());
        QVERIFY(!link.isOpen());
        QCOMPARE(logger.accepted(), poll);
    }
    link.setKeepConnection(true);
    for (int poll = 1; poll <= 3; ++poll) {
        link.write();
        QVERIFY(readyRead.wait());
        QVERIFY(link.isOpen());
    }
    QCOMPARE(logger.accepted(), 4);
    QCOMPARE(logger.commands().size(), 6);
}

void tst_TelnetDevice::buzzerFlagPassesRepliesUnjudged()
{
    TemporaryInterval interval(10000);
    ScriptedLogger logger;
    logger.setSilent();
    TelnetDevice link;
    QSignalSpy readyRead(&link, &TelnetDevice::readyRead);
    link.setBuzzerFlag(true);
    link.setDeviceInfo(logger.address(), logger.port());
    link.open();
    QTRY_VERIFY(link.isOpen());
    logger.send("OK\r\n");
    QVERIFY(readyRead.wait());
    QCOMPARE(readyRead.last().first().toString(), QString("OK\n"));
    logger.send("ATDC 1, 2\r\n");
    QVERIFY(readyRead.wait());
    QCOMPARE(readyRead.last().first().toString(), QString("ATDC 1, 2\n"));
    QVERIFY2(link.isOpen(), "the reply policy rests during the exchange");
}

void tst_TelnetDevice::buzzerFlagAsksForTheExchange()
{
    ScriptedLogger logger;
    TelnetDevice link;
    QSignalSpy writeStartSync(&link, &TelnetDevice::writeStartSync);
    link.setBuzzerFlag(true);
    link.setDeviceInfo(logger.address(), logger.port());
    link.open();
    QCOMPARE(writeStartSync.count(), 0);
    QVERIFY(writeStartSync.wait()); // once connected
    QVERIFY(link.open());
    QCOMPARE(writeStartSync.count(), 2);
    link.write();
    QCOMPARE(writeStartSync.count(), 3);
    QCOMPARE(logger.received(), QByteArray());
    link.close();
    link.write();
    QCOMPARE(writeStartSync.count(), 4);
}

void tst_TelnetDevice::remoteCloseIsNotAnError()
{
    LogCapture log;
    ConnectedPair pair;
    QVERIFY(pair.connect());
    QSignalSpy disconnected(socketOf(pair.link), &QTcpSocket::disconnected);
    pair.logger.dropConnections();
    QVERIFY(disconnected.wait());
    QVERIFY(pair.link.isOpen());
    QCOMPARE(log.count("TelnetDevice::sockError"), 0);
    QCOMPARE(log.count("TelnetDevice::close"), 0);
    pair.link.write();
    QTRY_COMPARE(pair.logger.accepted(), 2);
    QTRY_COMPARE(pair.logger.commands().size(), 2);
}

void tst_TelnetDevice::refusedConnectionCloses()
{
    LogCapture log;
    ConnectedPair pair;
    QVERIFY(pair.connect());
    pair.link.close();
    QVERIFY(!pair.link.isOpen());
    pair.logger.stopListening();
    pair.link.write();
    QTRY_COMPARE(log.count("TelnetDevice::sockError : [127.0.0.1] buzzer flag :false [0]"), 1);
    QVERIFY(!pair.link.isOpen());
    QVERIFY(pair.logger.listenAgain());
    pair.link.write();
    QTRY_COMPARE(pair.logger.commands().size(), 2);
}

void tst_TelnetDevice::errors_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<bool>("closes");
    for (int error = -1; error <= 20; ++error)
        QTest::addRow("error %d", error) << error << (error != 1 && error < 19);
}

void tst_TelnetDevice::errors()
{
    QFETCH(int, error);
    QFETCH(bool, closes);
    ConnectedPair pair;
    QVERIFY(pair.connect());
    LogCapture log;
    pair.link.sockError(static_cast<QAbstractSocket::SocketError>(error));
    QCOMPARE(pair.link.isOpen(), !closes);
    QCOMPARE(log.count(QString("TelnetDevice::sockError : [127.0.0.1] buzzer flag :false [%1]").arg(error)),
             closes ? 1 : 0);
    QCOMPARE(log.count("TelnetDevice::close"), closes ? 1 : 0);
}

void tst_TelnetDevice::writeCommandWithoutConnection()
{
    ScriptedLogger logger;
    logger.setSilent();
    TelnetDevice link;
    link.setDeviceInfo(logger.address(), logger.port());
    QCOMPARE(link.writeCommand("HELLO\r\n"), qint64(0)); // connects instead
    QCOMPARE(link.writeCommand("HELLO\r\n"), qint64(0)); // still connecting
    QTRY_COMPARE(logger.commands(), QList<QByteArray>({"ATDC"}));
    QCOMPARE(logger.accepted(), 1);
}

void tst_TelnetDevice::survivesTheSocketsDeletion()
{
    ConnectedPair pair;
    QVERIFY(pair.connect());
    LogCapture log;
    delete socketOf(pair.link);
    QCOMPARE(log.count("TelnetDevice::telnetDeleted : [127.0.0.1]"), 1);
    QVERIFY(!pair.link.isOpen());
    QVERIFY(!pair.link.open());
    QCOMPARE(pair.link.writeCommand("HELLO"), qint64(0));
    pair.link.write();
    pair.link.readData();
    pair.link.close();
}

void tst_TelnetDevice::mayBeDeletedInsideItsSignals_data()
{
    QTest::addColumn<bool>("exchange");
    QTest::newRow("readyRead") << false;
    QTest::newRow("writeStartSync") << true;
}

void tst_TelnetDevice::mayBeDeletedInsideItsSignals()
{
    QFETCH(bool, exchange);
    ScriptedLogger logger;
    QObject receiver;
    QPointer<TelnetDevice> link = new TelnetDevice;
    QPointer<QTcpSocket> socket = socketOf(*link);
    link->setBuzzerFlag(exchange);
    link->setDeviceInfo(logger.address(), logger.port());
    bool outlivesItsSignal = false;
    const auto deleteLink = [&] {
        delete link.data();
        outlivesItsSignal = socket && socket->state() == QAbstractSocket::UnconnectedState;
    };
    QObject::connect(link, &TelnetDevice::readyRead, &receiver, deleteLink);
    QObject::connect(link, &TelnetDevice::writeStartSync, &receiver, deleteLink);
    link->open();
    QTRY_VERIFY(!link);
    QVERIFY2(outlivesItsSignal, "a socket is used after its end when it is deleted inside its own signal");
    QTRY_VERIFY(!socket);
    QTRY_COMPARE(logger.openConnections(), 0);
}

void tst_TelnetDevice::leavesNoSocketBehind()
{
    TemporaryInterval interval(1000);
    ScriptedLogger logger;
    auto link = std::make_unique<TelnetDevice>();
    const QPointer<QTcpSocket> socket = socketOf(*link);
    link->setDeviceInfo(logger.address(), logger.port());
    link->open();
    QTRY_VERIFY(link->isOpen());
    QTRY_COMPARE(logger.openConnections(), 1);
    link.reset();
    QVERIFY(!socket);
    QTRY_COMPARE(logger.openConnections(), 0);
}

void tst_TelnetDevice::logsOneReading()
{
    TemporaryInterval interval(10000);
    ScriptedLogger logger;
    LogCapture log;
    {
        TelnetDevice link;
        QSignalSpy readyRead(&link, &TelnetDevice::readyRead);
        link.setDeviceInfo(logger.address(), logger.port());
        link.write();
        QVERIFY(readyRead.wait());
    }
    const QStringList lines = log.lines();
    const QString state = "QAbstractSocket::UnconnectedState";
    QCOMPARE(lines.mid(1, 3),
             QStringList({"TelnetDevice::write : buzzer flag :false [127.0.0.1] : [" + state + "] : false",
                          "TelnetDevice::writeCommand : [127.0.0.1] buzzer flag :false [" + state + "] :ATDC\r\n",
                          "TelnetDevice::open : buzzer flag :false 127.0.0.1] [" + state + "] valid : false"}));
    QVERIFY(lines.contains("TelnetDevice::telnetStateChanged : buzzer flag :false [127.0.0.1] : "
                           "[QAbstractSocket::ConnectingState]"));
    QVERIFY(lines.contains("#### TelnetDevice::sockConnected : buzzer flag :false [127.0.0.1]"));
    QVERIFY(lines.contains("TelnetDevice::readData : buzzer flag :false [127.0.0.1] :21.50,45.10\n"));
    QVERIFY(lines.contains("TelnetDevice::~TelnetDevice : [127.0.0.1]"));
    QCOMPARE(lines.last(), QString("TelnetDevice::close : buzzer flag :false [127.0.0.1]"));
}

QTEST_GUILESS_MAIN(tst_TelnetDevice)
#include "tst_TelnetDevice.moc"
