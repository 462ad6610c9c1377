// The live chart of a channel beside QCustomPlot drawing the same picture: rebuilt with a new reading, and touched by a
// move of the mouse alone. Then one chart of as much as a month of readings.

#include "chart/TrackCursor.h"
#include "chart/XYChart.h"
#include "device/DataInterval.h"
#include "views/ChannelChart.h"

#include <QApplication>
#include <QPixmap>
#include <benchmark/benchmark.h>
#include <cmath>
#include <numeric>
#include <qcustomplot.h>

namespace {

constexpr QSize picture(800, 180);
// What the chart of a label leaves of it.
constexpr QSize label(picture.width() + 10, picture.height());
constexpr double firstTime = 1.7e9;
constexpr qint32 interval = 1000;

/// A room's temperature: it swings, and the last digit flickers.
double temperature(int second)
{
    constexpr double swing = 40;
    return 21.5 + 1.5 * std::sin(second / swing) + (second * 7919 % 13) * 0.01;
}

/// A channel's history that goes on by a second with every reading.
class Readings
{
public:
    Readings()
    {
        for (int i = 0; i < historyLength; ++i)
            take();
    }

    void take()
    {
        std::move(m_times.begin() + 1, m_times.end(), m_times.begin());
        std::move(m_values.begin() + 1, m_values.end(), m_values.begin());
        m_times.back() = firstTime + m_second;
        m_values.back() = temperature(m_second);
        ++m_second;
    }
    const History &times() const { return m_times; }
    const History &values() const { return m_values; }

private:
    History m_times{};
    History m_values{};
    int m_second = 0;
};

std::unique_ptr<chart::XYChart> chartOf(const Readings &readings)
{
    History intervals;
    intervals.fill(interval);
    return channelChart(label, readings.times(), intervals, readings.values(), {QStringLiteral("CH1"), Qt::red},
                        interval);
}

void rebuild(benchmark::State &state)
{
    Readings readings;
    for (auto _ : state) {
        readings.take();
        const auto chart = chartOf(readings);
        benchmark::DoNotOptimize(QPixmap::fromImage(chart->picture(1)));
    }
}

void moveMouse(benchmark::State &state)
{
    const Readings readings;
    const auto chart = chartOf(readings);
    chart->finishedPicture(1);
    int x = 0;
    for (auto _ : state) {
        x = (x + 7) % picture.width();
        chart::drawTrackCursor(*chart, x, channelSpanText(interval));
        benchmark::DoNotOptimize(QPixmap::fromImage(chart->picture(1)));
    }
}

void dressAxis(QCPAxis *axis)
{
    const QColor line(0xc0, 0xc0, 0xc0, 0x7f);
    axis->setTickLabelFont(chart::textFont(QStringLiteral("Arial"), 8, false));
    axis->setTickLabelColor(QColor(0xf4, 0xf4, 0xf4, 0x7f));
    axis->setBasePen(QPen(line, 2));
    axis->setTickPen(QPen(line, 1));
    axis->setSubTickPen(QPen(line, 1));
    axis->setTickLength(0, 4);
    axis->setSubTickLength(0, 2);
    axis->grid()->setPen(QPen(QColor(0x30, 0x30, 0x30, 0x7f), 1));
    axis->grid()->setZeroLinePen(Qt::NoPen);
}

/// The channel's chart in QCustomPlot's terms.
class Reference
{
public:
    Reference()
    {
        const auto chart = chartOf(Readings());
        const QRect plot = chart->plotArea().area;
        m_plot.resize(picture);
        m_plot.setViewport(QRect(QPoint(), picture));
        m_plot.setBackground(chart->background());
        QCPAxisRect *area = m_plot.axisRect();
        area->setAutoMargins(QCP::msNone);
        area->setMargins({plot.left(), plot.top(), picture.width() - plot.left() - plot.width(),
                          picture.height() - plot.top() - plot.height()});
        area->setBackground(chart->plotArea().background);
        const QSharedPointer<QCPAxisTickerDateTime> ticker(new QCPAxisTickerDateTime);
        ticker->setDateTimeFormat(QStringLiteral("hh:mm:ss"));
        ticker->setTickCount(plot.width() / 75);
        m_plot.xAxis->setTicker(ticker);
        dressAxis(m_plot.xAxis);
        dressAxis(m_plot.yAxis);
        m_plot.yAxis->setSubTicks(false);
        m_plot.yAxis->setRange(*chart->yValueAt(plot.bottom()), *chart->yValueAt(plot.top()));
        m_graph = m_plot.addGraph();
        m_graph->setPen(QPen(Qt::red, 2));
        m_graph->setAntialiased(true);
    }

    void show(const Readings &readings)
    {
        m_graph->setData({readings.times().cbegin(), readings.times().cend()},
                         {readings.values().cbegin(), readings.values().cend()}, true);
        const double newest = readings.times().back();
        m_plot.xAxis->setRange(newest - historyLength, newest);
    }

    QCustomPlot &plot() { return m_plot; }

private:
    QCustomPlot m_plot;
    QCPGraph *m_graph;
};

void rebuildQCustomPlot(benchmark::State &state)
{
    Readings readings;
    Reference reference;
    for (auto _ : state) {
        readings.take();
        reference.show(readings);
        benchmark::DoNotOptimize(reference.plot().toPixmap(picture.width(), picture.height()));
    }
}

/// Into the pixmap that the plot keeps for the screen, with labels that it remembers from the picture before.
void replotQCustomPlot(benchmark::State &state)
{
    Readings readings;
    Reference reference;
    for (auto _ : state) {
        readings.take();
        reference.show(readings);
        reference.plot().replot(QCustomPlot::rpQueuedRefresh);
    }
}

/// One chart of so many points: range, layout and picture from the data on.
void redrawPoints(benchmark::State &state)
{
    const int count = int(state.range(0));
    std::vector<double> times(size_t(count), 0);
    std::iota(times.begin(), times.end(), firstTime);
    std::vector<double> values;
    constexpr int swings = 2000;
    for (int i = 0; i < count; ++i)
        values.push_back(temperature(int(qint64(i) * swings / count)) + i % 5 * 0.02);
    for (auto _ : state) {
        chart::XYChart chart(picture.width(), picture.height(), Qt::darkGray);
        chart::PlotArea area;
        area.area = chartOf(Readings())->plotArea().area;
        chart.setPlotArea(area);
        chart.xAxis().setScale(times.front(), times.back());
        chart.addLineLayer(times).addDataSet(values, QStringLiteral("CH1"), Qt::red);
        benchmark::DoNotOptimize(QPixmap::fromImage(chart.picture(1)));
    }
}

/// So that both pictures can be looked at.
void savePictures(const QString &folder)
{
    const Readings readings;
    chartOf(readings)->picture(1).save(folder + QStringLiteral("/chart.png"));
    Reference reference;
    reference.show(readings);
    reference.plot().toPixmap(picture.width(), picture.height()).save(folder + QStringLiteral("/qcustomplot.png"));
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (argc > 1) {
        savePictures(QString::fromLocal8Bit(argv[1]));
        return 0;
    }

    const auto measure = [](const char *name, auto function) {
        return benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMicrosecond);
    };
    measure("qcustomplot_to_pixmap", rebuildQCustomPlot);
    measure("qcustomplot_replot", replotQCustomPlot);
    measure("chart_rebuild", rebuild);
    measure("chart_mouse_move", moveMouse);
    measure("chart_of_points", redrawPoints)->Arg(1000)->Arg(100000);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
