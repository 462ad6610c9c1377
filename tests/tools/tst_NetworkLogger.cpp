#include "Station.h"

#include "loggersim/Fleet.h"

#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>

using namespace loggersim;

namespace {

const QByteArray poll = "ATDC\r\n";

bool isReading(const QByteArray &reply)
{
    static const QRegularExpression reading("^ATDC -?\\d+\\.\\d\\d,-?\\d+\\.\\d\\d\r\n$");
    return reading.match(QString::fromLatin1(reply)).hasMatch();
}

} // namespace

/// Drives network loggers with plain sockets, as a station would.
class tst_NetworkLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pollIsAnsweredWithEcho();
    void everyReadingDiffers();
    void severalCommandsInOnePiece();
    void commandInPieces();
    void unknownCommand();
    void overlongCommandIsDropped();
    void alarmLimitsAreStored();
    void wrongAlarmCommands_data();
    void wrongAlarmCommands();
    void severalStations();
    void ownAddressesOnOnePort();
    void keysAreUniqueLocalAddresses();
    void occupiedPortIsReported();
    void countsWhatItServed();
    void connectionsAreForgotten();

    void silent();
    void slow();
    void split();
    void hostileReplies_data();
    void hostileReplies();
    void dashesCountAsReadings();
    void closesAfterReply();
    void refuses();
    void stalls();
    void vanishes();
    void vanishedComesBack();
    void errToAlarmCommands();
    void errToOneAlarmCommand();
    void floods();
    void faultOfTheOtherKindIsRefused();

private:
    void setFault(const QString &fault);
    /// Until a healthy logger has answered, everything sent before has reached the loggers too.
    void settle();

    std::unique_ptr<Fleet> m_fleet;
    NetworkLogger *m_logger = nullptr;
    std::unique_ptr<Station> m_station;
    NetworkLogger *m_healthy = nullptr;
    std::unique_ptr<Station> m_healthyStation;
};

void tst_NetworkLogger::init()
{
    QString error;
    m_fleet = std::make_unique<Fleet>();
    m_logger = m_fleet->addNetworkLogger(QHostAddress::LocalHost, 0, &error);
    m_healthy = m_fleet->addNetworkLogger(QHostAddress::LocalHost, 0, &error);
    QVERIFY2(m_logger && m_healthy, qPrintable(error));
    m_station = std::make_unique<Station>();
    m_healthyStation = std::make_unique<Station>();
    QVERIFY(m_station->reach(*m_logger));
    QVERIFY(m_healthyStation->reach(*m_healthy));
}

void tst_NetworkLogger::cleanup()
{
    m_station.reset();
    m_healthyStation.reset();
    m_fleet.reset();
}

void tst_NetworkLogger::setFault(const QString &fault)
{
    QString error;
    QVERIFY2(m_fleet->setFault(m_logger->key(), fault, &error), qPrintable(error));
}

void tst_NetworkLogger::settle()
{
    for (int i = 0; i < 3; ++i)
        QVERIFY(isReading(m_healthyStation->ask(poll)));
}

void tst_NetworkLogger::pollIsAnsweredWithEcho()
{
    const QByteArray reply = m_station->ask(poll);
    QVERIFY2(isReading(reply), reply.constData());
}

void tst_NetworkLogger::everyReadingDiffers()
{
    QByteArray before;
    for (int i = 0; i < 200; ++i) {
        const QByteArray reply = m_station->ask(poll);
        QVERIFY(isReading(reply));
        QVERIFY(reply != before);
        before = reply;
    }
}

void tst_NetworkLogger::severalCommandsInOnePiece()
{
    m_station->write(poll + poll + poll);
    QTRY_COMPARE(m_station->received.count('\n'), 3);
    QTRY_COMPARE(m_logger->served(), quint64(3));
}

void tst_NetworkLogger::commandInPieces()
{
    m_station->write("AT");
    settle();
    m_station->write("DC\r");
    settle();
    QCOMPARE(m_logger->commands(), quint64(0));
    QVERIFY(isReading(m_station->ask("\n")));
}

