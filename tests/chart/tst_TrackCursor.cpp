#include "ChartPixels.h"
#include "chart/NoValue.h"
#include "chart/TrackCursor.h"
#include "chart/XYChart.h"

#include <QDateTime>
#include <QPainter>
#include <QTest>

namespace {

constexpr double newestTime = 1700000000;
constexpr int sampleCount = 240;
constexpr int sampleDistance = 10;
constexpr QSize pictureSize(790, 180);
const QString span = QStringLiteral("Four hours and a bit");

struct Line
{
    QString name;
    QColor colour;
};
const Line red{QStringLiteral("CH1"), QColor(255, 0, 0)};
const Line green{QStringLiteral("CH2"), QColor(0, 204, 0)};

const QColor background(0x59, 0x59, 0x59);
const QColor dash(0xf4, 0xf4, 0xf4);
const QColor timeBox(0x37, 0x37, 0x37);
constexpr QRect plot(45, 25, 740, 125);
constexpr QRect captions(45, 0, 745, 24);

chart::TextBlock block(bool bold)
{
    return {chart::textFont(QStringLiteral("Arial"), 8, bold), Qt::white};
}

/// The picture as it should be: the finished one with these captions.
class Expected
{
public:
    Expected(chart::XYChart &picture, double density) : m_image(picture.finishedPicture(density)) {}

    Expected &with(const chart::TextBlock &text, double left)
    {
        QPainter painter(&m_image);
        text.draw(painter, {left, 22}, Qt::AlignLeft | Qt::AlignBottom);
        return *this;
    }
    Expected &withLegend(const Line &line, const QString &value)
    {
        chart::TextBlock legend = block(true);
        legend.addLineIcon(line.colour).add(" " + line.name + ": ").addBoxed(" " + value + " ", line.colour);
        return with(legend, 50);
    }
    Expected &withDate(double seconds, double left = 145)
    {
        const QString text = QDateTime::fromSecsSinceEpoch(qint64(seconds)).toString("yyyy-MM-dd hh:mm:ss");
        return with(block(false).add("[ " + text + " ]"), left);
    }
    Expected &withSpan() { return with(block(false).add(span), 545); }
    QImage captionRow() const { return cut(m_image, captions); }
    const QImage &image() const { return m_image; }

    static QImage cut(const QImage &image, const QRect &area)
    {
        const int density = int(image.devicePixelRatio());
        return image.copy(QRect(area.topLeft() * density, area.size() * density));
    }

private:
    QImage m_image;
};

/// The moments of the samples, the last at newestTime.
std::vector<double> sampleTimes()
{
    std::vector<double> times;
    for (int i = 0; i < sampleCount; ++i)
        times.push_back(newestTime - double(sampleCount - 1 - i) * sampleDistance);
    return times;
}

std::unique_ptr<chart::XYChart> emptyChart(const QSize &size = pictureSize)
{
    auto picture = std::make_unique<chart::XYChart>(size.width(), size.height(), background);
    chart::PlotArea area;
    area.area = QRect(plot.topLeft(), size - QSize(50, 55));
    area.background = background;
    picture->setPlotArea(area);
    picture->xAxis().setColours(Qt::white, Qt::white);
    return picture;
}

std::unique_ptr<chart::XYChart> chartOf(std::vector<double> times, const std::vector<double> &values,
                                        const Line &line = red, const QSize &size = pictureSize)
{
    auto picture = emptyChart(size);
    picture->xAxis().setScale(newestTime - sampleCount * sampleDistance, newestTime);
    picture->addLineLayer(std::move(times)).addDataSet(values, line.name, line.colour);
    return picture;
}

std::unique_ptr<chart::XYChart> flatChart(double value = 21.5, const Line &line = red, const QSize &size = pictureSize)
{
    return chartOf(sampleTimes(), std::vector<double>(sampleCount, value), line, size);
}

/// The columns in which the value label stands, its dot apart, on a line of which nothing else is as high.
QRect labelOf(const QImage &image, const chart::XYChart &picture, double value, const QColor &colour)
{
    const int y = picture.yCoordinate(value).value();
    return extentOf(image, QRect(plot.x(), y + 5, plot.width(), 1), colour);
}

} // namespace

