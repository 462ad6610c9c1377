// What a second of 64 loggers at the shortest interval costs the GUI thread: a reading of each, into two tiles and a
// chart, painted. Beside it the toolkit's own work for 128 plain labels with a new text each.

#include "device/ConfiguredDevice.h"
#include "views/ChartView.h"
#include "views/DashBoard.h"
#include "views/ProjectCenter.h"

#include <QApplication>
#include <QDateTime>
#include <QGridLayout>
#include <QLabel>
#include <QLoggingCategory>
#include <benchmark/benchmark.h>
#include <memory>
#include <vector>

namespace {

constexpr int deviceCount = 64;
constexpr int devicesPerDashboard = 16;
constexpr QSize screen(1920, 1080);

QString reading(int second, int device)
{
    return QString::number(20 + (second * 7 + device) % 100 * 0.01, 'f', 2) + QStringLiteral(",45.") +
           QString::number(10 + second % 90);
}

/// Loggers whose clocks go on by one second with every reading.
class Fleet
{
public:
    Fleet()
    {
        for (int i = 0; i < deviceCount; ++i) {
            auto device = std::make_unique<ConfiguredDevice>(QStringLiteral("0200AA%1").arg(i, 6, 10, QLatin1Char('0')),
                                                             NetworkInterface);
            device->setDeviceInfo(QStringLiteral("Room %1").arg(i + 1), QStringLiteral("Temperature"),
                                  QStringLiteral("Humidity"), {}, defaultDevicePort);
            device->setClock([this] { return m_now; });
            device->setUnits(1, 3);
            // Every fourth is in alarm all the time.
            device->setAlarmRange(i % 4 ? 0.0F : 30.0F, i % 4 ? 0.0F : 40.0F, 0, 0);
            device->setDashboardNumber(i / devicesPerDashboard);
            m_list << device.get();
            m_devices.push_back(std::move(device));
        }
    }
    ~Fleet()
    {
        for (ConfiguredDevice *device : std::as_const(m_list))
            device->detachViews();
    }

    const QList<ConfiguredDevice *> &all() const { return m_list; }
    QList<ConfiguredDevice *> dashboard(int number) const { return m_list.mid(number * devicesPerDashboard, 16); }

    void readAll()
    {
        ++m_second;
        m_now = m_now.addSecs(1);
        for (int i = 0; i < deviceCount; ++i) {
            // Stamps the time; there is no address to connect to.
            m_list.at(i)->pollForRecord();
            m_list.at(i)->readData(reading(m_second, i));
        }
    }

private:
    std::vector<std::unique_ptr<ConfiguredDevice>> m_devices;
    QList<ConfiguredDevice *> m_list;
    QDateTime m_now = QDateTime::currentDateTime();
    int m_second = 0;
};

void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
}

void plainLabels(benchmark::State &state)
{
    QWidget window;
    auto *grid = new QGridLayout(&window);
    std::vector<QLabel *> labels;
    for (int i = 0; i < 2 * deviceCount; ++i) {
        labels.push_back(new QLabel(QStringLiteral("20.00")));
        grid->addWidget(labels.back(), i / 16, i % 16);
    }
    window.resize(screen);
    window.show();
    settle();
    int second = 0;
    for (auto _ : state) {
        ++second;
        for (size_t i = 0; i < labels.size(); ++i)
            labels[i]->setText(reading(second, int(i)).left(5));
        settle();
    }
}

/// All four dashboards at once, which the station never shows; with a chart of one device beside them on request.
void allTiles(benchmark::State &state, bool withChart)
{
    Fleet fleet;
    QWidget window;
    auto *grid = new QGridLayout(&window);
    for (int number = 0; number < 4; ++number) {
        auto *dashboard = new DashBoard;
        dashboard->setDevices(fleet.dashboard(number));
        grid->addWidget(dashboard, number / 2, number % 2);
    }
    window.resize(screen);
    window.show();
    ChartView chart;
    if (withChart) {
        chart.resize(824, 437);
        chart.show();
        chart.setDevice(fleet.all().first());
        fleet.all().first()->setChartView(&chart);
    }
    for (int i = 0; i < historyLength; ++i)
        fleet.readAll();
    settle();
    for (auto _ : state) {
        fleet.readAll();
        settle();
    }
}

/// As the operator has it: one dashboard or one chart on the board, everything else kept up to date behind it.
void projectCenter(benchmark::State &state, bool onChart)
{
    Fleet fleet;
    ProjectCenter center(QStringLiteral("/data/Kitchen.tpc"));
    center.setDevices(fleet.all());
    center.resize(screen);
    center.show();
    if (onChart)
        QMetaObject::invokeMethod(&center, "slotDeviceClicked", Q_ARG(ConfiguredDevice *, fleet.all().first()));
    for (int i = 0; i < historyLength; ++i)
        fleet.readAll();
    settle();
    for (auto _ : state) {
        fleet.readAll();
        settle();
    }
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    QApplication application(argc, argv);
    qRegisterMetaType<ConfiguredDevice *>("ConfiguredDevice*");

    const auto measure = [](const char *name, auto function) {
        benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond);
    };
    measure("plain_labels_128", plainLabels);
    measure("tiles_128", [](benchmark::State &state) { allTiles(state, false); });
    measure("tiles_128_and_a_chart", [](benchmark::State &state) { allTiles(state, true); });
    measure("project_center_on_a_dashboard", [](benchmark::State &state) { projectCenter(state, false); });
    measure("project_center_on_a_chart", [](benchmark::State &state) { projectCenter(state, true); });

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
