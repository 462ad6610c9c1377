#include "device/AbstractDevice.h"
#include "device/LinkKind.h"
#include "device/TelnetDevice.h"

#include <QTest>

/// The table speaks of each kind as project files, links and polls do.
class tst_LinkKind : public QObject
{
    Q_OBJECT

private slots:
    void words_data();
    void words();
    void linksAreOfTheirKind();
    void networkWaysAreThoseOfNetworkLinks();
    void whatIsNoKindIsNotPolled();
};

void tst_LinkKind::words_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("number");
    QTest::newRow("USB") << "SERIAL" << int(UsbInterface);
    QTest::newRow("network") << "TELNET" << int(NetworkInterface);
    QTest::newRow("none") << "" << int(NetworkInterface);
    QTest::newRow("another case") << "serial" << int(NetworkInterface);
    QTest::newRow("unknown") << "CARRIER PIGEON" << int(NetworkInterface);
}

void tst_LinkKind::words()
{
    QFETCH(QString, word);
    QTEST(int(linkKindOfWord(word).number), "number");
    const LinkKind &kind = linkKindOfWord(word);
    QCOMPARE(linkKindOfWord(kind.word).number, kind.number);
}

void tst_LinkKind::linksAreOfTheirKind()
{
    for (const InterfaceKind number : {UsbInterface, NetworkInterface})
        QCOMPARE(linkKind(number).makeLink(nullptr)->deviceType(), int(number));
    QCOMPARE(linkKind(NoInterface).makeLink(nullptr)->deviceType(), int(NetworkInterface));
}

void tst_LinkKind::networkWaysAreThoseOfNetworkLinks()
{
    for (const InterfaceKind number : {NoInterface, UsbInterface, NetworkInterface}) {
        const LinkKind &kind = linkKind(number);
        const std::unique_ptr<AbstractDevice> link = kind.makeLink(nullptr);
        const bool isNetworkLogger = kind.isPolled && dynamic_cast<TelnetDevice *>(link.get());
        QCOMPARE(kind.hasTcpPort, isNetworkLogger);
        QCOMPARE(kind.takesAlarmSettings, isNetworkLogger);
    }
}

void tst_LinkKind::whatIsNoKindIsNotPolled()
{
    for (const int number : {-1, 0, 99}) {
        QCOMPARE(linkKind(number).number, NoInterface);
        QCOMPARE(linkKind(number).word, QString("TELNET"));
        QVERIFY(!linkKind(number).isPolled);
        QVERIFY(!linkKind(number).isPluggedIn);
    }
}

QTEST_GUILESS_MAIN(tst_LinkKind)
#include "tst_LinkKind.moc"
