#include "OperatorDesk.h"
#include "OperatorSteps.h"
#include "RecordingReader.h"
#include "StationProcess.h"

#include <QColor>
#include <QTest>

namespace {

const QString name = QStringLiteral("Kitchen");

bool isRed(const QColor &colour)
{
    return colour.red() > 100 && colour.green() < 80;
}

bool isTeal(const QColor &colour)
{
    return colour.isValid() && colour.red() < 60 && colour.green() > 55;
}

} // namespace

/// From the first start of a station with nothing, over a project that is made, recorded and closed, to a station that
/// starts by itself; and all that was read is in the recording.
class tst_OperatorFirstProject : public OperatorTest
{
    Q_OBJECT

private slots:
    void initTestCase() { m_desk = std::make_unique<OperatorDesk>(3); }
    void cleanupTestCase() { m_desk.reset(); }

    void theFirstStart();
    void theNextStartRecordsByItself();
    void terminatedWhileRecording();
    void nothingIsLost();

private:
    void makeProject();
    void chooseDevices();
    void nameTheFirst();
    void record();
    void passALimit();
    void lookAtTheChart();
    void refuseToClose();
    void stopAndClose();
    void reopen();
    bool isServed(int more) const;
    void begin() { m_starts << m_desk->loggers().served(); }
    void end() { m_ends << m_desk->loggers().served(); }

    std::unique_ptr<OperatorDesk> m_desk;
    QList<LoggerProcess::Counts> m_starts; // of the recordings, one after the other
    QList<LoggerProcess::Counts> m_ends;
};

