#include "chart/NoValue.h"
#include "chart/XYChart.h"

#include <QPainter>
#include <QTest>
#include <algorithm>

using namespace chart;

namespace {

const QColor paper(10, 20, 30);
const QColor field(0, 0, 60);
const QColor grid(0, 100, 0);
const QColor axis(200, 200, 0);
const QColor label(255, 255, 255);
const QColor line(255, 0, 0);
const QColor edge(0, 250, 250);

constexpr QRect plot(50, 20, 200, 100);

/// 300 x 150 with a scale of 200 seconds, one a pixel.
std::unique_ptr<XYChart> emptyChart()
{
    auto chart = std::make_unique<XYChart>(300, 150, paper);
    PlotArea area;
    area.area = plot;
    area.background = field;
    area.horizontalGrid = grid;
    area.verticalGrid = grid;
    chart->setPlotArea(area);
    chart->xAxis().setWidth(2);
    chart->xAxis().setColours(axis, label);
    chart->yAxis().setWidth(2);
    chart->yAxis().setColours(axis, label);
    chart->xAxis().setScale(1000, 1200);
    return chart;
}

std::unique_ptr<XYChart> chartOf(std::vector<double> times, std::vector<double> values)
{
    auto chart = emptyChart();
    chart->addLineLayer(std::move(times)).addDataSet(std::move(values), "line", line);
    return chart;
}

/// The colours of one row or column of device pixels that a logical pixel consists of agree.
QColor colourAt(const QImage &image, int x, int y)
{
    const int density = int(image.devicePixelRatio());
    const QColor first = image.pixelColor(x * density, y * density);
    for (int dx = 0; dx < density; ++dx) {
        for (int dy = 0; dy < density; ++dy) {
            if (image.pixelColor(x * density + dx, y * density + dy) != first)
                return Qt::transparent;
        }
    }
    return first;
}

QRect extentOf(const QImage &image, const QRect &within, const QColor &colour)
{
    QRect extent;
    for (int y = within.top(); y <= within.bottom(); ++y) {
        for (int x = within.left(); x <= within.right(); ++x) {
            if (image.pixelColor(x, y) == colour)
                extent |= QRect(x, y, 1, 1);
        }
    }
    return extent;
}

/// How many rows high each label left of the plot area is, or what several that touch are together.
std::vector<int> labelHeights(const QImage &image)
{
    std::vector<int> heights;
    bool inked = false;
    for (int y = 0; y < image.height(); ++y) {
        bool ink = false;
        for (int x = 0; x < plot.x() - 8; ++x)
            ink = ink || image.pixelColor(x, y) != paper;
        if (ink && !inked)
            heights.push_back(0);
        if (ink)
            ++heights.back();
        inked = ink;
    }
    return heights;
}

int labelsIn(const QImage &image)
{
    return int(labelHeights(image).size());
}

} // namespace

class tst_XYChart : public QObject
{
    Q_OBJECT

private slots:
    void partsAreWhereTheyWereAsked_data()
    {
        QTest::addColumn<double>("density");
        QTest::newRow("single") << 1.0;
        QTest::newRow("double") << 2.0;
    }

    void partsAreWhereTheyWereAsked()
    {
        QFETCH(double, density);
        auto chart = chartOf({1000, 1200}, {10, 10});
        chart->yAxis().setScale(0, 40);
        const QImage image = chart->picture(density);
        QCOMPARE(image.size(), QSize(300, 150) * density);
        QCOMPARE(image.devicePixelRatio(), density);

        QCOMPARE(colourAt(image, 0, 0), paper);
        QCOMPARE(colourAt(image, 290, 60), paper);
        // Both edges of the plot area, and the first pixels outside.
        QCOMPARE(colourAt(image, 55, 22), field);
        QCOMPARE(colourAt(image, 249, 22), field);
        QCOMPARE(colourAt(image, 255, 22), paper);
        QCOMPARE(colourAt(image, 55, 19), paper);
        // The axes' middle is the edge of the plot area.
        QCOMPARE(colourAt(image, 48, 40), paper);
        QCOMPARE(colourAt(image, 49, 40), axis);
        QCOMPARE(colourAt(image, 50, 40), axis);
        QCOMPARE(colourAt(image, 51, 40), field);
        QCOMPARE(colourAt(image, 60, 118), field);
        QCOMPARE(colourAt(image, 60, 119), axis);
        QCOMPARE(colourAt(image, 60, 120), axis);
        QCOMPARE(colourAt(image, 60, 121), paper);
        // A tick every 10 of 40 in 100 pixels, with its grid line.
        for (const int y : {20, 45, 70}) {
            QCOMPARE(colourAt(image, 60, y), grid);
            QCOMPARE(colourAt(image, 47, y), axis);
        }
        // The line's value is at 95, its middle in the middle of that pixel.
        QCOMPARE(image.pixelColor(int(100 * density), int(95.5 * density)), line);
        QCOMPARE(colourAt(image, 100, 94 - 1), field);
        QCOMPARE(colourAt(image, 100, 97), field);
    }

