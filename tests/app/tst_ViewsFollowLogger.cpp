#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "chart/QChartViewer.h"
#include "chart/XYChart.h"
#include "device/ConfiguredDevice.h"
#include "loggersim/NetworkLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"
#include "views/StateBackground.h"

#include <QFrame>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <algorithm>

namespace {

const QString key = QStringLiteral("0200AA000001");
const QString recording = QStringLiteral("color:rgb(255,255,147);background-color:transparent;");
const QString idle = QStringLiteral("color:rgb(192,192,192);background-color:transparent;");
const QString timeFormat = QStringLiteral("yyyy-MM-dd hh:mm:ss");

QImage picture(const char *name)
{
    return QPixmap(QStringLiteral(":/img/%1.png").arg(QLatin1String(name))).toImage();
}

} // namespace

/// What the operator sees of a simulated logger on a real socket, wherever it is shown: tiles, chart, list, record bar.
class tst_ViewsFollowLogger : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void connecting();
    void alarmAndReturn();
    void silenceAndReturn();
    void lostConnectionAndReturn();
    void recordBarFollowsTheRecording();

private:
    loggersim::NetworkLogger &logger() { return *m_logger; }
    const ConfiguredDevice &device() const { return *m_station->configuredDevices().first(); }
    void answer(int temperature) { m_logger->curve().hold({temperature, 4510}); }
    void poll() { m_station->writeDevice(); }
    void pollUntilLost();
    void openChart();
    DashBoardDeviceItem *tile(int channel) const
    {
        QWidget *page = child<QTabWidget>(*m_station, "tabWidget")->widget(0);
        return page->findChildren<DashBoardDeviceItem *>().at(channel - 1);
    }
    const ChartView &chart() const { return *m_station->findChild<ChartView *>(); }
    double newestCharted() const;
    QString barText(const char *label) const { return child<QLabel>(*m_station, label)->text(); }

    void expectConnected(StateBackground background1, const QString &value1);
    void expectLost();
    void expectChannel(int channel, StateBackground background, const QString &value, const QString &unit);
    void expectSymbols(const char *status);

    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<loggersim::NetworkLogger> m_logger;
    std::unique_ptr<SorvantoMain> m_station;
};

void tst_ViewsFollowLogger::init()
{
    m_fixture = std::make_unique<StationFixture>();
    m_logger = std::make_unique<loggersim::NetworkLogger>(key, loggersim::climateOf(0), 1);
    answer(500);
    QVERIFY(m_logger->listen(QHostAddress::LocalHost, 0));
    DeviceEntry entry;
    entry.name = QStringLiteral("Freezer");
    entry.serialNumber = key;
    entry.address = m_logger->address();
    entry.port = m_logger->port();
    entry.ch1Unit = 1;
    entry.ch2Unit = 3;
    entry.range = {2, 8, 0, 0};
    m_fixture->writeProject(QStringLiteral("Kitchen"), {entry}, 600000);
    m_station = std::make_unique<SorvantoMain>();
    m_station->show();
    m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
}

void tst_ViewsFollowLogger::cleanup()
{
    m_station.reset();
    m_logger.reset();
    m_fixture.reset();
}

void tst_ViewsFollowLogger::openChart()
{
    QTest::mouseClick(tile(1), Qt::LeftButton);
    QVERIFY(chart().isVisible());
}

/// Two polls may stay without an answer; the third gives the logger up.
void tst_ViewsFollowLogger::pollUntilLost()
{
    const quint64 before = logger().commands();
    for (quint64 i = 1; i <= 2; ++i) {
        poll();
        QTRY_COMPARE(logger().commands(), before + i);
        QVERIFY(device().isConnected());
    }
    poll();
}

double tst_ViewsFollowLogger::newestCharted() const
{
    const auto *viewer = child<QLabel>(chart(), "label_ch1_chart")->findChild<QChartViewer *>();
    const auto &layers = viewer->chart()->layers();
    return layers.empty() ? 0 : layers.front()->dataSets().front()->values.back();
}

void tst_ViewsFollowLogger::expectChannel(int channel, StateBackground background, const QString &value,
                                          const QString &unit)
{
    const bool first = channel == 1;
    QTRY_COMPARE(child<QLabel>(*tile(channel), "label_number")->text(), value);
    QCOMPARE(child<QLabel>(*tile(channel), "label_unit")->text(), unit);
    QTRY_COMPARE(child<QFrame>(*tile(channel), "frame_value")->styleSheet(), styleSheetOf(background));
    if (!chart().isVisible())
        return;
    QCOMPARE(child<QLabel>(chart(), first ? "label_ch1_number" : "label_ch2_number")->text(), value);
    QCOMPARE(child<QLabel>(chart(), first ? "label_ch1_unit" : "label_ch2_unit")->text(), unit);
    QTRY_COMPARE(child<QFrame>(chart(), first ? "frame_ch1_value" : "frame_ch2_value")->styleSheet(),
                 styleSheetOf(background));
}

