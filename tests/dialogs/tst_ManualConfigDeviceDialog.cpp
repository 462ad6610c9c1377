#include "device/ConfiguredDevice.h"
#include "dialogs/IpaddrSpinBox.h"
#include "dialogs/ManualConfigDeviceDialog.h"
#include "dialogs/MessageDialog.h"
#include "support/FullBacklog.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QGroupBox>
#include <QHostAddress>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>

namespace {

// A loaded machine is patient; the dialog's own limit is what is waited for.
constexpr int patienceMs = 20000;

} // namespace

class tst_ManualConfigDeviceDialog : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void formIsAsDesigned();
    void fullStopsWalkThroughTheOctets();
    void otherKeysStay();
    void fullStopInThePortDoesNothing();
    void missingInputIsAskedFor_data();
    void missingInputIsAskedFor();
    void enterConfirms();

    void answeringLoggerIsHandedOn_data();
    void answeringLoggerIsHandedOn();
    void typedDigitsAreTheKey_data();
    void typedDigitsAreTheKey();
    void portIsTakenInSixteenBits();
    void lateAnswerCounts();
    void operatorKnowsWithinThreeSeconds();
    void loggerWithoutAnswerIsRefused_data();
    void loggerWithoutAnswerIsRefused();
    void inputRestsDuringTheTest();
    void refusedLoggerCanBeTriedAgain();

    void closingDuringTheTestFreesTheDevice_data();
    void closingDuringTheTestFreesTheDevice();
    void closedDialogCanTestAgain();
    void slotRejectDeletes();

private:
    template <typename Widget>
    Widget *child(const char *name) const
    {
        return m_dialog->findChild<Widget *>(QLatin1String(name));
    }
    QSpinBox *octet(int number) const
    {
        return m_dialog->findChild<QSpinBox *>(QStringLiteral("spinBox_ipaddr%1").arg(number));
    }
    MessageDialog *message() const { return m_dialog->findChild<MessageDialog *>(); }
    QString messageText() const { return message()->findChild<QTextBrowser *>()->toPlainText(); }
    /// A complete entry for a logger on the loopback address.
    void enter(int port) const;
    void confirm() const { child<QPushButton>("pushButton_confirm")->click(); }
    std::unique_ptr<ConfiguredDevice> takeConfirmed();
    static int destroyedLinks(const LogCapture &log)
    {
        return log.count(QStringLiteral("TelnetDevice::~TelnetDevice : [127.0.0.1]"));
    }

    ManualConfigDeviceDialog *m_dialog = nullptr;
    QPointer<ManualConfigDeviceDialog> m_alive; ///< null once the dialog has deleted itself
    std::unique_ptr<QSignalSpy> m_confirmed;
};

void tst_ManualConfigDeviceDialog::initTestCase()
{
    qRegisterMetaType<ConfiguredDevice *>();
}

void tst_ManualConfigDeviceDialog::init()
{
    m_dialog = new ManualConfigDeviceDialog(nullptr);
    m_alive = m_dialog;
    m_confirmed = std::make_unique<QSignalSpy>(m_dialog, &ManualConfigDeviceDialog::ManualConfigDeviceConfirm);
    m_dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(m_dialog));
}

void tst_ManualConfigDeviceDialog::cleanup()
{
    while (!m_confirmed->isEmpty())
        takeConfirmed();
    m_confirmed.reset();
    delete m_alive.data();
}

void tst_ManualConfigDeviceDialog::enter(int port) const
{
    child<QLineEdit>("lineEdit_devicename")->setText(QStringLiteral("Oven"));
    child<QLineEdit>("lineEdit_macaddr")->setText(QStringLiteral("02:00:AA:00:00:0f"));
    const int loopback[] = {127, 0, 0, 1};
    for (int i = 0; i < 4; ++i)
        octet(i + 1)->setValue(loopback[i]);
    child<QSpinBox>("spinBox_port")->setValue(port);
}

std::unique_ptr<ConfiguredDevice> tst_ManualConfigDeviceDialog::takeConfirmed()
{
    return std::unique_ptr<ConfiguredDevice>(m_confirmed->takeFirst().at(0).value<ConfiguredDevice *>());
}