    void verticalGridAndTicks()
    {
        const QImage image = chartOf({1000, 1200}, {10, 11})->picture(1);
        // At least 75 seconds apart means every two minutes: 1080 and 1200.
        QCOMPARE(colourAt(image, 130, 22), grid);
        QCOMPARE(colourAt(image, 131, 22), field);
        // None beyond the plot area, at 1200.
        QCOMPARE(colourAt(image, 250, 22), paper);
        QCOMPARE(colourAt(image, 130, 122), axis);
        // A minor tick every 15 seconds, half as long.
        QCOMPARE(colourAt(image, 115, 122), axis);
        QCOMPARE(colourAt(image, 115, 123), paper);
        QCOMPARE(colourAt(image, 130, 124), axis);
    }

    void edgesCanBeDrawn()
    {
        XYChart chart(100, 80, paper, edge);
        PlotArea area;
        area.area = QRect(20, 10, 60, 50);
        area.background = field;
        area.edge = edge;
        chart.setPlotArea(area);
        chart.xAxis().setColours(axis, label);
        const QImage image = chart.picture(1);
        QCOMPARE(colourAt(image, 0, 0), edge);
        QCOMPARE(colourAt(image, 99, 79), edge);
        QCOMPARE(colourAt(image, 1, 1), paper);
        QCOMPARE(colourAt(image, 79, 30), edge);
        QCOMPARE(colourAt(image, 50, 10), edge);
    }

    void aPlotAreaWithoutExtentIsAnEmptyField_data()
    {
        QTest::addColumn<QRect>("area");
        QTest::newRow("no height") << QRect(45, 25, 200, 0);
        QTest::newRow("negative height") << QRect(45, 25, 200, -30);
        QTest::newRow("no width") << QRect(45, 25, 0, 100);
        QTest::newRow("negative width") << QRect(45, 25, -50, 100);
    }

    void aPlotAreaWithoutExtentIsAnEmptyField()
    {
        QFETCH(QRect, area);
        auto chart = chartOf({1000, 1200}, {10, 11});
        PlotArea none;
        none.area = area;
        none.background = field;
        chart->setPlotArea(none);
        QImage blank(300, 150, QImage::Format_RGB32);
        blank.fill(paper);
        QCOMPARE(chart->picture(1), blank);
        QVERIFY(!chart->nearestXValue(100).has_value());
    }

    void aSizeBelowOnePixelCountsAsOne()
    {
        XYChart chart(-5, 0, paper);
        QCOMPARE(chart.picture(1).size(), QSize(1, 1));
    }

    void withoutValuesTheAxesAreBare()
    {
        auto chart = chartOf({noValue, noValue}, {1, 2});
        QCOMPARE(labelsIn(chart->picture(1)), 0);
        QVERIFY(!chart->yValueAt(50).has_value());
        QVERIFY(!chart->yCoordinate(1).has_value());
    }

    void aFlatLineIsNotDrawnOnTheFrame()
    {
        for (const double value : {21.5, 0.0, -20.0, 100.0}) {
            auto chart = chartOf({1000, 1200}, {value, value});
            const int y = chart->yCoordinate(value).value();
            QVERIFY(y > plot.y() + 5);
            QVERIFY(y < plot.y() + plot.height() - 5);
            QCOMPARE(chart->picture(1).pixelColor(150, y), line);
        }
    }

    void oneReadingAloneIsVisible()
    {
        auto chart = chartOf({noValue, 1100, 1150, 1200}, {5, 20, noValue, noValue});
        const QRect dot = extentOf(chart->picture(1), plot, line);
        QVERIFY(dot.contains(150, chart->yCoordinate(20).value()));
        QVERIFY(dot.width() >= 3 && dot.width() <= 7);
        QVERIFY(dot.height() >= 3 && dot.height() <= 7);
    }

