#include "OperatorDesk.h"
#include "OperatorSteps.h"
#include "loggersim/SerialLogger.h"
#include "loggersim/UsbTree.h"

#include <QTest>
#include <unistd.h>

namespace {

const QString network = LoggerProcess::key(1);
const QString usb = QStringLiteral("19228001");

QStringList limits()
{
    return {Operator::text("doubleSpinBox_min_ch1"), Operator::text("doubleSpinBox_max_ch1"),
            Operator::text("doubleSpinBox_min_ch2"), Operator::text("doubleSpinBox_max_ch2")};
}

/// With a full stop, whatever the locale: so the loggers are told them, too.
QStringList limitTexts(std::initializer_list<double> values)
{
    QStringList texts;
    for (const double value : values)
        texts << QString::number(value, 'f', 2);
    return texts;
}

/// An opened serial port is locked by its name for the whole machine, so each program takes names of its own.
int plug()
{
    return 100 * ::getpid();
}

} // namespace

/// Names, units and limits of loggers: what a network logger is told, accepts, refuses and does not answer, and what is
/// still there at the next start.
class tst_OperatorOptions : public OperatorTest
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void theFirstRun();
    void theValuesComeBack();

private:
    void openProject();
    void lookAtTheAddress();
    void typeLimitsAsPeopleDo();
    void setLimits();
    void beRefused();
    void getNoAnswer();
    void setUsbOptions();
    QByteArrayList commands() { return m_desk->loggers().control("commands 1").split('\n'); }

    std::unique_ptr<OperatorDesk> m_desk;
    std::unique_ptr<loggersim::UsbTree> m_tree;
    std::unique_ptr<loggersim::SerialLogger> m_usbLogger;
    QByteArrayList m_commands; // before the step
};

void tst_OperatorOptions::initTestCase()
{
    m_desk = std::make_unique<OperatorDesk>(1);
    m_tree = std::make_unique<loggersim::UsbTree>();
    const loggersim::Climate climate{QStringLiteral("Hall"), 21, 1, 45, 3};
    m_usbLogger = std::make_unique<loggersim::SerialLogger>(usb, climate, 1, m_tree.get(), plug());
    QVERIFY(m_usbLogger->plugIn());
}

void tst_OperatorOptions::cleanupTestCase()
{
    m_usbLogger.reset();
    m_tree.reset();
    m_desk.reset();
}

