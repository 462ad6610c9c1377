#include "ChannelCharts.h"
#include "device/DataInterval.h"

#include <QDateTime>
#include <QTest>

namespace {

const QColor background(0x59, 0x59, 0x59);
const QColor gradientEnd(0x30, 0x30, 0x30);
const QColor gridLine(0x30, 0x30, 0x30);
const QColor axisLine(0xc0, 0xc0, 0xc0);
const QColor axisLabel(0xf4, 0xf4, 0xf4);

std::unique_ptr<chart::XYChart> usualChart(const ChannelLine &line = channel1)
{
    return channelChart(chartLabel, timesEvery(10), allOf(tenSeconds), wave(), line, tenSeconds);
}

/// The gradient from row 25 to 15 above the chart's lower edge.
QColor fieldAt(double y, int height = chartLabel.height())
{
    return blended(background, gradientEnd, (y + 0.5 - 25) / (height - 15 - 25));
}

bool isEmptyPlot(const chart::XYChart &picture)
{
    return picture.layers().empty() && picture.xLabels().empty() && !picture.nearestXValue(100);
}

} // namespace

class tst_ChannelChart : public QObject
{
    Q_OBJECT

private slots:
    void sizes_data()
    {
        QTest::addColumn<QSize>("label");
        QTest::newRow("usual") << QSize(800, 180);
        QTest::newRow("smallest of the form") << QSize(584, 123);
        QTest::newRow("full screen") << QSize(1500, 480);
        QTest::newRow("one pixel of plot") << QSize(61, 56);
    }

    void sizes()
    {
        QFETCH(QSize, label);
        const auto picture = channelChart(label, timesEvery(10), allOf(tenSeconds), wave(), channel1, tenSeconds);
        QCOMPARE(picture->size(), QSize(label.width() - 10, label.height()));
        QCOMPARE(picture->plotArea().area, QRect(45, 25, label.width() - 60, label.height() - 55));
        QCOMPARE(picture->picture(1).size(), picture->size());
        QVERIFY(!picture->layers().empty());
    }

    void colours_data()
    {
        QTest::addColumn<int>("density");
        QTest::newRow("single") << 1;
        QTest::newRow("double") << 2;
    }

    void colours()
    {
        QFETCH(int, density);
        const auto picture = usualChart();
        const QImage image = picture->picture(density);
        QCOMPARE(image.size(), QSize(790, 180) * density);
        const auto at = [&](int x, int y) {
            return image.pixelColor(x * density, y * density);
        };
        // Around the plot, the transparent edges included.
        for (const QPoint &outside : {QPoint(0, 0), QPoint(789, 179), QPoint(300, 24), QPoint(785, 90)})
            QCOMPARE(at(outside.x(), outside.y()), background);
        // The axes, two pixels wide, half over the plot.
        for (const int y : {40, 80, 100}) {
            QVERIFY(isNear(at(44, y), blended(background, axisLine, halfShare)));
            QVERIFY(isNear(at(45, y), blended(fieldAt(y), axisLine, halfShare), 2));
            QVERIFY(!isNear(at(46, y), blended(fieldAt(y), axisLine, halfShare), 20));
        }
        QVERIFY(isNear(at(60, 149), blended(fieldAt(149), axisLine, halfShare), 2));
        QVERIFY(isNear(at(60, 150), blended(background, axisLine, halfShare)));
        QCOMPARE(at(60, 152), background);
    }

    void fieldAndHorizontalGrid_data()
    {
        QTest::addColumn<int>("height");
        QTest::newRow("usual") << 180;
        QTest::newRow("smallest of the form") << 123;
        QTest::newRow("full screen") << 480;
    }

    /// Every pixel of a column beside the vertical grid lines is the gradient's, a grid line's or the line's.
    void fieldAndHorizontalGrid()
    {
        QFETCH(int, height);
        const QSize label(800, height);
        const auto picture = channelChart(label, timesEvery(10), allOf(tenSeconds), allOf(21.5), channel1, tenSeconds);
        const QImage image = picture->picture(1);
        const int x = picture->xCoordinate(newestTime).value() - 5;
        const int line = picture->yCoordinate(21.5).value();
        const auto division = picture->yAxis().division(picture->plotArea(), chart::Range{21.5, 21.5});
        QVERIFY(division.has_value());
        QList<int> grid;
        for (const double tick : division->ticks.values)
            grid << picture->yCoordinate(tick).value();
        QVERIFY(grid.size() >= 3);
        // The axis covers the last row.
        for (int y = 25; y < 25 + height - 55 - 1; ++y) {
            if (std::abs(y - line) <= 2)
                continue;
            const QColor alone = fieldAt(y, height);
            const QColor wanted = grid.contains(y) ? blended(alone, gridLine, halfShare) : alone;
            QVERIFY2(isNear(image.pixelColor(x, y), wanted, 2), qPrintable(QString::number(y)));
        }
    }