    void oneReadingAtTheRightEdgeIsVisible()
    {
        auto chart = chartOf({noValue, 1200}, {noValue, 20});
        QVERIFY(!extentOf(chart->picture(1), plot, line).isNull());
    }

    void gapsStayOpen()
    {
        auto chart = chartOf({1000, 1050, 1100, 1150, 1200}, {20, 20, noValue, 20, 20});
        const QImage image = chart->picture(1);
        const int y = chart->yCoordinate(20).value();
        QCOMPARE(image.pixelColor(75, y), line);
        QVERIFY(extentOf(image, QRect(103, 21, 94, 97), line).isNull());
        QCOMPARE(image.pixelColor(225, y), line);
    }

    void linesEndAtThePlotArea()
    {
        auto chart = chartOf({900, 1300}, {10, 20});
        chart->yAxis().setScale(14, 16);
        const QRect reach = extentOf(chart->picture(1), QRect(0, 0, 300, 150), line);
        QVERIFY(reach.top() >= plot.y());
        QVERIFY(reach.bottom() <= plot.y() + plot.height());
        QVERIFY(reach.left() >= plot.x());
        QVERIFY(reach.right() <= plot.x() + plot.width());
    }

    void valueLabelsNeverCollide_data()
    {
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("least");
        for (const int height : {1, 2, 5, 8, 10, 11, 12})
            QTest::addRow("%d", height) << height << 1;
        for (const int height : {13, 14, 20, 30, 45, 59})
            QTest::addRow("%d", height) << height << 2;
        for (const int height : {60, 100, 300, 1000})
            QTest::addRow("%d", height) << height << 3;
    }

    void valueLabelsNeverCollide()
    {
        QFETCH(int, height);
        QFETCH(int, least);
        const auto heightsFor = [](int plotHeight) {
            XYChart chart(300, plotHeight + 60, paper);
            PlotArea area;
            area.area = QRect(50, 20, 200, plotHeight);
            area.background = field;
            chart.setPlotArea(area);
            chart.xAxis().setScale(1000, 1200);
            chart.yAxis().setColours(axis, label);
            chart.addLineLayer({1000, 1200}).addDataSet({19.3, 23.8}, "line", line);
            return labelHeights(chart.picture(1));
        };
        const std::vector<int> heights = heightsFor(height);
        QVERIFY(int(heights.size()) >= least);
        // A line of text is 13 pixels high.
        QVERIFY(int(heights.size()) <= 2 + height / 13);
        // None is higher than where there is room for all.
        QCOMPARE(*std::max_element(heights.cbegin(), heights.cend()), heightsFor(300).front());
    }

    void labelsThatDoNotFitAreShortenedOrLeftOut()
    {
        for (const double value : {12345678.0, 1.5e-7, 1e200, -1e200}) {
            const QImage image = chartOf({1000, 1200}, {value, value * 1.001})->picture(1);
            // Nothing runs into the ticks.
            for (int y = 0; y < 118; ++y)
                QVERIFY(colourAt(image, 43, y) == paper || colourAt(image, 43, y) == axis);
        }
        QVERIFY(labelsIn(chartOf({1000, 1200}, {12345678, 12346678})->picture(1)) >= 2);
    }

    void dateLabelsStayInThePicture()
    {
        auto chart = emptyChart();
        chart->xAxis().setScale(1000, 1260);
        chart->xAxis().setLabelFormat(
            "'a label that is by far too long for a picture no wider than this one' hh:mm:ss");
        QVERIFY(chart->xLabels().empty());
        chart = emptyChart();
        chart->xAxis().setScale(960, 1200);
        for (const DateAxis::Label &shown : chart->xLabels()) {
            QVERIFY(shown.place.left() >= 0);
            QVERIFY(shown.place.right() <= 300);
        }
        QVERIFY(!chart->xLabels().empty());
    }

    void coordinates()
    {
        auto chart = chartOf({1000, 1100, 1200}, {10, 20, 30});
        chart->yAxis().setScale(0, 50);
        QCOMPARE(chart->xCoordinate(1000).value(), 50);
        QCOMPARE(chart->xCoordinate(1200).value(), 250);
        QCOMPARE(chart->yCoordinate(0).value(), 120);
        QCOMPARE(chart->yCoordinate(50).value(), 20);
        QCOMPARE(chart->xValueAt(150).value(), 1100.0);
        QCOMPARE(chart->yValueAt(70).value(), 25.0);
        QVERIFY(!chart->yCoordinate(noValue).has_value());
        QVERIFY(!chart->xCoordinate(noValue).has_value());
    }

