#include "OperatorDesk.h"
#include "OperatorSteps.h"
#include "RecordingReader.h"

#include <QTest>

namespace {

const QString mac = QStringLiteral("024B1C000003");
const QString noDevices = QStringLiteral("You must add at least one device to the dashboard.\nPlease retry.");

QString row(const QString &deviceName, int number)
{
    return QStringLiteral("%1\t[%2:23]").arg(deviceName, LoggerProcess::address(number));
}

const QStringList inTheEnd{QStringLiteral("Herb garden"), LoggerProcess::key(4), LoggerProcess::key(5),
                           LoggerProcess::key(2)};

} // namespace

/// Loggers added by hand, taken out and put elsewhere.
class tst_OperatorDeviceSet : public OperatorTest
{
    Q_OBJECT

private slots:
    void initTestCase() { m_desk = std::make_unique<OperatorDesk>(6); }
    void cleanupTestCase() { m_desk.reset(); }

    void theDeviceSet();

private:
    void beginWithTheFound();
    void addByHand();
    void open();
    void edit();
    void openAgain();
    void closeFromTheManager();
    void enterByHand(const QString &address);

    std::unique_ptr<OperatorDesk> m_desk;
};

void tst_OperatorDeviceSet::theDeviceSet()
{
    const int code = OperatorDesk::runStation([this] {
        STEP(beginWithTheFound);
        STEP(addByHand);
        STEP(open);
        STEP(edit);
        STEP(openAgain);
        STEP(closeFromTheManager);
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

/// The third logger is in the network, but the search does not reach it.
void tst_OperatorDeviceSet::beginWithTheFound()
{
    QCOMPARE(m_desk->loggers().control("fault 3 vanish"), QByteArray("ok"));
    QVERIFY(createProjectFile("Kitchen"));
    SEES_EQUAL(Operator::rows("availlable_list").size(), 5);
    QCOMPARE(m_desk->loggers().control("fault 3 none"), QByteArray("ok"));
    QVERIFY(Operator::click("btn_confirm"));
    SEES_EQUAL(Operator::message(), noDevices);
    Operator::photograph("message");
    QVERIFY(Operator::closeMessage());
    QVERIFY(placeOnDashboard(0, {LoggerProcess::key(1)}));
    QVERIFY(Operator::type("lineEdit_dashboard_1", "Cold store"));
    QVERIFY(placeOnDashboard(1, {LoggerProcess::key(4), LoggerProcess::key(5)}));
    QVERIFY(chooseInterval("1 min"));
    QVERIFY(Operator::type("lineEdit_dashboard_2", "Greenhouse"));
    Operator::photograph("manager-new", "SorvantoMain");
    QVERIFY(Operator::clickTab("tabWidget", 0));
}

void tst_OperatorDeviceSet::enterByHand(const QString &address)
{
    // A full stop leads to the next octet.
    QVERIFY(Operator::type("spinBox_ipaddr1", address));
    QVERIFY(Operator::find("ManualConfigDeviceDialog")->focusWidget()->objectName() == "spinBox_ipaddr4");
    QCOMPARE(Operator::text("spinBox_port"), QStringLiteral("23"));
}

void tst_OperatorDeviceSet::addByHand()
{
    QVERIFY(Operator::click("btn_manual"));
    SEES_EQUAL(Operator::text("spinBox_ipaddr1"), QStringLiteral("192"));
    Operator::photograph("manual-device-empty");
    QVERIFY(Operator::type("lineEdit_devicename", "Herb garden"));
    QVERIFY(Operator::type("lineEdit_macaddr", mac));
    QCOMPARE(Operator::text("lineEdit_macaddr"), QStringLiteral("02:4B:1C:00:00:03"));
    enterByHand("192.168.1.57");
    Operator::photograph("manual-device", "ManualConfigDeviceDialog");
    QVERIFY(Operator::click("pushButton_confirm"));
    // Nobody is there; the station says so and keeps what was typed.
    SEES_EQUAL(Operator::message(), QString("Device Open Error. Please retry."));
    Operator::photograph("message-open-error");
    QVERIFY(Operator::closeMessage());
    QCOMPARE(Operator::text("lineEdit_devicename"), QStringLiteral("Herb garden"));
    enterByHand(LoggerProcess::address(3));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES(!Operator::sees("ManualConfigDeviceDialog"));
    QCOMPARE(Operator::rows("configured_list_1").last(), row("Herb garden", 3));
    Operator::photograph("manager-by-hand");
}

void tst_OperatorDeviceSet::open()
{
    QVERIFY(chooseInterval("1 sec"));
    QVERIFY(Operator::click("btn_confirm"));
    SEES(Operator::sees("ProjectCenter"));
    QCOMPARE(Operator::rows("list_project"),
             QStringList({LoggerProcess::key(1), "Herb garden", LoggerProcess::key(4), LoggerProcess::key(5)}));
    SEES(!Operator::text("widget_09/label_number").isEmpty());
    // The station talks to a logger it was told of as to any other.
    const int before = m_desk->loggers().served().value(mac);
    SEES(m_desk->loggers().served().value(mac) > before + 1);
}

void tst_OperatorDeviceSet::edit()
{
    QVERIFY(Operator::choose("command_project", {"Add/Delete"}));
    SEES(Operator::sees("ProjectManager"));
    QVERIFY(!Operator::isEnabled("btn_timeInterval"));
    QCOMPARE(Operator::text("ProjectManager/label_interval"), QStringLiteral("1 sec"));
    QCOMPARE(Operator::text("lineEdit_dashboard_1"), QStringLiteral("Cold store"));
    QCOMPARE(Operator::rows("configured_list_1"), QStringList({row(LoggerProcess::key(1), 1), row("Herb garden", 3)}));
    SEES_EQUAL(Operator::rows("availlable_list"),
               QStringList({row(LoggerProcess::key(2), 2), row(LoggerProcess::key(6), 6)}));
    QVERIFY(Operator::clickRow("configured_list_1", LoggerProcess::key(1)));
    QVERIFY(Operator::click("btn_remove"));
    SEES_EQUAL(Operator::rows("configured_list_1"), QStringList{row("Herb garden", 3)});
    QCOMPARE(Operator::rows("availlable_list").size(), 3);
    QVERIFY(placeOnDashboard(2, {LoggerProcess::key(2)}));
    QVERIFY(Operator::type("lineEdit_dashboard_3", "Cellar"));
    Operator::photograph("manager-editing");
    QVERIFY(Operator::click("btn_confirm"));
    SEES(Operator::sees("ProjectCenter"));
}

void tst_OperatorDeviceSet::openAgain()
{
    QCOMPARE(Operator::rows("list_project"), inTheEnd);
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    QVERIFY(Operator::clickTab("DashboardTab/tabWidget", 2));
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    QCOMPARE(Operator::text("widget_01/label_device"), LoggerProcess::key(2));
    // Who has left the project is left alone.
    SEES_EQUAL(m_desk->loggers().control("connections 1"), QByteArray("0"));
}

void tst_OperatorDeviceSet::closeFromTheManager()
{
    QVERIFY(Operator::choose("command_project", {"Add/Delete"}));
    SEES(Operator::sees("ProjectManager"));
    QVERIFY(Operator::choose("command_project", {"Close"}));
    SEES(Operator::sees("ProjectMain"));
    QVERIFY(openRecent("Kitchen"));
    QCOMPARE(Operator::rows("list_project"), inTheEnd);
}

OPERATOR_TEST_MAIN(tst_OperatorDeviceSet)
#include "tst_OperatorDeviceSet.moc"