class tst_TrackCursor : public QObject
{
    Q_OBJECT

private slots:
    void aDashedLineOverTheWholePlot_data()
    {
        QTest::addColumn<int>("density");
        QTest::newRow("single") << 1;
        QTest::newRow("double") << 2;
    }

    void aDashedLineOverTheWholePlot()
    {
        QFETCH(int, density);
        const auto picture = flatChart();
        drawTrackCursor(*picture, 400, span);
        const int x = picture->xCoordinate(picture->nearestXValue(400).value()).value();
        const QImage before = picture->finishedPicture(density);
        const QImage after = picture->picture(density);
        for (int y = plot.top(); y <= plot.y() + plot.height(); ++y) {
            if (std::abs(y - picture->yCoordinate(21.5).value()) < 10)
                continue;
            const QColor under = before.pixelColor(x * density, y * density);
            const QColor wanted = (y - plot.top()) % 2 == 0 ? blended(under, dash, halfShare) : under;
            for (int part = 0; part < density; ++part)
                QVERIFY(isNear(after.pixelColor(x * density + part, y * density + part), wanted, 2));
        }
        QCOMPARE(after.pixelColor(x * density, 24 * density), before.pixelColor(x * density, 24 * density));
        QCOMPARE(after.pixelColor((x + 1) * density, 30 * density), before.pixelColor((x + 1) * density, 30 * density));
        QCOMPARE(after.pixelColor(x * density - 1, 30 * density), before.pixelColor(x * density - 1, 30 * density));
    }

    void standsAtTheNearestSample_data()
    {
        QTest::addColumn<int>("mouse");
        QTest::addColumn<int>("sample");
        // A sample every 3.083 pixels, the last at 785.
        QTest::newRow("newest") << 785 << 239;
        QTest::newRow("beyond the newest") << 2000 << 239;
        QTest::newRow("next to it") << 783 << 238;
        QTest::newRow("oldest shown") << 45 << 0;
        QTest::newRow("before it") << -7 << 0;
        QTest::newRow("in between") << 415 << 119;
    }

    void standsAtTheNearestSample()
    {
        QFETCH(int, mouse);
        QFETCH(int, sample);
        const double time = sampleTimes()[size_t(sample)];
        const auto picture = flatChart();
        drawTrackCursor(*picture, mouse, span);
        QCOMPARE(Expected::cut(picture->picture(1), captions),
                 Expected(*picture, 1).withLegend(red, "21.50").withDate(time).withSpan().captionRow());
        const QImage image = picture->picture(1);
        const QRect dot = extentOf(image, QRect(plot.x() - 10, plot.y(), plot.width() + 20, plot.height()), red.colour);
        QVERIFY(dot.contains(picture->xCoordinate(time).value(), picture->yCoordinate(21.5).value() + 3));
    }

    void inAGapItStandsAtASampleBesideIt_data()
    {
        QTest::addColumn<int>("mouse");
        QTest::addColumn<int>("sample");
        QTest::newRow("nearer to its beginning") << 400 << 100;
        QTest::newRow("nearer to its end") << 450 << 160;
    }

    void inAGapItStandsAtASampleBesideIt()
    {
        QFETCH(int, mouse);
        QFETCH(int, sample);
        std::vector<double> times = sampleTimes();
        std::vector<double> values(sampleCount, 20);
        std::fill(values.begin() + 160, values.end(), 30);
        times.erase(times.begin() + 101, times.begin() + 160);
        values.erase(values.begin() + 101, values.begin() + 160);
        const auto picture = chartOf(times, values);
        picture->layers().front()->setLargestStep(1.5 * sampleDistance);
        drawTrackCursor(*picture, mouse, span);
        Expected expected(*picture, 1);
        expected.withLegend(red, sample == 100 ? "20.00" : "30.00").withDate(sampleTimes()[size_t(sample)]).withSpan();
        QCOMPARE(Expected::cut(picture->picture(1), captions), expected.captionRow());
    }