void tst_ManualConfigDeviceDialog::formIsAsDesigned()
{
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Sorvanto Lite"));
    QVERIFY(m_dialog->isModal());
    QCOMPARE(m_dialog->font().family(), QStringLiteral("Segoe UI"));
    QVERIFY(child<QFrame>("topFrame"));
    QVERIFY(!child<QLabel>("label_top")->pixmap(Qt::ReturnByValue).isNull());
    QCOMPARE(child<QGroupBox>("groupBox_network")->title(), QStringLiteral("NETWORK"));
    QCOMPARE(child<QLineEdit>("lineEdit_devicename")->text(), QString());
    QCOMPARE(child<QLineEdit>("lineEdit_macaddr")->inputMask(), QStringLiteral("HH:HH:HH:HH:HH:HH;_"));
    const int defaults[] = {192, 168, 1, 2};
    for (int i = 0; i < 4; ++i) {
        QVERIFY(qobject_cast<IpaddrSpinBox *>(octet(i + 1)));
        QCOMPARE(octet(i + 1)->value(), defaults[i]);
        QCOMPARE(octet(i + 1)->minimum(), 0);
        QCOMPARE(octet(i + 1)->maximum(), 255);
        QCOMPARE(octet(i + 1)->alignment(), Qt::AlignCenter);
    }
    const auto *port = child<QSpinBox>("spinBox_port");
    QVERIFY(!qobject_cast<const IpaddrSpinBox *>(port));
    QCOMPARE(port->value(), 23);
    QCOMPARE(port->minimum(), 0);
    QCOMPARE(port->maximum(), 99999);
    QCOMPARE(port->alignment(), Qt::AlignCenter);
    QCOMPARE(child<QPushButton>("pushButton_confirm")->text(), QStringLiteral("CONFIRM"));
    QStringList labels;
    for (const auto *label : m_dialog->findChildren<QLabel *>())
        labels << label->text();
    for (const char *text : {"DEVICE NAME", "MAC ADDRESS", "IP", "PORT"})
        QVERIFY(labels.contains(QLatin1String(text)));
}

void tst_ManualConfigDeviceDialog::fullStopsWalkThroughTheOctets()
{
    octet(1)->setFocus();
    octet(1)->selectAll();
    const char *typed[] = {"10", "0", "20", "7"};
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(QApplication::focusWidget(), octet(i + 1));
        for (const char *character = typed[i]; *character; ++character)
            QTest::keyClick(QApplication::focusWidget(), *character);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Period);
    }
    auto *port = child<QSpinBox>("spinBox_port");
    QCOMPARE(QApplication::focusWidget(), port);
    QCOMPARE(port->findChild<QLineEdit *>()->selectedText(), QStringLiteral("23"));
    QCOMPARE(octet(1)->value(), 10);
    QCOMPARE(octet(2)->value(), 0);
    QCOMPARE(octet(3)->value(), 20);
    QCOMPARE(octet(4)->value(), 7);
}

void tst_ManualConfigDeviceDialog::otherKeysStay()
{
    octet(1)->setFocus();
    for (const auto key : {Qt::Key_1, Qt::Key_Comma, Qt::Key_Colon, Qt::Key_Right})
        QTest::keyClick(octet(1), key);
    QCOMPARE(QApplication::focusWidget(), octet(1));
}

void tst_ManualConfigDeviceDialog::fullStopInThePortDoesNothing()
{
    auto *port = child<QSpinBox>("spinBox_port");
    port->setFocus();
    QTest::keyClicks(port, QStringLiteral("."));
    QCOMPARE(QApplication::focusWidget(), port);
    QCOMPARE(port->text(), QStringLiteral("23"));
    QCOMPARE(port->value(), 23);
    QTest::keyClicks(port, QStringLiteral("7."));
    QCOMPARE(port->text(), QStringLiteral("723"));
}

void tst_ManualConfigDeviceDialog::missingInputIsAskedFor_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("mac");
    QTest::addColumn<int>("port");
    QTest::addColumn<QString>("text");

    QTest::newRow("no name") << ""
                             << "02" << 23 << "Enter the Device Name.";
    QTest::newRow("MAC untouched") << "Oven"
                                   << "" << 23 << "Enter the Mac Address.";
    QTest::newRow("port 0") << "Oven"
                            << "001" << 0 << "Enter the port number.";
    QTest::newRow("port 65536") << "Oven"
                                << "001" << 65536 << "Enter the port number.";
}

void tst_ManualConfigDeviceDialog::missingInputIsAskedFor()
{
    QFETCH(QString, name);
    QFETCH(QString, mac);
    QFETCH(int, port);
    QFETCH(QString, text);
    child<QLineEdit>("lineEdit_devicename")->setText(name);
    child<QLineEdit>("lineEdit_macaddr")->setText(mac);
    child<QSpinBox>("spinBox_port")->setValue(port);
    confirm();
    QVERIFY(message());
    QVERIFY(message()->isVisible());
    QCOMPARE(message()->findChild<QGroupBox *>()->title(), QStringLiteral("INFORMATION"));
    QCOMPARE(messageText(), text);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(m_confirmed->count(), 0);
}

void tst_ManualConfigDeviceDialog::enterConfirms()
{
    child<QLineEdit>("lineEdit_devicename")->setFocus();
    QTest::keyClick(child<QLineEdit>("lineEdit_devicename"), Qt::Key_Return);
    QVERIFY(message());
    QCOMPARE(messageText(), QStringLiteral("Enter the Device Name."));
}

