#include "dialogs/ManualDeviceEntry.h"

#include <QTest>

class tst_ManualDeviceEntry : public QObject
{
    Q_OBJECT

private slots:
    void objections_data();
    void objections();
};

void tst_ManualDeviceEntry::objections_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    const QString hint = QStringLiteral("INFORMATION");
    const QString error = QStringLiteral("ERROR");
    QTest::newRow("nothing typed") << ""
                                   << ""
                                   << "" << 0 << hint << "Enter the Device Name.";
    QTest::newRow("no name") << ""
                             << "001"
                             << "10.0.0.7" << 23 << hint << "Enter the Device Name.";
    QTest::newRow("no MAC") << "Oven"
                            << ""
                            << "" << 0 << hint << "Enter the Mac Address.";
    QTest::newRow("a MAC that is no key")
        << "Oven"
        << "00\t1"
        << "10.0.0.7" << 23 << error << "The Mac Address contains a control character.";
    QTest::newRow("no address") << "Oven"
                                << "001"
                                << "" << 0 << hint << "Enter the IP Address.";
    QTest::newRow("no port") << "Oven"
                             << "001"
                             << "words" << 0 << hint << "Enter the port number.";
    QTest::newRow("words") << "Oven"
                           << "001"
                           << "words" << 23 << error << "IP Address is not valid.";
    QTest::newRow("three octets") << "Oven"
                                  << "001"
                                  << "10.0.7" << 23 << error << "IP Address is not valid.";
    QTest::newRow("four digits") << "Oven"
                                 << "001"
                                 << "10.0.0.1234" << 23 << error << "IP Address is not valid.";
    QTest::newRow("text behind") << "Oven"
                                 << "001"
                                 << "10.0.0.7\n"
                                 << 23 << error << "IP Address is not valid.";
    QTest::newRow("other separators") << "Oven"
                                      << "001"
                                      << "10-0-0-7" << 23 << ""
                                      << "";
    QTest::newRow("fine") << "Oven"
                          << "001"
                          << "10.0.0.7" << 23 << ""
                          << "";
    QTest::newRow("highest") << "Oven"
                             << "0200AA000001"
                             << "255.255.255.255" << 65535 << ""
                             << "";
}

void tst_ManualDeviceEntry::objections()
{
    QFETCH(QString, name);
    QFETCH(QString, key);
    QFETCH(QString, address);
    QFETCH(int, port);
    QFETCH(QString, title);
    QFETCH(QString, text);
    const auto refusal = refusalOf({name, key, address, static_cast<quint16>(port)});
    QCOMPARE(refusal.has_value(), !title.isEmpty());
    if (refusal) {
        QCOMPARE(refusal->title, title);
        QCOMPARE(refusal->text, text);
    }
}

QTEST_APPLESS_MAIN(tst_ManualDeviceEntry)
#include "tst_ManualDeviceEntry.moc"