void tst_ViewsFollowLogger::expectSymbols(const char *status)
{
    const QListWidgetItem *row = child<QListWidget>(*m_station, "list_project")->item(0);
    QCOMPARE(row->icon().pixmap(row->icon().availableSizes().value(0)).toImage(), picture(status));
    if (chart().isVisible())
        QCOMPARE(child<QLabel>(chart(), "label_device_status")->pixmap(Qt::ReturnByValue).toImage(), picture(status));
}

void tst_ViewsFollowLogger::expectConnected(StateBackground background1, const QString &value1)
{
    expectChannel(1, background1, value1, QStringLiteral("\u00B0C"));
    expectChannel(2, StateBackground::Normal, QStringLiteral("45.10"), QStringLiteral("%RH"));
    expectSymbols("DeviceConnectingSymbol");
}

void tst_ViewsFollowLogger::expectLost()
{
    for (const int channel : {1, 2})
        expectChannel(channel, StateBackground::NoData, {}, {});
    expectSymbols("DeviceDisconnectedSymbol");
}

void tst_ViewsFollowLogger::connecting()
{
    expectLost();
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));
    openChart();
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));
    QTRY_COMPARE(newestCharted(), 5.0);
    QCOMPARE(child<QLabel>(chart(), "label_device")->text(), QStringLiteral("Freezer"));
    QCOMPARE(child<QLabel>(chart(), "label_serialnumber")->text(), QStringLiteral("MAC : ") + key);
}

void tst_ViewsFollowLogger::alarmAndReturn()
{
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));
    openChart();
    answer(900);
    poll();
    expectConnected(StateBackground::Alarm, QStringLiteral("9.00"));
    QTRY_COMPARE(newestCharted(), 9.0);
    answer(-1234);
    poll();
    expectConnected(StateBackground::Alarm, QStringLiteral("-12.34"));
    answer(800);
    poll();
    expectConnected(StateBackground::Normal, QStringLiteral("8.00"));
}

void tst_ViewsFollowLogger::silenceAndReturn()
{
    answer(900);
    poll();
    expectConnected(StateBackground::Alarm, QStringLiteral("9.00"));
    openChart();
    logger().setFault({loggersim::FaultKind::Silent, 0, {}});
    pollUntilLost();
    expectLost();
    // What was measured stays on the chart.
    QTRY_COMPARE(newestCharted(), 9.0);
    logger().setFault({});
    poll();
    expectConnected(StateBackground::Alarm, QStringLiteral("9.00"));
}

void tst_ViewsFollowLogger::lostConnectionAndReturn()
{
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));
    openChart();
    logger().setFault({loggersim::FaultKind::Refuse, 0, {}});
    for (int i = 0; i < 4; ++i) {
        poll();
        QCoreApplication::processEvents();
    }
    expectLost();
    logger().setFault({});
    answer(550);
    poll();
    expectConnected(StateBackground::Normal, QStringLiteral("5.50"));
}

void tst_ViewsFollowLogger::recordBarFollowsTheRecording()
{
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));
    QCOMPARE(barText("label_record_starttime"), QString());
    QTest::mouseClick(child<QPushButton>(*m_station, "btn_record"), Qt::LeftButton);
    QCOMPARE(barText("label_to"), QStringLiteral("~"));
    QCOMPARE(child<QLabel>(*m_station, "label_record_starttime")->styleSheet(), recording);
    QVERIFY(QDateTime::fromString(barText("label_record_starttime"), timeFormat).isValid());
    answer(900);
    poll();
    expectConnected(StateBackground::Alarm, QStringLiteral("9.00"));

    logger().setFault({loggersim::FaultKind::Silent, 0, {}});
    pollUntilLost();
    expectLost();
    QCOMPARE(barText("label_to"), QStringLiteral("~"));
    logger().setFault({});
    answer(500);
    poll();
    expectConnected(StateBackground::Normal, QStringLiteral("5.00"));

    QTest::mouseClick(child<QPushButton>(*m_station, "btn_record"), Qt::LeftButton);
    QCOMPARE(barText("label_to"), QString());
    for (const char *label : {"label_record_starttime", "label_to", "label_record_endtime"})
        QCOMPARE(child<QLabel>(*m_station, label)->styleSheet(), idle);
    // From the first reading to the last row, as they stand in the recording.
    QList<qint64> times;
    for (const RecordedRow &row : m_fixture->rows(QStringLiteral("Kitchen")))
        times << row.time;
    const auto [first, last] = std::minmax_element(times.cbegin(), times.cend());
    QCOMPARE(barText("label_record_starttime"), QDateTime::fromSecsSinceEpoch(*first).toString(timeFormat));
    QCOMPARE(barText("label_record_endtime"), QDateTime::fromSecsSinceEpoch(*last).toString(timeFormat));
    const double megabytes = double(QFileInfo(m_fixture->recordingPath(QStringLiteral("Kitchen"))).size()) / (1 << 20);
    QTRY_COMPARE(barText("label_record_bytes"), QStringLiteral("Database %1MB").arg(megabytes, 0, 'f', 2));
}

STATION_TEST_MAIN(tst_ViewsFollowLogger)
#include "tst_ViewsFollowLogger.moc"