    void nearestSample()
    {
        auto chart = chartOf({500, 1000, noValue, 1080, 1300}, {10, 20, 5, 30, 40});
        QCOMPARE(chart->nearestXValue(0).value(), 1000.0);
        QCOMPARE(chart->nearestXValue(89).value(), 1000.0);
        QCOMPARE(chart->nearestXValue(91).value(), 1080.0);
        // What is not shown is not near.
        QCOMPARE(chart->nearestXValue(250).value(), 1080.0);
        QVERIFY(!emptyChart()->nearestXValue(100).has_value());
    }

    void nearestSampleOfSeveralLayers()
    {
        auto chart = chartOf({1000, 1100}, {1, 2});
        chart->addLineLayer({1040, 1060}).addDataSet({5, 6}, "other", grid);
        QCOMPARE(chart->nearestXValue(92).value(), 1040.0);
        QCOMPARE(chart->nearestXValue(149).value(), 1100.0);
    }

    void samplesWhoseClockWentBackAreDrawnInOrder()
    {
        auto chart = chartOf({1100, 1050, 1200}, {10, 20, 20});
        chart->yAxis().setScale(0, 50);
        const QImage image = chart->picture(1);
        // From the first to the second backwards, and from there on over the first.
        QVERIFY(!extentOf(image, QRect(125, 88, 1, 5), line).isNull());
        QCOMPARE(image.pixelColor(150, 80), line);
        QCOMPARE(image.pixelColor(200, 80), line);
    }

    void theDynamicLayerIsDrawnOverTheFinishedPicture()
    {
        auto chart = chartOf({1000, 1200}, {10, 20});
        const QImage finished = chart->finishedPicture(1);
        chart->dynamicLayer().addDashedLine(150, 20, 120, edge, 1, 1);
        chart->dynamicLayer().addDot({200, 50}, 4, edge);
        const QImage image = chart->picture(1);
        QCOMPARE(image.pixelColor(150, 20), edge);
        QVERIFY(image.pixelColor(150, 21) != edge);
        QCOMPARE(image.pixelColor(150, 22), edge);
        QCOMPARE(image.pixelColor(150, 120), edge);
        QVERIFY(image.pixelColor(151, 22) != edge);
        QCOMPARE(extentOf(image, QRect(190, 40, 20, 20), edge).center(), QPoint(200, 50));
        // The picture under it is the same one, not another drawn alike.
        QCOMPARE(chart->finishedPicture(1).cacheKey(), finished.cacheKey());
        chart->dynamicLayer().clear();
        QCOMPARE(chart->picture(1), finished);
    }

    void aNewDensityIsDrawnAnew()
    {
        auto chart = chartOf({1000, 1200}, {10, 20});
        QCOMPARE(chart->picture(1).size(), QSize(300, 150));
        QCOMPARE(chart->picture(1.5).size(), QSize(450, 225));
        QCOMPARE(chart->picture(2).size(), QSize(600, 300));
    }

    void isSharpAtOneAndAHalfDensity()
    {
        auto chart = chartOf({1000, 1200}, {10, 10});
        chart->yAxis().setScale(0, 40);
        const QImage image = chart->picture(1.5);
        // The axis is exactly three device pixels wide, and nothing is half covered beside it.
        int covered = 0;
        for (int x = 66; x < 84; ++x) {
            const QColor colour = image.pixelColor(x, 50);
            QVERIFY(colour == axis || colour == paper || colour == field);
            covered += colour == axis ? 1 : 0;
        }
        QCOMPARE(covered, 3);
        for (int y = 40; y < 100; ++y)
            QVERIFY(image.pixelColor(100, y) == grid || image.pixelColor(100, y) == field);
    }

    void manyPointsInSeveralLayers()
    {
        std::vector<double> times;
        std::vector<double> values;
        for (int i = 0; i < 100000; ++i) {
            times.push_back(1000 + i * 0.002);
            values.push_back(i == 40000 ? 90 : 20 + i % 7);
        }
        auto chart = chartOf(times, values);
        chart->addLineLayer(times).addDataSet(values, "other", grid);
        const QImage image = chart->picture(1);
        QCOMPARE(extentOf(image, plot, line), QRect());
        const QRect spike(plot.x() + 79, plot.y(), 3, plot.height());
        QVERIFY(extentOf(image, spike, grid).top() <= chart->yCoordinate(85).value());
    }
};

QTEST_MAIN(tst_XYChart)
#include "tst_XYChart.moc"
