#include "DialogParts.h"
#include "Typing.h"
#include "dialogs/ManualConfigDeviceDialog.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

/// The numbers of an IP address and the port, filled in as people do it.
class tst_AddressEditors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data();
    void init();
    void cleanup();

    void octetOrPort_data();
    void octetOrPort();
    void octetsAndPortRefuse_data();
    void octetsAndPortRefuse();
    void enterDoesNotMendAnOctet();
};

namespace {

struct ManualDialog
{
    ManualConfigDeviceDialog dialog;

    ManualDialog()
    {
        part<QLineEdit>(&dialog, "lineEdit_devicename").setText("Oven");
        part<QLineEdit>(&dialog, "lineEdit_macaddr").setText("02:00:AA:00:00:0f");
        const int loopback[]{127, 0, 0, 1};
        for (int i = 0; i < 4; ++i)
            box(i).setValue(loopback[i]);
        dialog.show();
    }

    /// The octets, then the port.
    QSpinBox &box(int number)
    {
        return part<QSpinBox>(&dialog, number < 4 ? qPrintable(QStringLiteral("spinBox_ipaddr%1").arg(number + 1))
                                                  : "spinBox_port");
    }
    void confirm() { QTest::mouseClick(&part<QPushButton>(&dialog, "pushButton_confirm"), Qt::LeftButton); }
    /// Whether the logger is tried out.
    bool isTesting() { return !part<QGroupBox>(&dialog, "groupBox_network").isEnabled(); }
};

} // namespace

void tst_AddressEditors::initTestCase_data()
{
    addLocales();
}

void tst_AddressEditors::init()
{
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
}

void tst_AddressEditors::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void tst_AddressEditors::octetOrPort_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("pasted");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    for (const bool pasted : {false, true}) {
        const QByteArray how = pasted ? "pasted " : "typed ";
        QTest::newRow(how + "octet") << 3 << pasted << "7" << 7;
        QTest::newRow(how + "highest octet") << 0 << pasted << "127" << 127;
        QTest::newRow(how + "octet with zeros") << 1 << pasted << "000" << 0;
        QTest::newRow(how + "octet with blanks") << 2 << pasted << " 0 " << 0;
        QTest::newRow(how + "port") << 4 << pasted << "50123" << 50123;
        QTest::newRow(how + "port with blanks") << 4 << pasted << " 8080 " << 8080;
        QTest::newRow(how + "highest port") << 4 << pasted << "99999" << 99999;
    }
    QTest::newRow("full stops typed in a port") << 4 << false << "80.80." << 8080;
}

void tst_AddressEditors::octetOrPort()
{
    QFETCH(int, number);
    QFETCH(bool, pasted);
    QFETCH(QString, text);
    QFETCH(int, value);
    ManualDialog manual;
    QVERIFY(QTest::qWaitForWindowActive(&manual.dialog));
    enter(&manual.box(number), text, pasted);
    manual.confirm();
    QCOMPARE(manual.box(number).value(), value);
    QVERIFY(manual.isTesting());
    QCOMPARE(messagesOf(&manual.dialog), QStringList());
}

void tst_AddressEditors::octetsAndPortRefuse_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("pasted");
    QTest::addColumn<QString>("text");

    const QStringList either{
        "",    " ",   "-",   "-1",    "1,5",   QStringLiteral("\u0661"), QStringLiteral("\uFF11"), "1e2",
        "0x7", "1 ,", "1 2", "12abc", "1,234", "99999999999999999999"};
    const QStringList octets = either + QStringList{"256", "300", "1000"};
    const QStringList ports = either + QStringList{"100000", QStringLiteral("4\u202F001")};
    int number = 0;
    for (const bool pasted : {false, true}) {
        const QByteArray how = pasted ? "pasted " : "typed ";
        for (const QString &text : octets)
            QTest::newRow(how + "octet " + text.toUtf8()) << number++ % 4 << pasted << text;
        for (const QString &text : ports)
            QTest::newRow(how + "port " + text.toUtf8()) << 4 << pasted << text;
    }
    // Typed, a full stop does nothing.
    QTest::newRow("pasted port 4.001") << 4 << true << "4.001";
    QTest::newRow("pasted port 80.") << 4 << true << "80.";
    QTest::newRow("pasted octet 1.2") << 1 << true << "1.2";
    QTest::newRow("pasted address") << 0 << true << "192.168.1.2";
}

void tst_AddressEditors::octetsAndPortRefuse()
{
    QFETCH(int, number);
    QFETCH(bool, pasted);
    QFETCH(QString, text);
    ManualDialog manual;
    QVERIFY(QTest::qWaitForWindowActive(&manual.dialog));
    enter(&manual.box(number), text, pasted);
    manual.confirm();
    QVERIFY(!manual.isTesting());
    QCOMPARE(messagesOf(&manual.dialog),
             QStringList(number < 4 ? "INFORMATION: Enter the IP Address." : "INFORMATION: Enter the port number."));
    QCOMPARE(manual.box(number).text(), text);
    QCOMPARE(manual.dialog.focusWidget(), &manual.box(number));
}

void tst_AddressEditors::enterDoesNotMendAnOctet()
{
    ManualDialog manual;
    QVERIFY(QTest::qWaitForWindowActive(&manual.dialog));
    type(&manual.box(3), "300");
    QTest::keyClick(&manual.box(3), Qt::Key_Return);
    QVERIFY(!manual.isTesting());
    QCOMPARE(manual.box(3).text(), QString("300"));
}

QTEST_MAIN(tst_AddressEditors)
#include "tst_AddressEditors.moc"