void tst_NetworkLogger::unknownCommand()
{
    QCOMPARE(m_station->ask("ATXX\r\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_station->ask("ATCD\r\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_station->ask("ATDC\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_logger->served(), quint64(0));
}

void tst_NetworkLogger::overlongCommandIsDropped()
{
    m_station->write(QByteArray(100000, 'x'));
    settle();
    QCOMPARE(m_station->ask("\r\n"), QByteArray("ERR\r\n"));
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::alarmLimitsAreStored()
{
    const QByteArrayList commands{"ATBMIN1 10.00", "ATBMAX1 30.00", "ATBMIN2 -5.00", "ATBMAX2 0.00", "ATBAL OFF"};
    for (const QByteArray &command : commands)
        QCOMPARE(m_station->ask(command + "\r\n"), QByteArray("OK\r\n"));
    QVERIFY(!m_logger->alarms().stored());
    QCOMPARE(m_station->ask("ATBSET\r\n"), QByteArray("OK\r\n"));
    QVERIFY(m_logger->alarms().stored());
    QCOMPARE(m_logger->alarms().stored()->toText(), QByteArray("10.00 30.00 -5.00 0.00 OFF"));
    QCOMPARE(m_logger->alarms().received(), commands + QByteArrayList{"ATBSET"});
    QCOMPARE(m_logger->served(), quint64(0));
}

void tst_NetworkLogger::wrongAlarmCommands_data()
{
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("no limit") << QByteArray("ATBMIN1");
    QTest::newRow("empty limit") << QByteArray("ATBMIN1 ");
    QTest::newRow("decimal comma") << QByteArray("ATBMIN1 1,5");
    QTest::newRow("not a number") << QByteArray("ATBMAX2 nan");
    QTest::newRow("no rule") << QByteArray("ATBAL ");
    QTest::newRow("unknown") << QByteArray("ATBMIN3 1.00");
}

void tst_NetworkLogger::wrongAlarmCommands()
{
    QFETCH(QByteArray, command);
    QCOMPARE(m_station->ask(command + "\r\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_station->ask("ATBSET\r\n"), QByteArray("OK\r\n"));
    QCOMPARE(m_logger->alarms().stored()->toText(), QByteArray("0.00 0.00 0.00 0.00 OFF"));
}

void tst_NetworkLogger::severalStations()
{
    Station second;
    QVERIFY(second.reach(*m_logger));
    QVERIFY(isReading(second.ask(poll)));
    QVERIFY(isReading(m_station->ask(poll)));
    QVERIFY(m_station->received != second.received);
    QTRY_COMPARE(m_logger->served(), quint64(2));
    QCOMPARE(m_logger->connectionCount(), 2);
}

void tst_NetworkLogger::ownAddressesOnOnePort()
{
    QString error;
    NetworkLogger *first = m_fleet->addNetworkLogger(QHostAddress("127.0.1.1"), 0, &error);
    QVERIFY2(first, qPrintable(error));
    NetworkLogger *second = m_fleet->addNetworkLogger(QHostAddress("127.0.1.2"), first->port(), &error);
    QVERIFY2(second, qPrintable(error));
    QCOMPARE(second->port(), first->port());
    Station station;
    QVERIFY(station.reach(*second));
    QVERIFY(isReading(station.ask(poll)));
    QTRY_COMPARE(second->served(), quint64(1));
    QCOMPARE(first->served(), quint64(0));
}

void tst_NetworkLogger::keysAreUniqueLocalAddresses()
{
    QString error;
    QSet<QString> keys;
    for (const quint16 seed : {quint16(0), quint16(1), quint16(65535)}) {
        Fleet fleet(seed);
        for (int i = 0; i < 40; ++i)
            QVERIFY(fleet.addNetworkLogger(QHostAddress::LocalHost, 0, &error));
        for (const SimLogger *logger : fleet.loggers()) {
            QVERIFY(QRegularExpression("^02[0-9A-F]{10}$").match(logger->key()).hasMatch());
            keys.insert(logger->key());
        }
    }
    QCOMPARE(keys.size(), 120);
}

void tst_NetworkLogger::occupiedPortIsReported()
{
    QString error;
    QVERIFY(!m_fleet->addNetworkLogger(QHostAddress::LocalHost, m_logger->port(), &error));
    QVERIFY(error.startsWith(QString("cannot listen on 127.0.0.1 port %1: ").arg(m_logger->port())));
    QCOMPARE(m_fleet->loggers().size(), 2);
}

void tst_NetworkLogger::countsWhatItServed()
{
    for (int i = 0; i < 5; ++i)
        QVERIFY(isReading(m_station->ask(poll)));
    QTRY_COMPARE(m_logger->served(), quint64(5));
    QCOMPARE(m_healthy->served(), quint64(0));
    const QByteArray expected =
        m_logger->key().toLatin1() + "\tnetwork\t5\n" + m_healthy->key().toLatin1() + "\tnetwork\t0\n";
    QCOMPARE(m_fleet->report(), expected);
}

void tst_NetworkLogger::connectionsAreForgotten()
{
    QCOMPARE(m_logger->connectionCount(), 1);
    m_station->disconnectFromHost();
    QTRY_COMPARE(m_logger->connectionCount(), 0);
}

void tst_NetworkLogger::silent()
{
    setFault("silent");
    m_station->write(poll + "ATBSET\r\n");
    QTRY_COMPARE(m_logger->commands(), quint64(2));
    setFault("none");
    QVERIFY(isReading(m_station->ask(poll)));
    settle();
    QCOMPARE(m_station->received.count('\n'), 1);
    QCOMPARE(m_logger->served(), quint64(1));
}

void tst_NetworkLogger::slow()
{
    setFault("slow:3600000");
    m_station->write(poll);
    QTRY_COMPARE(m_logger->commands(), quint64(1));
    settle();
    QCOMPARE(m_station->received, QByteArray());
    QCOMPARE(m_logger->served(), quint64(0));
    setFault("none");
    QTRY_VERIFY(isReading(m_station->received));
    QTRY_COMPARE(m_logger->served(), quint64(1));
    setFault("slow:20");
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::split()
{
    setFault("split");
    const QByteArray reply = m_station->ask(poll);
    QVERIFY2(isReading(reply), reply.constData());
    QVERIFY(m_station->pieces > 1);
    QTRY_COMPARE(m_logger->served(), quint64(1));
}

void tst_NetworkLogger::hostileReplies_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<int>("size");
    QTest::newRow("noecho") << "noecho" << 10;
    QTest::newRow("garbage") << "garbage" << 20;
    QTest::newRow("nan") << "nan" << 14;
    QTest::newRow("hugenumbers") << "hugenumbers" << 8000;
    QTest::newRow("largenumbers") << "largenumbers" << 63 * 1024;
    QTest::newRow("quotes") << "quotes" << 30;
    QTest::newRow("binary") << "binary" << 512;
    QTest::newRow("manylines") << "manylines" << 5000 * 15;
}

void tst_NetworkLogger::hostileReplies()
{
    QFETCH(QString, fault);
    QFETCH(int, size);
    setFault(fault);
    m_station->write(poll);
    QTRY_VERIFY(m_station->received.size() >= size);
    setFault("none");
    settle();
    QVERIFY(isReading(m_station->ask(poll)));
    QTRY_COMPARE(m_logger->served(), quint64(1));
}

void tst_NetworkLogger::dashesCountAsReadings()
{
    setFault("dashes");
    QCOMPARE(m_station->ask(poll), QByteArray("ATDC ----,----\r\n"));
    QTRY_COMPARE(m_logger->served(), quint64(1));
}

void tst_NetworkLogger::closesAfterReply()
{
    setFault("closeafter");
    QVERIFY(isReading(m_station->ask(poll)));
    QTRY_COMPARE(m_station->state(), QAbstractSocket::UnconnectedState);
    QTRY_COMPARE(m_logger->served(), quint64(1));
    QVERIFY(m_station->reach(*m_logger));
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::refuses()
{
    setFault("refuse");
    QTRY_COMPARE(m_station->state(), QAbstractSocket::UnconnectedState);
    QSignalSpy failed(m_station.get(), &QAbstractSocket::errorOccurred);
    m_station->connectToHost(m_logger->hostAddress(), m_logger->port());
    QTRY_COMPARE(failed.size(), 1);
    QCOMPARE(m_station->error(), QAbstractSocket::ConnectionRefusedError);
    const quint16 port = m_logger->port();
    setFault("none");
    QCOMPARE(m_logger->port(), port);
    QVERIFY(m_station->reach(*m_logger));
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::stalls()
{
    setFault("stall");
    Station late;
    QVERIFY(late.reach(*m_logger));
    late.write(poll);
    m_station->write(poll);
    settle();
    QCOMPARE(m_logger->commands(), quint64(0));
    QCOMPARE(m_station->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(m_station->received + late.received, QByteArray());
    setFault("none");
    QTRY_VERIFY(isReading(m_station->received));
    QTRY_VERIFY(isReading(late.received));
}

void tst_NetworkLogger::vanishes()
{
    setFault("vanish");
    m_station->write(poll);
    settle();
    Station late;
    late.connectToHost(m_logger->hostAddress(), m_logger->port());
    settle();
    QCOMPARE(m_station->state(), QAbstractSocket::ConnectedState);
    QCOMPARE(m_station->received, QByteArray());
    QCOMPARE(m_logger->commands(), quint64(0));
    QCOMPARE(late.state(), QAbstractSocket::ConnectingState);
}

void tst_NetworkLogger::vanishedComesBack()
{
    setFault("vanish");
    m_station->write(poll);
    settle();
    const quint16 port = m_logger->port();
    setFault("none");
    QTRY_COMPARE(m_station->state(), QAbstractSocket::UnconnectedState);
    QCOMPARE(m_logger->port(), port);
    QVERIFY(m_station->reach(*m_logger));
    QVERIFY(isReading(m_station->ask(poll)));
    QTRY_COMPARE(m_logger->served(), quint64(1));
    setFault("vanish");
    setFault("refuse");
    setFault("vanish");
    setFault("none");
    Station late;
    QVERIFY(late.reach(*m_logger));
    QVERIFY(isReading(late.ask(poll)));
}

void tst_NetworkLogger::errToAlarmCommands()
{
    setFault("err");
    QCOMPARE(m_station->ask("ATBMIN1 10.00\r\n"), QByteArray("ERR\r\n"));
    QCOMPARE(m_station->ask("ATBSET\r\n"), QByteArray("ERR\r\n"));
    QVERIFY(!m_logger->alarms().stored());
    QCOMPARE(m_logger->alarms().received(), (QByteArrayList{"ATBMIN1 10.00", "ATBSET"}));
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::errToOneAlarmCommand()
{
    setFault("err:ATBMAX2");
    QCOMPARE(m_station->ask("ATBMIN1 10.00\r\n"), QByteArray("OK\r\n"));
    QCOMPARE(m_station->ask("ATBMAX2 10.00\r\n"), QByteArray("ERR\r\n"));
}

void tst_NetworkLogger::floods()
{
    setFault("flood");
    QTRY_VERIFY(m_station->received.count('\n') > 1000);
    QVERIFY(isReading(m_station->received.left(m_station->received.indexOf('\n') + 1)));
    QCOMPARE(m_logger->served(), quint64(0));
    QVERIFY(isReading(m_healthyStation->ask(poll)));
    setFault("none");
    settle();
    QVERIFY(isReading(m_station->ask(poll)));
}

void tst_NetworkLogger::faultOfTheOtherKindIsRefused()
{
    QString error;
    QVERIFY(!m_fleet->setFault(m_logger->key(), "unplug", &error));
    QCOMPARE(error, QString("a network logger cannot have the fault \"unplug\""));
    QVERIFY(!m_fleet->setFault("3", "silent", &error));
    QCOMPARE(error, QString("there is no logger \"3\""));
    QVERIFY(m_fleet->setFault("1", "silent", &error));
    QVERIFY(m_logger->suffersFrom(FaultKind::Silent));
}

QTEST_GUILESS_MAIN(tst_NetworkLogger)
#include "tst_NetworkLogger.moc"