    void theTimeStandsBelowTheAxis_data()
    {
        QTest::addColumn<int>("mouse");
        QTest::newRow("middle") << 400;
        QTest::newRow("right edge") << 785;
        QTest::newRow("left edge") << 45;
    }

    void theTimeStandsBelowTheAxis()
    {
        QFETCH(int, mouse);
        const auto picture = flatChart();
        drawTrackCursor(*picture, mouse, span);
        const double time = picture->nearestXValue(mouse).value();
        const QString text = QDateTime::fromSecsSinceEpoch(qint64(time)).toString("hh:mm:ss");
        chart::TextBlock wanted = block(true);
        wanted.addBoxed(" " + text + " ", timeBox, QColor(0xe6, 0xe6, 0xe6));
        const QSize size = wanted.size().toSize();
        const int left =
            std::max(0, std::min(picture->xCoordinate(time).value() - size.width() / 2, 790 - size.width()));

        const QImage image = picture->picture(1);
        const QRect box(QPoint(left, 156), size);
        QCOMPARE(extentOf(image, QRect(0, 151, 790, 29), timeBox), box);
        QImage drawn(image);
        QPainter painter(&drawn);
        wanted.draw(painter, box.topLeft(), Qt::AlignLeft | Qt::AlignTop);
        QCOMPARE(image, drawn);
    }

