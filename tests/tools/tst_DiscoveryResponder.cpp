#include "Station.h"

#include "loggersim/Fleet.h"

#include "device/Discovery.h"

#include <QNetworkDatagram>
#include <QUdpSocket>

using namespace loggersim;

/// Asks with plain datagrams, as a station would.
class tst_DiscoveryResponder : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void replyByByte();
    void everyNetworkLoggerAnswers();
    void stationUnderstandsTheReply();
    void anyQuestionIsAnswered_data();
    void anyQuestionIsAnswered();
    void answersAreNotAnswered();
    void vanishedLoggerKeepsSilent();
    void laterLoggerAnswersToo();
    void loggerOnEveryAddressTellsTheAskersNetwork();

private:
    QByteArrayList ask(const QByteArray &question, int answers);

    std::unique_ptr<Fleet> m_fleet;
    QUdpSocket m_station;
    QString m_error;
};

void tst_DiscoveryResponder::init()
{
    m_fleet = std::make_unique<Fleet>();
    QVERIFY(m_fleet->addNetworkLogger(QHostAddress("127.0.1.1"), 0, &m_error));
    QVERIFY(m_fleet->addNetworkLogger(QHostAddress("127.0.1.2"), 0, &m_error));
    QVERIFY(m_fleet->startDiscovery(QHostAddress::LocalHost, 0, &m_error));
    QVERIFY(m_fleet->discoveryPort() != 0);
    QVERIFY(m_station.bind(QHostAddress(QHostAddress::LocalHost), 0));
}

void tst_DiscoveryResponder::cleanup()
{
    m_station.close();
    m_fleet.reset();
}

QByteArrayList tst_DiscoveryResponder::ask(const QByteArray &question, int answers)
{
    m_station.writeDatagram(question, QHostAddress::LocalHost, m_fleet->discoveryPort());
    QByteArrayList received;
    const bool complete = QTest::qWaitFor([&] {
        while (m_station.hasPendingDatagrams())
            received.append(m_station.receiveDatagram().data());
        return received.size() >= answers;
    });
    return complete ? received : QByteArrayList();
}

void tst_DiscoveryResponder::replyByByte()
{
    const QByteArrayList replies = ask(QByteArray(50, '\x01'), 2);
    QCOMPARE(replies.size(), 2);
    const SimLogger *logger = m_fleet->loggers().first();
    QByteArray expected("OSTRIVANE\0\0\0", 12);
    expected += QByteArray("\x7f\x00\x01\x01", 4);
    expected += QByteArray("\x02\x00\x01\x00\x00\x01", 6);
    expected += QByteArray("\x00\x01", 2);
    expected += static_cast<char>(logger->port() & 0xff);
    expected += static_cast<char>(logger->port() >> 8);
    expected += QByteArray("\x00\x00", 2);
    QCOMPARE(replies.first(), expected);
    QCOMPARE(replies.first().size(), 28);
    QCOMPARE(logger->key(), QString("020001000001"));
}

void tst_DiscoveryResponder::everyNetworkLoggerAnswers()
{
    QVERIFY2(m_fleet->addUsbLogger(&m_error), qPrintable(m_error));
    const QByteArrayList replies = ask(QByteArray(50, '\x01'), 2);
    QCOMPARE(replies.size(), 2);
    QVERIFY(replies.at(0) != replies.at(1));
}

void tst_DiscoveryResponder::stationUnderstandsTheReply()
{
    const QByteArrayList replies = ask(discoveryRequest(), 2);
    QCOMPARE(replies.size(), 2);
    for (int i = 0; i < 2; ++i) {
        const SimLogger *logger = m_fleet->loggers().at(i);
        QVERIFY(isDiscoveryReply(replies.at(i)));
        const auto reply = decodeDiscoveryReply(replies.at(i));
        QVERIFY(reply);
        QCOMPARE(reply->ipAddress, logger->address());
        QCOMPARE(reply->macAddress, logger->key());
        QCOMPARE(reply->announcedPort, quint32(logger->port()));
    }
}

void tst_DiscoveryResponder::anyQuestionIsAnswered_data()
{
    QTest::addColumn<QByteArray>("question");
    QTest::newRow("usual") << QByteArray(50, '\x01');
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("hello");
}

void tst_DiscoveryResponder::anyQuestionIsAnswered()
{
    QFETCH(QByteArray, question);
    QCOMPARE(ask(question, 2).size(), 2);
}

void tst_DiscoveryResponder::answersAreNotAnswered()
{
    const QByteArrayList replies = ask(QByteArray(50, '\x01'), 2);
    QCOMPARE(replies.size(), 2);
    m_station.writeDatagram(replies.first(), QHostAddress::LocalHost, m_fleet->discoveryPort());
    QCOMPARE(ask("next", 2).size(), 2);
}

void tst_DiscoveryResponder::vanishedLoggerKeepsSilent()
{
    QVERIFY(m_fleet->setFault("1", "vanish", &m_error));
    const QByteArrayList replies = ask("anybody?", 1);
    QCOMPARE(replies.size(), 1);
    QCOMPARE(decodeDiscoveryReply(replies.first())->macAddress, m_fleet->loggers().at(1)->key());
}

void tst_DiscoveryResponder::laterLoggerAnswersToo()
{
    QVERIFY(m_fleet->addNetworkLogger(QHostAddress("127.0.1.3"), 0, &m_error));
    QCOMPARE(ask("anybody?", 3).size(), 3);
}

void tst_DiscoveryResponder::loggerOnEveryAddressTellsTheAskersNetwork()
{
    NetworkLogger *logger = m_fleet->addNetworkLogger(QHostAddress::AnyIPv4, 0, &m_error);
    QVERIFY2(logger, qPrintable(m_error));
    const QByteArrayList replies = ask("anybody?", 3);
    QCOMPARE(replies.size(), 3);
    QCOMPARE(decodeDiscoveryReply(replies.last())->ipAddress, QString("127.0.0.1"));
    Station station;
    station.connectToHost(QHostAddress(decodeDiscoveryReply(replies.last())->ipAddress), logger->port());
    QTRY_COMPARE(station.state(), QAbstractSocket::ConnectedState);
    QVERIFY(station.ask("ATDC\r\n").startsWith("ATDC "));
}

QTEST_GUILESS_MAIN(tst_DiscoveryResponder)
#include "tst_DiscoveryResponder.moc"
