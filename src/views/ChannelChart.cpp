#include "views/ChannelChart.h"

#include "chart/Colour.h"
#include "chart/NoValue.h"
#include "chart/XYChart.h"
#include "device/DataInterval.h"

#include <QLinearGradient>
#include <limits>

namespace {

constexpr quint32 backgroundColour = 0x595959;
constexpr quint32 plotBottomColour = 0x303030;
constexpr quint32 gridColour = 0x80303030;
constexpr quint32 axisColour = 0x80c0c0c0;
constexpr quint32 axisLabelColour = 0x80f4f4f4;
constexpr quint32 clear = 0xff000000;

constexpr int axisWidth = 2;
constexpr int majorTickSpacing = 75;
constexpr int minorTickSpacing = 15;

constexpr int besideChart = 10;
const QPoint plotCorner(45, 25);
constexpr QSize besidePlot(60, 55);
constexpr int belowGradient = 15;

constexpr int msPerSecond = 1000;
// One may come late; where one is missing, the next is two intervals away.
constexpr double largestStepInIntervals = 1.5;

chart::PlotArea plotArea(const QSize &label)
{
    QLinearGradient gradient(0, plotCorner.y(), 0, label.height() - belowGradient);
    gradient.setColorAt(0, chart::colour(backgroundColour));
    gradient.setColorAt(1, chart::colour(plotBottomColour));
    chart::PlotArea area;
    area.area = QRect(plotCorner, label - besidePlot);
    area.background = gradient;
    area.edge = chart::colour(clear);
    area.horizontalGrid = chart::colour(gridColour);
    area.verticalGrid = chart::colour(gridColour);
    return area;
}

/// The time of a full history in seconds; 0 when the interval is none or the product leaves 32 bits.
qint64 spanSeconds(qint32 intervalMs)
{
    const qint64 spanMs = qint64(intervalMs) * historyLength;
    return spanMs > 0 && spanMs <= std::numeric_limits<qint32>::max() ? spanMs / msPerSecond : 0;
}

std::vector<double> copyOf(const History &history)
{
    return {history.cbegin(), history.cend()};
}

std::vector<double> largestSteps(const History &intervals)
{
    std::vector<double> steps;
    for (const double intervalMs : intervals)
        steps.push_back(largestStepInIntervals * intervalMs / msPerSecond);
    return steps;
}

} // namespace

std::unique_ptr<chart::XYChart> channelChart(const QSize &label, const History &times, const History &intervals,
                                             const History &values, const ChannelLine &line, qint32 intervalMs)
{
    auto picture = std::make_unique<chart::XYChart>(label.width() - besideChart, label.height(),
                                                    chart::colour(backgroundColour), chart::colour(clear));
    picture->setPlotArea(plotArea(label));
    picture->xAxis().setTickDensity(majorTickSpacing, minorTickSpacing);
    picture->xAxis().setLabelFormat(QStringLiteral("hh:mm:ss"));
    picture->xAxis().setWidth(axisWidth);
    picture->xAxis().setColours(chart::colour(axisColour), chart::colour(axisLabelColour));
    picture->yAxis().setWidth(axisWidth);
    picture->yAxis().setColours(chart::colour(axisColour), chart::colour(axisLabelColour));

    const double newest = times.back();
    const qint64 span = spanSeconds(intervalMs);
    if (!chart::isValue(newest) || span == 0)
        return picture;
    picture->xAxis().setScale(newest - double(span), newest);
    chart::LineLayer &layer = picture->addLineLayer(copyOf(times));
    layer.setLargestSteps(largestSteps(intervals));
    layer.addDataSet(copyOf(values), line.name, line.colour);
    return picture;
}

QString channelSpanText(qint32 intervalMs)
{
    return QStringLiteral("View Length : %1 samples   Interval : %2 ").arg(historyLength).arg(intervalText(intervalMs));
}