    void verticalGridAndTicks_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("majorSeconds");
        QTest::addColumn<int>("minorSeconds");
        // 40 minutes in 600 pixels: 300 seconds are 75 of them, and 60 are 15. A pixel less, and neither suffices.
        QTest::newRow("just wide enough") << 600 << 300 << 60;
        QTest::newRow("a pixel less") << 599 << 600 << 120;
    }

    /// Row by row: grid lines in the plot, below it the upper part of all ticks and the lower part of the major ones.
    void verticalGridAndTicks()
    {
        QFETCH(int, width);
        QFETCH(int, majorSeconds);
        QFETCH(int, minorSeconds);
        const auto picture =
            channelChart(QSize(width + 60, 180), timesEvery(10), allOf(tenSeconds), allOf(21.5), channel1, tenSeconds);
        const QImage image = picture->picture(1);
        const auto columnsOf = [&](int seconds) {
            QList<int> columns;
            for (int at = int(newestTime) - 2400; at <= int(newestTime); ++at) {
                if (at % seconds == 0)
                    columns << picture->xCoordinate(at).value();
            }
            return columns;
        };
        const auto columnsLike = [&](int y, const QColor &colour) {
            QList<int> columns;
            for (int x = 47; x < 45 + width; ++x) {
                if (isNear(image.pixelColor(x, y), colour, 2))
                    columns << x;
            }
            return columns;
        };
        const QColor tick = blended(background, axisLine, halfShare);
        QCOMPARE(columnsLike(30, blended(fieldAt(30), gridLine, halfShare)), columnsOf(majorSeconds));
        QCOMPARE(columnsLike(152, tick), columnsOf(minorSeconds));
        QCOMPARE(columnsLike(154, tick), columnsOf(majorSeconds));
    }

    /// On so dark a field pixels do not tell well how far one can look through.
    void gridLinesAreHalfTransparent()
    {
        const QColor halfTransparent(0x30, 0x30, 0x30, 0x7f);
        QCOMPARE(usualChart()->plotArea().horizontalGrid, halfTransparent);
        QCOMPARE(usualChart()->plotArea().verticalGrid, halfTransparent);
    }

    void labelsAreHalfTransparent()
    {
        const QImage image = usualChart()->picture(1);
        int brightest = 0;
        for (int y = 156; y < 170; ++y) {
            for (int x = 60; x < 780; ++x)
                brightest = std::max(brightest, image.pixelColor(x, y).green());
        }
        const int full = blended(background, axisLabel, halfShare).green();
        QVERIFY(brightest <= full + 1);
        QVERIFY(brightest > full - 25);
    }

    void linesHaveTheirColours_data()
    {
        QTest::addColumn<bool>("first");
        QTest::newRow("channel 1") << true;
        QTest::newRow("channel 2") << false;
    }

    void linesHaveTheirColours()
    {
        QFETCH(bool, first);
        const ChannelLine &line = first ? channel1 : channel2;
        const auto picture = channelChart(chartLabel, timesEvery(10), allOf(tenSeconds), allOf(21.5), line, tenSeconds);
        const int y = picture->yCoordinate(21.5).value();
        QVERIFY(y > 30 && y < 145);
        QCOMPARE(picture->picture(1).pixelColor(400, y), line.colour);
        QCOMPARE(picture->layers().front()->dataSets().front()->name, line.name);
    }

    void theAxisSpansAsManyIntervalsAsSamples_data()
    {
        QTest::addColumn<int>("intervalMs");
        QTest::addColumn<double>("span");
        QTest::newRow("10 sec") << 10000 << 2400.0;
        QTest::newRow("1 sec") << 1000 << 240.0;
        QTest::newRow("10 min") << 600000 << 144000.0;
        QTest::newRow("no selectable one") << 2000 << 480.0;
        QTest::newRow("parts of a second are cut off") << 1003 << 240.0;
        QTest::newRow("the longest") << 8947848 << 2147483.0;
    }

    void theAxisSpansAsManyIntervalsAsSamples()
    {
        QFETCH(int, intervalMs);
        QFETCH(double, span);
        const auto picture = channelChart(chartLabel, timesEvery(10), allOf(tenSeconds), wave(), channel1, intervalMs);
        QCOMPARE(picture->xValueAt(785).value(), newestTime);
        QCOMPARE(picture->xValueAt(45).value(), newestTime - span);
        QCOMPARE(picture->xCoordinate(newestTime).value(), 785);
    }

    void theCaptionNamesTheInterval_data()
    {
        QTest::addColumn<int>("intervalMs");
        QTest::addColumn<QString>("text");
        QTest::newRow("1 sec") << 1000 << "View Length : 240 samples   Interval : 1 sec ";
        QTest::newRow("5 sec") << 5000 << "View Length : 240 samples   Interval : 5 sec ";
        QTest::newRow("10 sec") << 10000 << "View Length : 240 samples   Interval : 10 sec ";
        QTest::newRow("1 min") << 60000 << "View Length : 240 samples   Interval : 1 min ";
        QTest::newRow("5 min") << 300000 << "View Length : 240 samples   Interval : 5 min ";
        QTest::newRow("10 min") << 600000 << "View Length : 240 samples   Interval : 10 min ";
        QTest::newRow("any other") << 2000 << "View Length : 240 samples   Interval :  ";
    }

    void theCaptionNamesTheInterval()
    {
        QFETCH(int, intervalMs);
        QTEST(channelSpanText(intervalMs), "text");
    }

    void impossibleIntervalsGiveAnEmptyPlot_data()
    {
        QTest::addColumn<int>("intervalMs");
        QTest::newRow("none") << 0;
        QTest::newRow("negative") << -10000;
        QTest::newRow("shorter than a second in all") << 4;
        QTest::newRow("overflowing") << 8947849;
        QTest::newRow("largest") << std::numeric_limits<int>::max();
    }

    void impossibleIntervalsGiveAnEmptyPlot()
    {
        QFETCH(int, intervalMs);
        const auto picture = channelChart(chartLabel, timesEvery(10), allOf(tenSeconds), wave(), channel1, intervalMs);
        QVERIFY(isEmptyPlot(*picture));
        QCOMPARE(picture->picture(1).size(), QSize(790, 180));
    }

    void withoutANewestTimeThePlotIsEmpty()
    {
        History times = timesEvery(10);
        times.back() = chart::noValue;
        const auto picture = channelChart(chartLabel, times, allOf(tenSeconds), wave(), channel1, tenSeconds);
        QVERIFY(isEmptyPlot(*picture));
        QVERIFY(isNear(picture->picture(1).pixelColor(400, 90), fieldAt(90), 2));
        QVERIFY(isEmptyPlot(*channelChart(chartLabel, allOf(chart::noValue), allOf(tenSeconds), allOf(chart::noValue),
                                          channel1, 1000)));
    }

    void tooLittleRoomGivesAnEmptyField_data()
    {
        QTest::addColumn<QSize>("label");
        QTest::newRow("height 55") << QSize(800, 55);
        QTest::newRow("height 0") << QSize(800, 0);
        QTest::newRow("width 60") << QSize(60, 180);
        QTest::newRow("width 10") << QSize(10, 180);
        QTest::newRow("nothing") << QSize(0, 0);
        QTest::newRow("less than nothing") << QSize(-20, -20);
    }

    void tooLittleRoomGivesAnEmptyField()
    {
        QFETCH(QSize, label);
        const auto picture = channelChart(label, timesEvery(10), allOf(tenSeconds), wave(), channel1, tenSeconds);
        const QImage image = picture->picture(1);
        QCOMPARE(image.size(), QSize(std::max(1, label.width() - 10), std::max(1, label.height())));
        QCOMPARE(extentOf(image, image.rect(), background), image.rect());
        QCOMPARE(extentOf(image, image.rect(), channel1.colour), QRect());
    }

    void oneReadingAloneIsVisible()
    {
        History times = allOf(chart::noValue);
        History values = times;
        times.back() = newestTime;
        values.back() = 23.4;
        const auto picture = channelChart(chartLabel, times, allOf(tenSeconds), values, channel1, tenSeconds);
        const QImage image = picture->picture(1);
        const QRect dot = extentOf(image, image.rect(), channel1.colour);
        QVERIFY(dot.contains(785, picture->yCoordinate(23.4).value()));
    }

    void lostReadingsLeaveAGap()
    {
        History values = allOf(20);
        for (size_t i = 100; i < 140; ++i)
            values[i] = chart::noValue;
        const auto picture = channelChart(chartLabel, timesEvery(10), allOf(tenSeconds), values, channel1, tenSeconds);
        const QImage image = picture->picture(1);
        const int from = picture->xCoordinate(timesEvery(10)[99]).value();
        const int to = picture->xCoordinate(timesEvery(10)[140]).value();
        QCOMPARE(extentOf(image, QRect(from + 3, 25, to - from - 6, 125), channel1.colour), QRect());
        QVERIFY(!extentOf(image, QRect(from - 3, 25, 3, 125), channel1.colour).isNull());
        QVERIFY(!extentOf(image, QRect(to + 1, 25, 3, 125), channel1.colour).isNull());
    }

    void timeWithoutReadingsIsAGap_data()
    {
        QTest::addColumn<int>("intervalMs");
        QTest::addColumn<double>("distance"); // of the neighbours, in intervals
        QTest::addColumn<bool>("gap");
        for (const int ms : selectableIntervals()) {
            QTest::addRow("%d ms, none missed", ms) << ms << 1.0 << false;
            QTest::addRow("%d ms, a late one", ms) << ms << 1.5 << false;
            QTest::addRow("%d ms, later still", ms) << ms << 1.51 << true;
            QTest::addRow("%d ms, one missed", ms) << ms << 2.0 << true;
            QTest::addRow("%d ms, a long outage", ms) << ms << 60.0 << true;
        }
    }

    void timeWithoutReadingsIsAGap()
    {
        QFETCH(int, intervalMs);
        QFETCH(double, distance);
        QFETCH(bool, gap);
        constexpr size_t firstAfter = 140;
        History times = timesEvery(intervalMs / 1000);
        for (size_t i = 0; i < firstAfter; ++i)
            times[i] -= (distance - 1) * intervalMs / 1000;
        const auto picture = channelChart(chartLabel, times, allOf(intervalMs), allOf(20), channel1, intervalMs);
        const QImage image = picture->picture(1);
        const int y = picture->yCoordinate(20).value();
        const int from = picture->xCoordinate(times[firstAfter - 1]).value();
        const int to = picture->xCoordinate(times[firstAfter]).value();
        QCOMPARE(image.pixelColor((from + to) / 2, y) != channel1.colour, gap);
        QCOMPARE(image.pixelColor(from - 1, y), channel1.colour);
        QCOMPARE(image.pixelColor(to + 2, y), channel1.colour);
        // All samples are still there to be read.
        QCOMPARE(picture->layers().front()->xValues(), std::vector<double>(times.cbegin(), times.cend()));
    }

    void samplesAreJoinedAtTheIntervalOfTheirTime_data()
    {
        QTest::addColumn<int>("before");
        QTest::addColumn<int>("after");
        QTest::newRow("polled more often since") << 60000 << 10000;
        QTest::newRow("polled less often since") << 10000 << 60000;
    }

    /// Before the change of interval and after it one reading each is missing.
    void samplesAreJoinedAtTheIntervalOfTheirTime()
    {
        QFETCH(int, before);
        QFETCH(int, after);
        constexpr int changeAt = 220;
        const QList<int> missedBefore{changeAt - 5, changeAt + 10};
        History times;
        History intervals;
        double time = newestTime;
        for (int i = historyLength - 1; i >= 0; --i) {
            times[size_t(i)] = time;
            intervals[size_t(i)] = i < changeAt ? before : after;
            time -= intervals[size_t(i)] / 1000 * (missedBefore.contains(i) ? 2 : 1);
        }
        const auto picture = channelChart(QSize(3000, 180), times, intervals, allOf(20), channel1, after);
        const QImage image = picture->picture(1);
        const int y = picture->yCoordinate(20).value();
        for (int i = changeAt - 10; i < historyLength; ++i) {
            const int middle = picture->xCoordinate((times[size_t(i) - 1] + times[size_t(i)]) / 2).value();
            QCOMPARE(image.pixelColor(middle, y) != channel1.colour, missedBefore.contains(i));
        }
    }

    void samplesOfAClockThatWentBackAreDrawn()
    {
        History times = timesEvery(10);
        for (size_t i = 200; i < times.size(); ++i)
            times[i] -= 1000;
        const auto picture = channelChart(chartLabel, times, allOf(tenSeconds), wave(), channel1, tenSeconds);
        QCOMPARE(picture->xCoordinate(times.back()).value(), 785);
        QVERIFY(!extentOf(picture->picture(1), QRect(45, 25, 740, 125), channel1.colour).isNull());
        QCOMPARE(picture->nearestXValue(785).value(), times.back());
    }
};

QTEST_MAIN(tst_ChannelChart)
#include "tst_ChannelChart.moc"