void tst_OperatorOptions::theFirstRun()
{
    const int code = OperatorDesk::runStation([this] {
        STEP(openProject);
        STEP(lookAtTheAddress);
        STEP(typeLimitsAsPeopleDo);
        STEP(setLimits);
        STEP(beRefused);
        STEP(getNoAnswer);
        STEP(setUsbOptions);
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

void tst_OperatorOptions::openProject()
{
    QVERIFY(createProject("Kitchen", {network, usb}));
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    SEES(!Operator::text("widget_09/label_number").isEmpty());
}

void tst_OperatorOptions::lookAtTheAddress()
{
    QVERIFY(openChart(network));
    QVERIFY(Operator::click("btn_network"));
    SEES_EQUAL(Operator::text("NetworkSettingDialog/label_ipaddr"), LoggerProcess::address(1));
    QCOMPARE(Operator::text("NetworkSettingDialog/label_port"), QStringLiteral("23"));
    Operator::photograph("network-information");
    QVERIFY(Operator::click("NetworkSettingDialog/pushButton_close"));
    SEES(!Operator::sees("NetworkSettingDialog"));
}

void tst_OperatorOptions::typeLimitsAsPeopleDo()
{
    QVERIFY(openOptions(network));
    QVERIFY(Operator::type("doubleSpinBox_max_ch1", "1.234,56"));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES_EQUAL(Operator::message(),
               QString("The alarm maximum of channel 1 is not valid.\nEnter a number from -10000000 to 10000000 "
                       "with at most two decimals, such as 21.75."));
    Operator::photograph("message-no-number");
    QVERIFY(Operator::closeMessage());
    QCOMPARE(m_desk->loggers().control("commands 1"), QByteArray());
    QVERIFY(Operator::type("doubleSpinBox_max_ch1", "21,75"));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES(!Operator::sees("SensingOptionTelnetDialog"));
    QCOMPARE(commands().value(1), QByteArray("ATBMAX1 21.75"));
    QCOMPARE(m_desk->loggers().control("stored 1"), QByteArray("0.00 21.75 0.00 0.00 OFF"));
}

void tst_OperatorOptions::setLimits()
{
    m_commands = commands();
    QVERIFY(openOptions(network));
    QCOMPARE(Operator::text("pushButton_confirm"), QStringLiteral("CONFIRM"));
    QCOMPARE(Operator::text("label_macaddr"), network);
    QVERIFY(Operator::type("lineEdit_devicename", "Cold room"));
    QVERIFY(Operator::type("lineEdit_ch1name", "Temperature"));
    QVERIFY(Operator::pick("comboBox_unit_ch1", QString::fromUtf8("Temperature(°C)")));
    QVERIFY(Operator::typeNumber("doubleSpinBox_min_ch1", -2.5));
    QVERIFY(Operator::typeNumber("doubleSpinBox_max_ch1", 8));
    QVERIFY(Operator::type("lineEdit_ch2name", "Humidity"));
    QVERIFY(Operator::pick("comboBox_unit_ch2", "Humidity(%)"));
    QVERIFY(Operator::typeNumber("doubleSpinBox_min_ch2", 30));
    QVERIFY(Operator::typeNumber("doubleSpinBox_max_ch2", 90));
    QVERIFY(Operator::pick("comboBox_buzzeralarm", "OR"));
    Operator::photograph("options-network-screen");
    Operator::photograph("options-network", "SensingOptionTelnetDialog");
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES(!Operator::sees("SensingOptionTelnetDialog"));
    QCOMPARE(commands().mid(m_commands.size()),
             QByteArrayList({"ATBMIN1 -2.50", "ATBMAX1 8.00", "ATBMIN2 30.00", "ATBMAX2 90.00", "ATBAL OR", "ATBSET"}));
    QCOMPARE(m_desk->loggers().control("stored 1"), QByteArray("-2.50 8.00 30.00 90.00 OR"));
}

void tst_OperatorOptions::beRefused()
{
    m_commands = commands();
    QCOMPARE(m_desk->loggers().control("fault 1 err:ATBMAX2"), QByteArray("ok"));
    QVERIFY(openOptions("Cold room"));
    QCOMPARE(limits(), limitTexts({-2.5, 8, 30, 90}));
    QVERIFY(Operator::typeNumber("doubleSpinBox_max_ch1", 9));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES_EQUAL(Operator::message(), QString("Device Setup Failed.\nPlease retry."));
    QCOMPARE(Operator::text("groupBox_message"), QStringLiteral("ERROR"));
    Operator::photograph("message-refused");
    QVERIFY(Operator::closeMessage());
    // The time limit of the try is not called off.
    SEES_EQUAL(Operator::message(), QString("This command has exceeded the time limit.\nPlease retry."));
    QVERIFY(Operator::closeMessage());
    QCOMPARE(commands().mid(m_commands.size()),
             QByteArrayList({"ATBMIN1 -2.50", "ATBMAX1 9.00", "ATBMIN2 30.00", "ATBMAX2 90.00"}));
    QCOMPARE(Operator::text("pushButton_confirm"), QStringLiteral("Confirm"));
    QVERIFY(Operator::isEnabled("doubleSpinBox_max_ch1"));
}

void tst_OperatorOptions::getNoAnswer()
{
    QCOMPARE(m_desk->loggers().control("fault 1 silent"), QByteArray("ok"));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES_EQUAL(Operator::text("pushButton_confirm"), QStringLiteral("Progressing..."));
    QVERIFY(!Operator::isEnabled("lineEdit_devicename"));
    Operator::photograph("options-progressing");
    SEES_EQUAL(Operator::message(), QString("This command has exceeded the time limit.\nPlease retry."));
    Operator::photograph("message-time-limit");
    QVERIFY(Operator::closeMessage());
    QCOMPARE(m_desk->loggers().control("fault 1 none"), QByteArray("ok"));
    QVERIFY(Operator::closeWindow("SensingOptionTelnetDialog"));
    SEES(!Operator::sees("SensingOptionTelnetDialog"));
    QCOMPARE(m_desk->loggers().control("stored 1"), QByteArray("-2.50 8.00 30.00 90.00 OR"));
}

void tst_OperatorOptions::setUsbOptions()
{
    QVERIFY(openOptions(usb));
    QCOMPARE(Operator::text("label_serialnumber"), usb);
    QVERIFY(Operator::type("lineEdit_devicename", "Hall"));
    QVERIFY(Operator::type("lineEdit_ch1name", "CO2"));
    QVERIFY(Operator::pick("comboBox_unit_ch1", "Custom"));
    QVERIFY(Operator::type("comboBox_unit_ch1", "ppm"));
    QVERIFY(Operator::typeNumber("doubleSpinBox_max_ch1", 900));
    Operator::photograph("options-usb");
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES(!Operator::sees("SensingOptionUsbDialog"));
    SEES_EQUAL(Operator::text("label_ch1_unit"), QStringLiteral("ppm"));
    QCOMPARE(Operator::rows("list_project"), QStringList({"Hall", "Cold room"}));
    // There is nothing to look up about its network.
    QVERIFY(!Operator::sees("btn_network") || Operator::click("btn_network"));
    QVERIFY(!Operator::sees("NetworkSettingDialog"));
}

void tst_OperatorOptions::theValuesComeBack()
{
    m_commands = commands();
    const int code = OperatorDesk::runStation([this] {
        QVERIFY(openRecent("Kitchen"));
        SEES(!Operator::text("widget_01/label_number").isEmpty());
        QVERIFY(openOptions("Cold room"));
        QCOMPARE(limits(), limitTexts({-2.5, 8, 30, 90}));
        QCOMPARE(Operator::text("comboBox_buzzeralarm"), QStringLiteral("OR"));
        QCOMPARE(Operator::text("comboBox_unit_ch1"), QString::fromUtf8("Temperature(°C)"));
        // Nothing was changed, so the logger is not asked.
        QVERIFY(Operator::click("pushButton_confirm"));
        SEES(!Operator::sees("SensingOptionTelnetDialog"));
        QCOMPARE(commands(), m_commands);
        QVERIFY(openOptions("Hall"));
        QCOMPARE(Operator::text("comboBox_unit_ch1"), QStringLiteral("ppm"));
        QCOMPARE(limits(), limitTexts({0, 900, 0, 0}));
        QVERIFY(Operator::closeWindow("SensingOptionUsbDialog"));
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

OPERATOR_TEST_MAIN(tst_OperatorOptions)
#include "tst_OperatorOptions.moc"
