#include "device/Discovery.h"

#include <QNetworkInterface>
#include <QTest>

class tst_Discovery : public QObject
{
    Q_OBJECT

private slots:
    void requestIsFiftyOnes();
    void knowsRepliesByTheirMarker_data();
    void knowsRepliesByTheirMarker();
    void decodesAReply();
    void decodesEveryByteOfTheAddresses();
    void refusesShortReplies();
    void broadcastAddress_data();
    void broadcastAddress();
    void localAddressBelongsToARunningInterface();
};

namespace {

QByteArray reply()
{
    QByteArray datagram("OSTRIVANE\0\0\0", 12);
    datagram += QByteArray::fromHex("C0A80717"); // 192.168.7.23
    datagram += QByteArray::fromHex("00a1b2c3d4ef");
    datagram += QByteArray::fromHex("7701");     // not read, usedhcp
    datagram += QByteArray::fromHex("17000100"); // 0x00010017
    return datagram;
}

} // namespace

void tst_Discovery::requestIsFiftyOnes()
{
    QCOMPARE(discoveryRequest(), QByteArray(50, char(1)));
    QCOMPARE(int(discoveryPort), 50000);
}

void tst_Discovery::knowsRepliesByTheirMarker_data()
{
    QTest::addColumn<QByteArray>("datagram");
    QTest::addColumn<bool>("isReply");
    QTest::newRow("reply") << reply() << true;
    QTest::newRow("marker alone") << QByteArray("OSTRIVANE") << true;
    QTest::newRow("marker inside a text") << QByteArray("a OSTRIVANE b") << true;
    QTest::newRow("marker after a zero byte") << QByteArray("\0OSTRIVANE", 10) << false;
    QTest::newRow("lower case") << QByteArray("ostrivane") << false;
    QTest::newRow("cut short") << QByteArray("OSTRIVAN") << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("our own request") << discoveryRequest() << false;
}

void tst_Discovery::knowsRepliesByTheirMarker()
{
    QFETCH(QByteArray, datagram);
    QTEST(isDiscoveryReply(datagram), "isReply");
}

void tst_Discovery::decodesAReply()
{
    const std::optional<DiscoveryReply> decoded = decodeDiscoveryReply(reply());
    QVERIFY(decoded.has_value());
    QCOMPARE(decoded->ipAddress, QString("192.168.7.23"));
    QCOMPARE(decoded->macAddress, QString("00A1B2C3D4EF"));
    QCOMPARE(int(decoded->usesDhcp), 1);
    QCOMPARE(decoded->announcedPort, 0x00010017U);
    QCOMPARE(int(static_cast<quint16>(decoded->announcedPort)), 23);
}

void tst_Discovery::decodesEveryByteOfTheAddresses()
{
    QByteArray datagram(28, '\xFF');
    const std::optional<DiscoveryReply> ones = decodeDiscoveryReply(datagram);
    QCOMPARE(ones->ipAddress, QString("255.255.255.255"));
    QCOMPARE(ones->macAddress, QString("FFFFFFFFFFFF"));
    QCOMPARE(int(ones->usesDhcp), 255);
    QCOMPARE(ones->announcedPort, 0xFFFFFFFFU);
    datagram.fill('\0');
    const std::optional<DiscoveryReply> zeros = decodeDiscoveryReply(datagram);
    QCOMPARE(zeros->ipAddress, QString("0.0.0.0"));
    QCOMPARE(zeros->macAddress, QString("000000000000"));
}

void tst_Discovery::refusesShortReplies()
{
    const QByteArray whole = reply();
    QCOMPARE(whole.size(), discoveryReplySize);
    for (int size = 0; size < discoveryReplySize; ++size)
        QVERIFY(!decodeDiscoveryReply(whole.left(size)));
    QVERIFY(decodeDiscoveryReply(whole));
    QVERIFY(decodeDiscoveryReply(whole + "more"));
}

void tst_Discovery::broadcastAddress_data()
{
    QTest::addColumn<QString>("local");
    QTest::addColumn<QString>("broadcast");
    QTest::newRow("private") << "192.168.7.23"
                             << "192.168.7.255";
    QTest::newRow("whatever the mask") << "10.1.2.3"
                                       << "10.1.2.255";
    QTest::newRow("high bytes") << "254.255.128.1"
                                << "254.255.128.255";
}

void tst_Discovery::broadcastAddress()
{
    QFETCH(QString, local);
    const QHostAddress broadcast = broadcastAddressOf(QHostAddress(local));
    QTEST(broadcast.toString(), "broadcast");
}

void tst_Discovery::localAddressBelongsToARunningInterface()
{
    QHostAddress found;
    const bool ok = findLocalIpv4Address(found);
    QList<QHostAddress> candidates;
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface &interface : interfaces) {
        const auto flags = interface.flags();
        const bool serves = (flags & QNetworkInterface::IsUp) && (flags & QNetworkInterface::IsRunning) &&
                            !(flags & QNetworkInterface::IsLoopBack) && !(flags & QNetworkInterface::IsPointToPoint);
        const QList<QNetworkAddressEntry> entries = interface.addressEntries();
        for (const QNetworkAddressEntry &entry : entries) {
            if (serves && entry.ip().protocol() == QAbstractSocket::IPv4Protocol)
                candidates << entry.ip();
        }
    }
    QCOMPARE(ok, !candidates.isEmpty());
    if (ok)
        QCOMPARE(found, candidates.first());
    else
        QVERIFY(found.isNull());
}

QTEST_GUILESS_MAIN(tst_Discovery)
#include "tst_Discovery.moc"
