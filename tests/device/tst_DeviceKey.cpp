#include "device/DeviceKey.h"
#include "device/Discovery.h"

#include <QTest>

class tst_DeviceKey : public QObject
{
    Q_OBJECT

private slots:
    void judgesAKey_data();
    void judgesAKey();
    void everyMacAddressIsAKey();
};

void tst_DeviceKey::judgesAKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("problem");
    const QString fine;
    const QString control("contains a control character");
    const QString mark("contains a byte-order mark");
    QTest::newRow("none") << QString() << fine;
    QTest::newRow("digits") << "12345678" << fine;
    QTest::newRow("MAC address") << "001A2B3C4D5E" << fine;
    QTest::newRow("quotes") << "o'clock \"7\" `x`" << fine;
    QTest::newRow("blanks") << "  7  " << fine;
    QTest::newRow("no more than a blank") << " " << fine;
    QTest::newRow("umlauts") << QStringLiteral("K\u00FChlraum \u00B0C") << fine;
    QTest::newRow("beyond the first plane") << QString::fromUcs4(U"\U0001F321") << fine;
    QTest::newRow("statement") << "'); drop table ostrivane; --" << fine;
    QTest::newRow("longest") << QString(255, 'x') << fine;
    QTest::newRow("too long") << QString(256, 'x') << "is longer than 255 characters";
    QTest::newRow("zero") << QString("7") + QChar(0) << control;
    QTest::newRow("hundreds of zeros") << QString(250, QChar(0)) << control;
    QTest::newRow("line feed") << "7\n8" << control;
    QTest::newRow("tabulator") << "7\t8" << control;
    QTest::newRow("delete") << "7\x7F" << control;
    QTest::newRow("second set of controls") << QString(QChar(0x85)) << control;
    QTest::newRow("byte-order mark in front") << QString(QChar(0xFEFF)) + "7" << mark;
    QTest::newRow("byte-order mark behind") << "7" + QString(QChar(0xFEFF)) << mark;
    QTest::newRow("swapped byte-order mark") << QString(QChar(0xFFFE)) + "7" << mark;
    QTest::newRow("half a character") << "7" + QString(QChar(0xD83C)) << "contains half a character";
}

void tst_DeviceKey::judgesAKey()
{
    QFETCH(QString, key);
    QTEST(deviceKeyProblem(key), "problem");
}

void tst_DeviceKey::everyMacAddressIsAKey()
{
    for (const char byte : {'\0', '\x7F', '\xFF'}) {
        const auto reply = decodeDiscoveryReply(QByteArray(discoveryReplySize, byte));
        QVERIFY(reply);
        QCOMPARE(deviceKeyProblem(reply->macAddress), QString());
    }
}

QTEST_GUILESS_MAIN(tst_DeviceKey)
#include "tst_DeviceKey.moc"