void tst_ManualConfigDeviceDialog::answeringLoggerIsHandedOn_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("staysOpen");
    QTest::newRow("link stays") << 1000 << true;
    QTest::newRow("link closes after each reply") << 10000 << false;
}

void tst_ManualConfigDeviceDialog::answeringLoggerIsHandedOn()
{
    QFETCH(int, interval);
    QFETCH(bool, staysOpen);
    const TemporaryInterval temporary(interval);
    ScriptedLogger logger;
    enter(logger.port());
    confirm();
    QCOMPARE(m_confirmed->count(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
    const auto device = takeConfirmed();
    QCOMPARE(device->serialNumber(), QStringLiteral("0200AA00000f"));
    QCOMPARE(device->interfaceKind(), int(NetworkInterface));
    QCOMPARE(device->deviceName(), QStringLiteral("Oven"));
    QCOMPARE(device->ch1Name(), QStringLiteral("CH1"));
    QCOMPARE(device->ch2Name(), QStringLiteral("CH2"));
    QCOMPARE(device->address(), QStringLiteral("127.0.0.1"));
    QCOMPARE(device->port(), logger.port());
    QCOMPARE(device->parent(), nullptr);
    QCOMPARE(device->isOpen(), staysOpen);
    QVERIFY(!m_alive || !m_dialog->isVisible());
    QTRY_VERIFY(!m_alive);
}

void tst_ManualConfigDeviceDialog::typedDigitsAreTheKey_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("key");
    QTest::newRow("three digits") << "001"
                                  << "001";
    QTest::newRow("case as typed") << "0200aABb00Cd"
                                   << "0200aABb00Cd";
}

void tst_ManualConfigDeviceDialog::typedDigitsAreTheKey()
{
    QFETCH(QString, typed);
    QFETCH(QString, key);
    ScriptedLogger logger;
    enter(logger.port());
    auto *mac = child<QLineEdit>("lineEdit_macaddr");
    mac->clear();
    mac->setFocus();
    mac->setCursorPosition(0);
    QTest::keyClicks(mac, typed);
    QTest::keyClick(mac, Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
    QCOMPARE(takeConfirmed()->serialNumber(), key);
}

void tst_ManualConfigDeviceDialog::portIsTakenInSixteenBits()
{
    // A port low enough that 65536 more of it can still be typed.
    QTcpServer server;
    constexpr quint16 first = 20000;
    for (quint16 port = first; port < first + 500 && !server.isListening(); ++port)
        server.listen(QHostAddress::LocalHost, port);
    QVERIFY(server.isListening());
    connect(&server, &QTcpServer::newConnection, this,
            [&server] { server.nextPendingConnection()->write("ATDC 21.50,45.10\r\n"); });
    enter(server.serverPort() + 65536);
    confirm();
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
    QCOMPARE(takeConfirmed()->port(), server.serverPort());
}

void tst_ManualConfigDeviceDialog::lateAnswerCounts()
{
    ScriptedLogger logger;
    logger.setSilent();
    enter(logger.port());
    QSignalSpy polled(&logger, &ScriptedLogger::commandReceived);
    confirm();
    QVERIFY(polled.wait());
    QCOMPARE(m_confirmed->count(), 0);
    logger.send(QByteArrayLiteral("ATDC 21.50,45.10\r\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
}

void tst_ManualConfigDeviceDialog::operatorKnowsWithinThreeSeconds()
{
    ScriptedLogger logger;
    logger.setSilent();
    enter(logger.port());
    const auto *limit = child<QTimer>("answerLimit");
    QVERIFY(!limit->isActive());
    confirm();
    QVERIFY(limit->isActive());
    QVERIFY(limit->isSingleShot());
    QCOMPARE(limit->timerType(), Qt::PreciseTimer);
    // As long as may be: a logger far away gets its chance.
    QCOMPARE(limit->interval(), 2800);
    m_dialog->close();
    QVERIFY(!limit->isActive());
}

void tst_ManualConfigDeviceDialog::loggerWithoutAnswerIsRefused_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::newRow("nobody listens") << QByteArrayLiteral("closed");
    QTest::newRow("connects, never answers") << QByteArrayLiteral("silent");
    QTest::newRow("connects, is no logger") << QByteArrayLiteral("stranger");
    QTest::newRow("neither accepts nor refuses") << QByteArrayLiteral("full");
}

void tst_ManualConfigDeviceDialog::loggerWithoutAnswerIsRefused()
{
    QFETCH(QByteArray, kind);
    ScriptedLogger logger;
    const FullBacklog full;
    if (kind == "closed")
        logger.stopListening();
    else if (kind == "stranger")
        logger.setReply(QByteArrayLiteral("220 welcome\r\n"));
    else
        logger.setSilent();
    const int port = kind == "full" ? full.port() : logger.port();
    enter(port);
    const LogCapture log;
    int turns = 0;
    QTimer heartbeat;
    connect(&heartbeat, &QTimer::timeout, this, [&turns] { ++turns; });
    heartbeat.start(10);

    confirm();
    QVERIFY(!message());
    QTRY_VERIFY_WITH_TIMEOUT(message(), patienceMs);
    QVERIFY(turns > 10);
    QCOMPARE(message()->findChild<QGroupBox *>()->title(), QStringLiteral("ERROR"));
    QCOMPARE(messageText(), QStringLiteral("Device Open Error. Please retry."));
    QCOMPARE(log.count(QStringLiteral("ManualConfigDeviceDialog::confirm [0200AA00000f] is not open")), 1);
    QCOMPARE(destroyedLinks(log), 1);
    QCOMPARE(m_confirmed->count(), 0);
    QTRY_COMPARE(logger.openConnections(), 0);

    QVERIFY(m_dialog->isVisible());
    QCOMPARE(child<QLineEdit>("lineEdit_devicename")->text(), QStringLiteral("Oven"));
    QCOMPARE(child<QLineEdit>("lineEdit_macaddr")->text(), QStringLiteral("02:00:AA:00:00:0f"));
    QCOMPARE(octet(1)->value(), 127);
    QCOMPARE(child<QSpinBox>("spinBox_port")->value(), port);
    QVERIFY(child<QGroupBox>("groupBox_network")->isEnabled());
    QVERIFY(child<QPushButton>("pushButton_confirm")->isEnabled());
}

void tst_ManualConfigDeviceDialog::inputRestsDuringTheTest()
{
    ScriptedLogger logger;
    logger.setSilent();
    enter(logger.port());
    QSignalSpy polled(&logger, &ScriptedLogger::commandReceived);
    confirm();
    QVERIFY(!child<QGroupBox>("groupBox_network")->isEnabled());
    QVERIFY(!child<QPushButton>("pushButton_confirm")->isEnabled());
    m_dialog->confirm();
    QVERIFY(polled.wait());
    QCOMPARE(logger.accepted(), 1);
}

void tst_ManualConfigDeviceDialog::refusedLoggerCanBeTriedAgain()
{
    ScriptedLogger logger;
    logger.stopListening();
    enter(logger.port());
    confirm();
    QTRY_VERIFY_WITH_TIMEOUT(message(), patienceMs);
    message()->close();
    QVERIFY(logger.listenAgain());
    confirm();
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
}

void tst_ManualConfigDeviceDialog::closingDuringTheTestFreesTheDevice_data()
{
    QTest::addColumn<QByteArray>("way");
    QTest::newRow("window closed") << QByteArrayLiteral("close");
    QTest::newRow("Escape") << QByteArrayLiteral("escape");
    QTest::newRow("destroyed") << QByteArrayLiteral("delete");
}

void tst_ManualConfigDeviceDialog::closingDuringTheTestFreesTheDevice()
{
    QFETCH(QByteArray, way);
    ScriptedLogger logger;
    logger.setSilent();
    enter(logger.port());
    QSignalSpy polled(&logger, &ScriptedLogger::commandReceived);
    const LogCapture log;
    confirm();
    QVERIFY(polled.wait());
    if (way == "close")
        m_dialog->close();
    else if (way == "escape")
        QTest::keyClick(m_dialog, Qt::Key_Escape);
    else
        delete m_dialog;
    QCOMPARE(destroyedLinks(log), 1);
    QTRY_COMPARE(logger.openConnections(), 0);
    QCOMPARE(m_confirmed->count(), 0);
    if (m_alive) {
        QVERIFY(!m_dialog->isVisible());
        QVERIFY(!message());
        for (const QTimer *timer : m_dialog->findChildren<QTimer *>(QString(), Qt::FindDirectChildrenOnly))
            QVERIFY(!timer->isActive());
    }
}

void tst_ManualConfigDeviceDialog::closedDialogCanTestAgain()
{
    ScriptedLogger logger;
    logger.setSilent();
    enter(logger.port());
    confirm();
    m_dialog->close();
    m_dialog->show();
    logger.setReply(QByteArrayLiteral("ATDC 21.50,45.10\r\n"));
    confirm();
    QTRY_COMPARE_WITH_TIMEOUT(m_confirmed->count(), 1, patienceMs);
}

void tst_ManualConfigDeviceDialog::slotRejectDeletes()
{
    m_dialog->slotReject();
    QVERIFY(!m_dialog->isVisible());
    QTRY_VERIFY(!m_alive);
}

QTEST_MAIN(tst_ManualConfigDeviceDialog)
#include "tst_ManualConfigDeviceDialog.moc"