void tst_OperatorFirstProject::theFirstStart()
{
    const int code = OperatorDesk::runStation([this] {
        STEP(makeProject);
        STEP(chooseDevices);
        STEP(nameTheFirst);
        STEP(record);
        STEP(passALimit);
        STEP(lookAtTheChart);
        STEP(refuseToClose);
        STEP(stopAndClose);
        STEP(reopen);
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

void tst_OperatorFirstProject::makeProject()
{
    QVERIFY(Operator::sees("ProjectMain"));
    QCOMPARE(Operator::rows("listWidget"), QStringList());
    Operator::photograph("start-first");
    QVERIFY(Operator::click("btn_create"));
    SEES(Operator::sees("QFileDialog"));
    QVERIFY(Operator::type("QFileDialog/fileNameEdit", name));
    Operator::photograph("file-dialog");
    QVERIFY(Operator::press(Qt::Key_Return));
    SEES(Operator::sees("ProjectManager"));
    QCOMPARE(Operator::text("label_projectname"), OperatorDesk::path(name + ".tpc"));
}

void tst_OperatorFirstProject::chooseDevices()
{
    // As the broadcast search has found them.
    SEES_EQUAL(Operator::rows("availlable_list").size(), 3);
    for (int number = 1; number <= 3; ++number) {
        const QString row =
            QStringLiteral("%1\t[%2:23]").arg(LoggerProcess::key(number), LoggerProcess::address(number));
        QVERIFY2(Operator::rows("availlable_list").contains(row), qPrintable(row));
    }
    QVERIFY(placeOnDashboard(0, {LoggerProcess::key(1), LoggerProcess::key(2)}));
    QVERIFY(Operator::type("lineEdit_dashboard_1", "Cold store"));
    QVERIFY(Operator::clickTab("tabWidget", 1));
    QVERIFY(Operator::doubleClickRow("availlable_list", LoggerProcess::key(3)));
    SEES_EQUAL(Operator::rows("configured_list_2").size(), 1);
    QVERIFY(Operator::type("lineEdit_dashboard_2", "Laboratory"));
    QVERIFY(Operator::click("btn_timeInterval"));
    SEES_EQUAL(Operator::entries(), QStringList({"1 sec", "5 sec", "10 sec*", "1 min", "5 min", "10 min"}));
    Operator::photograph("manager-interval");
    QVERIFY(Operator::press(Qt::Key_Escape));
    QVERIFY(chooseInterval("1 sec"));
    QVERIFY(Operator::clickTab("tabWidget", 0));
    Operator::photograph("manager");
    QVERIFY(Operator::click("btn_confirm"));
    SEES(Operator::sees("ProjectCenter"));
    QCOMPARE(Operator::text("statusFrame/label_interval"), QStringLiteral("Interval : 1 sec"));
    SEES(!Operator::text("widget_02/label_number").isEmpty());
}

void tst_OperatorFirstProject::nameTheFirst()
{
    QVERIFY(openOptions(LoggerProcess::key(1)));
    QVERIFY(Operator::type("lineEdit_devicename", "Cold room"));
    QVERIFY(Operator::type("lineEdit_ch1name", "Temperature"));
    QVERIFY(Operator::pick("comboBox_unit_ch1", QString::fromUtf8("Temperature(°C)")));
    QVERIFY(Operator::type("lineEdit_ch2name", "Humidity"));
    QVERIFY(Operator::pick("comboBox_unit_ch2", "Humidity(%)"));
    QVERIFY(Operator::typeNumber("doubleSpinBox_min_ch1", -5));
    QVERIFY(Operator::typeNumber("doubleSpinBox_max_ch1", 10));
    QVERIFY(Operator::click("pushButton_confirm"));
    SEES(!Operator::sees("SensingOptionTelnetDialog"));
    QCOMPARE(m_desk->loggers().control("stored 1"), QByteArray("-5.00 10.00 0.00 0.00 OFF"));
    QVERIFY(Operator::click("button_project"));
    SEES_EQUAL(Operator::text("widget_01/label_device"), QStringLiteral("Cold room"));
    QCOMPARE(Operator::text("widget_02/label_desc"), QStringLiteral("Humidity"));
    SEES_EQUAL(Operator::text("widget_01/label_unit"), QString::fromUtf8("°C"));
    SEES(isTeal(Operator::colour("widget_01/frame_value")));
    Operator::photograph("dashboard");
    QVERIFY(Operator::clickTab("DashboardTab/tabWidget", 1));
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    QCOMPARE(Operator::text("widget_01/label_device"), LoggerProcess::key(3));
    Operator::photograph("dashboard-2");
    QVERIFY(Operator::clickTab("DashboardTab/tabWidget", 0));
}

void tst_OperatorFirstProject::record()
{
    begin();
    QVERIFY(Operator::click("btn_record"));
    SEES_EQUAL(Operator::text("label_to"), QStringLiteral("~"));
    QVERIFY(!Operator::text("label_record_starttime").isEmpty());
    SEES(isServed(3));
    Operator::photograph("recording");
}

void tst_OperatorFirstProject::passALimit()
{
    QVERIFY(!m_desk->hearsAlarm());
    m_desk->ear().forget();
    QCOMPARE(m_desk->loggers().control("offset 1 20 0"), QByteArray("ok"));
    SEES(isRed(Operator::colour("widget_01/frame_value")));
    QVERIFY(isTeal(Operator::colour("widget_02/frame_value")));
    QVERIFY(isTeal(Operator::colour("widget_09/frame_value")));
    SEES(m_desk->hearsAlarm());
    Operator::photograph("alarm");
    QCOMPARE(m_desk->loggers().control("curve 1"), QByteArray("ok"));
    SEES(isTeal(Operator::colour("widget_01/frame_value")));
    SEES(m_desk->ear().trailingSilenceSeconds() > 1);
}

void tst_OperatorFirstProject::lookAtTheChart()
{
    QVERIFY(Operator::click("widget_01/frame_value"));
    SEES_EQUAL(Operator::text("ChartView/label_device"), QStringLiteral("Cold room"));
    QVERIFY(!Operator::text("label_ch1_number").isEmpty());
    const QImage before = Operator::image("label_ch1_chart");
    QVERIFY(Operator::pointAt("label_ch1_chart", {400, 60}));
    SEES(Operator::image("label_ch1_chart") != before);
    Operator::photograph("chart");
    Operator::putPointerAway();
    QVERIFY(Operator::click("button_project"));
    SEES(Operator::sees("DashboardTab"));
}

void tst_OperatorFirstProject::refuseToClose()
{
    QVERIFY(Operator::closeWindow("SorvantoMain"));
    QVERIFY(Operator::sees("ProjectCenter"));
    QVERIFY(Operator::click("command_project"));
    SEES_EQUAL(Operator::entries(),
               QStringList({"(Add/Delete)", "(Close)", "Auto Load Recent Project", "Auto Start Record",
                            "Keep Socket Connection", "Refresh Devices", "(Exit)"}));
    Operator::photograph("menu-project-recording");
    QVERIFY(Operator::press(Qt::Key_Escape));
    QCOMPARE(Operator::text("label_to"), QStringLiteral("~"));
}

void tst_OperatorFirstProject::stopAndClose()
{
    QVERIFY(Operator::click("btn_record"));
    SEES_EQUAL(Operator::text("label_to"), QString());
    end();
    QVERIFY(Operator::text("label_record_endtime") > Operator::text("label_record_starttime"));
    QVERIFY(Operator::choose("command_project", {"Close"}));
    SEES(Operator::sees("ProjectMain"));
    QCOMPARE(Operator::text("label_projectname"), QString());
    const QString row = QStringLiteral("%1\t[%2]").arg(name, OperatorDesk::path(name + ".tpc"));
    QCOMPARE(Operator::rows("listWidget"), QStringList{row});
}

void tst_OperatorFirstProject::reopen()
{
    QVERIFY(openRecent(name));
    QCOMPARE(Operator::rows("list_project"), QStringList({"Cold room", LoggerProcess::key(2), LoggerProcess::key(3)}));
    SEES(!Operator::text("widget_01/label_number").isEmpty());
    QCOMPARE(Operator::text("label_to"), QString());
    QVERIFY(Operator::choose("command_project", {"Auto Load Recent Project"}));
    QVERIFY(Operator::choose("command_project", {"Auto Start Record"}));
    QVERIFY(Operator::click("command_project"));
    SEES(Operator::entries().contains("Auto Load Recent Project*"));
    QVERIFY(Operator::entries().contains("Auto Start Record*"));
    QVERIFY(Operator::press(Qt::Key_Escape));
}

void tst_OperatorFirstProject::theNextStartRecordsByItself()
{
    begin();
    const int code = OperatorDesk::runStation([this] {
        QVERIFY(Operator::sees("ProjectCenter"));
        QCOMPARE(Operator::text("label_to"), QStringLiteral("~"));
        QCOMPARE(Operator::rows("list_project").first(), QStringLiteral("Cold room"));
        SEES(isServed(3));
        QVERIFY(Operator::click("btn_record"));
        SEES_EQUAL(Operator::text("label_to"), QString());
        end();
        QVERIFY(exitStation());
    });
    QCOMPARE(code, 0);
}

void tst_OperatorFirstProject::terminatedWhileRecording()
{
    begin();
    StationProcess station;
    QVERIFY(station.start(OperatorDesk::environment()));
    QVERIFY2(QTest::qWaitFor([&] { return isServed(4) || !station.isRunning(); }, patienceMs), station.lastWords());
    QVERIFY2(station.end(SIGTERM), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    end();
}

void tst_OperatorFirstProject::nothingIsLost()
{
    RecordingReader reader(OperatorDesk::path(name + ".dat"));
    QCOMPARE(reader.integrity(), QStringLiteral("ok"));
    const QList<RecordedRow> rows = reader.rowsAsStored();
    QCOMPARE(m_ends.size(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_desk->loggers().differences(recordingOf(rows, i), m_starts.at(i), m_ends.at(i)), QByteArray());
    QCOMPARE(recordingOf(rows, 3).size(), 0);
}

/// Whether every logger has served so many readings since the last beginning.
bool tst_OperatorFirstProject::isServed(int more) const
{
    const LoggerProcess::Counts served = m_desk->loggers().served();
    for (int number = 1; number <= 3; ++number) {
        const QString key = LoggerProcess::key(number);
        if (served.value(key) < m_starts.last().value(key) + more)
            return false;
    }
    return true;
}

OPERATOR_TEST_MAIN(tst_OperatorFirstProject)
#include "tst_OperatorFirstProject.moc"