    void nothingHidesTheDateOrALabelOfTheAxis_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("density");
        QTest::newRow("usual") << pictureSize << 1;
        QTest::newRow("double density") << pictureSize << 2;
        QTest::newRow("smallest of the station") << QSize(574, 123) << 1;
    }

    void nothingHidesTheDateOrALabelOfTheAxis()
    {
        QFETCH(QSize, size);
        QFETCH(int, density);
        const auto picture = flatChart(21.5, red, size);
        const QImage alone = picture->finishedPicture(density);
        const chart::PlotArea &plotArea = picture->plotArea();
        QVERIFY(picture->xLabels().size() > 2);
        // The lowest value ends above the row of times.
        const QRect besideAxis(0, plotArea.bottom() + 6, plotArea.left(), 2);
        const QImage cut = Expected::cut(alone, besideAxis);
        QCOMPARE(extentOf(cut, cut.rect(), background), cut.rect());
        for (int mouse = plotArea.left(); mouse <= plotArea.right(); mouse += 7) {
            drawTrackCursor(*picture, mouse, {});
            const QImage image = picture->picture(density);
            for (const chart::DateAxis::Label &label : picture->xLabels()) {
                const QRect letters = label.place.toRect().adjusted(0, 2, 0, 0);
                const QRect below = letters.translated(0, size.height() - label.place.toRect().bottom() - 1);
                const QImage wanted = Expected::cut(alone, letters);
                QVERIFY(Expected::cut(image, letters) == wanted || Expected::cut(image, below) == wanted);
            }
            const double time = picture->nearestXValue(mouse).value();
            Expected expected(*picture, density);
            expected.withLegend(red, "21.50").withDate(time);
            const QRect captionRow(captions.topLeft(), QSize(plotArea.area.width(), captions.height()));
            QCOMPARE(Expected::cut(image, captionRow), Expected::cut(expected.image(), captionRow));
        }
    }

    void anAxisLabelThatStepsAsideLeavesNothingBehind()
    {
        const auto picture = flatChart();
        const QRect place = picture->xLabels()[1].place.toRect();
        // Half beside it.
        drawTrackCursor(*picture, place.right() + 10, span);
        const QRect left(place.left(), place.top(), 10, 180 - place.height() - place.top());
        QCOMPARE(extentOf(picture->picture(1), left, background), left);
    }

    void withoutRoomBelowAxisLabelsUnderTheTimeAreHiddenWhole()
    {
        const auto picture = flatChart();
        chart::PlotArea area = picture->plotArea();
        area.area.setHeight(area.area.height() + 1);
        picture->setPlotArea(area);
        const QRect place = picture->xLabels()[1].place.toRect();
        drawTrackCursor(*picture, place.right() + 10, span);
        const QImage image = picture->picture(1);
        QCOMPARE(extentOf(image, QRect(place.left(), place.top(), 10, 180 - place.top()), background),
                 QRect(place.left(), place.top(), 10, 180 - place.top()));
        QCOMPARE(image.copy(place.left(), 172, place.width(), 8),
                 picture->finishedPicture(1).copy(1, 172, place.width(), 8));
    }

    void theValueStandsOnTheSideWithMoreRoom_data()
    {
        QTest::addColumn<int>("mouse");
        QTest::addColumn<bool>("rightOfThePoint");
        QTest::newRow("left half") << 100 << true;
        QTest::newRow("middle") << 415 << true;
        QTest::newRow("right half") << 420 << false;
        QTest::newRow("right edge") << 785 << false;
    }

    void theValueStandsOnTheSideWithMoreRoom()
    {
        QFETCH(int, mouse);
        QFETCH(bool, rightOfThePoint);
        for (const Line &line : {red, green}) {
            const auto picture = flatChart(21.5, line);
            drawTrackCursor(*picture, mouse, span);
            const int x = picture->xCoordinate(picture->nearestXValue(mouse).value()).value();
            const int y = picture->yCoordinate(21.5).value();
            const QRect label = labelOf(picture->picture(1), *picture, 21.5, line.colour);
            const int width = int(block(true).add(" 21.50 ").size().width());
            const int left = rightOfThePoint ? x + 5 : x - 5 - width;
            QCOMPARE(label, QRect(left, y + 5, width, 1));
        }
    }

    void theDotHasARadiusOfFour()
    {
        const auto picture = flatChart();
        drawTrackCursor(*picture, 400, span);
        const int x = picture->xCoordinate(picture->nearestXValue(400).value()).value();
        const int y = picture->yCoordinate(21.5).value();
        const QImage image = picture->picture(1);
        // The column through its middle; the line itself is no higher than two pixels.
        const QRect column = extentOf(image, QRect(x, y - 20, 1, 40), red.colour);
        // Its rounded ends are mixed with what lies under them.
        QVERIFY(column.height() >= 7 && column.height() <= 9);
        QCOMPARE(column.center().y(), y);
    }

    void captionsStandAboveThePlot_data()
    {
        QTest::addColumn<int>("density");
        QTest::newRow("single") << 1;
        QTest::newRow("double") << 2;
    }

    void captionsStandAboveThePlot()
    {
        QFETCH(int, density);
        const auto picture = flatChart(20, green);
        drawTrackCursor(*picture, 785, span);
        QCOMPARE(Expected::cut(picture->picture(density), captions),
                 Expected(*picture, density).withLegend(green, "20.00").withDate(newestTime).withSpan().captionRow());
    }

    void aMissingValueReadsNotAvailable()
    {
        std::vector<double> values(sampleCount, 20);
        values.back() = chart::noValue;
        const auto picture = chartOf(sampleTimes(), values);
        drawTrackCursor(*picture, 785, span);
        QCOMPARE(Expected::cut(picture->picture(1), captions),
                 Expected(*picture, 1).withLegend(red, "N/A").withDate(newestTime).withSpan().captionRow());
        // There is neither dot nor label: the line ends with the sample before.
        QCOMPARE(extentOf(picture->picture(1), QRect(780, 25, 10, 125), Qt::white), QRect());
        QVERIFY(extentOf(picture->picture(1), QRect(45, 25, 745, 125), red.colour).height() <= 3);
    }

    void aValueOutsideThePlotHasNoLabel()
    {
        const auto picture = flatChart(20);
        picture->yAxis().setScale(30, 40);
        drawTrackCursor(*picture, 400, span);
        QCOMPARE(extentOf(picture->picture(1), QRect(0, 25, 790, 155), red.colour), QRect());
        QVERIFY(!extentOf(picture->picture(1), captions, red.colour).isNull());
    }

    void legendsOfSeveralLinesStandInReverseOrder()
    {
        const auto picture = flatChart();
        chart::LineLayer &layer = *picture->layers().front();
        layer.addDataSet({}, QString(), Qt::blue);
        layer.addDataSet({}, "hidden", Qt::transparent);
        picture->addLineLayer({newestTime}).addDataSet({5}, "CH2", green.colour);
        drawTrackCursor(*picture, 785, span);
        chart::TextBlock legend = block(true);
        legend.addLineIcon(green.colour).add(" CH2: ").addBoxed(" 5.00 ", green.colour);
        legend.addLineIcon(red.colour).add(" CH1: ").addBoxed(" 21.50 ", red.colour);
        Expected expected(*picture, 1);
        // Longer than its room, it moves the date to the right.
        expected.with(legend, 50).withDate(newestTime, 50 + legend.size().width() + 8).withSpan();
        QCOMPARE(Expected::cut(picture->picture(1), captions), expected.captionRow());
    }

    void captionsThatDoNotFitAreLeftOut()
    {
        // 300 pixels hold the legend and the date, but not the span.
        const auto picture = flatChart(20, red, {300, 180});
        drawTrackCursor(*picture, 100, span);
        Expected expected(*picture, 1);
        expected.withLegend(red, "20.00").withDate(picture->nearestXValue(100).value());
        QCOMPARE(Expected::cut(picture->picture(1), captions), expected.captionRow());
    }

    void withoutDataThereIsNoTime()
    {
        const auto picture = emptyChart();
        drawTrackCursor(*picture, picture->plotArea().right(), span);
        const QImage image = picture->picture(1);
        QCOMPARE(extentOf(image, QRect(0, 151, 790, 29), timeBox), QRect());
        QCOMPARE(Expected::cut(image, captions), Expected(*picture, 1).withSpan().captionRow());
        QVERIFY(isNear(image.pixelColor(785, 25), blended(background, dash, halfShare)));
        QCOMPARE(image.pixelColor(785, 26), background);
    }

    void timesThatAreMissingAreSkipped()
    {
        std::vector<double> times = sampleTimes();
        times[100] = chart::noValue;
        const auto picture = chartOf(times, std::vector<double>(sampleCount, 20));
        const int x = picture->xCoordinate(sampleTimes()[100]).value();
        const double nearest = picture->nearestXValue(x).value();
        QVERIFY(nearest == times[99] || nearest == times[101]);
    }

    void anEmptyFieldHasNoCursor()
    {
        const auto picture = flatChart(20, red, {790, 55});
        drawTrackCursor(*picture, 400, span);
        QVERIFY(picture->dynamicLayer().isEmpty());
    }

    void aNewCursorTakesThePlaceOfTheOld()
    {
        const auto picture = flatChart();
        drawTrackCursor(*picture, 100, span);
        const QImage first = picture->picture(1);
        drawTrackCursor(*picture, 600, span);
        QVERIFY(picture->picture(1) != first);
        drawTrackCursor(*picture, 100, span);
        QCOMPARE(picture->picture(1), first);
    }

    void longValuesAreShortened()
    {
        const auto picture = flatChart(1e200);
        drawTrackCursor(*picture, 785, span);
        QVERIFY(labelOf(picture->picture(1), *picture, 1e200, red.colour).width() < 120);
    }
};

QTEST_MAIN(tst_TrackCursor)
#include "tst_TrackCursor.moc"
