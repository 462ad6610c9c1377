#include "ChannelCharts.h"
#include "views/TrackCursor.h"

#include <QDateTime>
#include <QPainter>
#include <QTest>

namespace {

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
    Expected &withLegend(const ChannelLine &line, const QString &value)
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
    Expected &withSpan(const QString &interval)
    {
        return with(block(false).add("View Length : 240 samples").add("   Interval : " + interval + " "), 545);
    }
    QImage captionRow() const { return cut(m_image, captions); }

    static QImage cut(const QImage &image, const QRect &area)
    {
        const int density = int(image.devicePixelRatio());
        return image.copy(QRect(area.topLeft() * density, area.size() * density));
    }

private:
    QImage m_image;
};

std::unique_ptr<chart::XYChart> flatChart(double value = 21.5, const ChannelLine &line = channel1)
{
    return channelChart(chartLabel, timesEvery(10), allOf(value), line, tenSeconds);
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
        drawTrackCursor(*picture, 400, tenSeconds);
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
        const double time = timesEvery(10)[size_t(sample)];
        const auto picture = flatChart();
        drawTrackCursor(*picture, mouse, tenSeconds);
        QCOMPARE(Expected::cut(picture->picture(1), captions),
                 Expected(*picture, 1).withLegend(channel1, "21.50").withDate(time).withSpan("10 sec").captionRow());
        const QImage image = picture->picture(1);
        const QRect dot =
            extentOf(image, QRect(plot.x() - 10, plot.y(), plot.width() + 20, plot.height()), channel1.colour);
        QVERIFY(dot.contains(picture->xCoordinate(time).value(), picture->yCoordinate(21.5).value() + 3));
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
        drawTrackCursor(*picture, mouse, tenSeconds);
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

    void axisLabelsUnderTheTimeAreHiddenWhole()
    {
        const auto picture = flatChart();
        const std::vector<QRectF> places = picture->xLabelPlaces();
        QVERIFY(places.size() > 2);
        const QRect place = places[1].toRect();
        // Half beside it.
        drawTrackCursor(*picture, place.right() + 10, tenSeconds);
        const QImage image = picture->picture(1);
        for (int x = place.left(); x < place.left() + 10; ++x) {
            for (int y = place.top(); y <= place.bottom(); ++y)
                QCOMPARE(image.pixelColor(x, y), QColor(0x59, 0x59, 0x59));
        }
        const QRect other = places[2].toRect();
        QCOMPARE(Expected::cut(image, other), Expected::cut(picture->finishedPicture(1), other));
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
        for (const ChannelLine &line : {channel1, channel2}) {
            const auto picture = flatChart(21.5, line);
            drawTrackCursor(*picture, mouse, tenSeconds);
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
        drawTrackCursor(*picture, 400, tenSeconds);
        const int x = picture->xCoordinate(picture->nearestXValue(400).value()).value();
        const int y = picture->yCoordinate(21.5).value();
        const QImage image = picture->picture(1);
        // The column through its middle; the line itself is no higher than two pixels.
        const QRect column = extentOf(image, QRect(x, y - 20, 1, 40), channel1.colour);
        // Its rounded ends are mixed with what lies under them.
        QVERIFY(column.height() >= 7 && column.height() <= 9);
        QCOMPARE(column.center().y(), y);
    }

    void captionsNameTheInterval_data()
    {
        QTest::addColumn<int>("intervalMs");
        QTest::addColumn<QString>("text");
        QTest::newRow("1 sec") << 1000 << "1 sec";
        QTest::newRow("5 sec") << 5000 << "5 sec";
        QTest::newRow("10 sec") << 10000 << "10 sec";
        QTest::newRow("1 min") << 60000 << "1 min";
        QTest::newRow("5 min") << 300000 << "5 min";
        QTest::newRow("10 min") << 600000 << "10 min";
        QTest::newRow("any other") << 2000 << "";
    }

    void captionsNameTheInterval()
    {
        QFETCH(int, intervalMs);
        QFETCH(QString, text);
        const auto picture = channelChart(chartLabel, timesEvery(1), allOf(20), channel2, intervalMs);
        for (const int density : {1, 2}) {
            drawTrackCursor(*picture, 785, intervalMs);
            Expected expected(*picture, density);
            expected.withLegend(channel2, "20.00").withDate(newestTime).withSpan(text);
            QCOMPARE(Expected::cut(picture->picture(density), captions), expected.captionRow());
        }
    }

    void aMissingValueReadsNotAvailable()
    {
        History values = allOf(20);
        values.back() = chart::noValue;
        const auto picture = channelChart(chartLabel, timesEvery(10), values, channel1, tenSeconds);
        drawTrackCursor(*picture, 785, tenSeconds);
        QCOMPARE(
            Expected::cut(picture->picture(1), captions),
            Expected(*picture, 1).withLegend(channel1, "N/A").withDate(newestTime).withSpan("10 sec").captionRow());
        // There is neither dot nor label: the line ends with the sample before.
        QCOMPARE(extentOf(picture->picture(1), QRect(780, 25, 10, 125), Qt::white), QRect());
        QVERIFY(extentOf(picture->picture(1), QRect(45, 25, 745, 125), channel1.colour).height() <= 3);
    }

    void aValueOutsideThePlotHasNoLabel()
    {
        const auto picture = channelChart(chartLabel, timesEvery(10), allOf(20), channel1, tenSeconds);
        picture->yAxis().setScale(30, 40);
        drawTrackCursor(*picture, 400, tenSeconds);
        QCOMPARE(extentOf(picture->picture(1), QRect(0, 25, 790, 155), channel1.colour), QRect());
        QVERIFY(!extentOf(picture->picture(1), captions, channel1.colour).isNull());
    }

    void legendsOfSeveralLinesStandInReverseOrder()
    {
        const auto picture = flatChart();
        chart::LineLayer &layer = *picture->layers().front();
        layer.addDataSet({}, QString(), Qt::blue);
        layer.addDataSet({}, "hidden", Qt::transparent);
        picture->addLineLayer({newestTime}).addDataSet({5}, "CH2", channel2.colour);
        drawTrackCursor(*picture, 785, tenSeconds);
        chart::TextBlock legend = block(true);
        legend.addLineIcon(channel2.colour).add(" CH2: ").addBoxed(" 5.00 ", channel2.colour);
        legend.addLineIcon(channel1.colour).add(" CH1: ").addBoxed(" 21.50 ", channel1.colour);
        Expected expected(*picture, 1);
        // Longer than its room, it moves the date to the right.
        expected.with(legend, 50).withDate(newestTime, 50 + legend.size().width() + 8).withSpan("10 sec");
        QCOMPARE(Expected::cut(picture->picture(1), captions), expected.captionRow());
    }

    void captionsThatDoNotFitAreLeftOut()
    {
        // 300 pixels hold the legend and the date, but not the span.
        const auto picture = channelChart(QSize(310, 180), timesEvery(10), allOf(20), channel1, tenSeconds);
        drawTrackCursor(*picture, 100, tenSeconds);
        Expected expected(*picture, 1);
        expected.withLegend(channel1, "20.00").withDate(picture->nearestXValue(100).value());
        QCOMPARE(Expected::cut(picture->picture(1), captions), expected.captionRow());
    }

    void withoutDataThereIsNoTime()
    {
        const auto picture = channelChart(chartLabel, allOf(chart::noValue), allOf(20), channel1, tenSeconds);
        drawTrackCursor(*picture, picture->plotArea().right(), tenSeconds);
        const QImage image = picture->picture(1);
        QCOMPARE(extentOf(image, QRect(0, 151, 790, 29), timeBox), QRect());
        QCOMPARE(Expected::cut(image, captions), Expected(*picture, 1).withSpan("10 sec").captionRow());
        QVERIFY(isNear(image.pixelColor(785, 25), blended(QColor(0x59, 0x59, 0x59), dash, halfShare)));
        QCOMPARE(image.pixelColor(785, 26), QColor(0x59, 0x59, 0x59));
    }

    void timesThatAreMissingAreSkipped()
    {
        History times = timesEvery(10);
        times[100] = chart::noValue;
        const auto picture = channelChart(chartLabel, times, allOf(20), channel1, tenSeconds);
        const int x = picture->xCoordinate(timesEvery(10)[100]).value();
        const double nearest = picture->nearestXValue(x).value();
        QVERIFY(nearest == times[99] || nearest == times[101]);
    }

    void anEmptyFieldHasNoCursor()
    {
        const auto picture = channelChart(QSize(800, 55), timesEvery(10), allOf(20), channel1, tenSeconds);
        drawTrackCursor(*picture, 400, tenSeconds);
        QVERIFY(picture->dynamicLayer().isEmpty());
    }

    void aNewCursorTakesThePlaceOfTheOld()
    {
        const auto picture = flatChart();
        drawTrackCursor(*picture, 100, tenSeconds);
        const QImage first = picture->picture(1);
        drawTrackCursor(*picture, 600, tenSeconds);
        QVERIFY(picture->picture(1) != first);
        drawTrackCursor(*picture, 100, tenSeconds);
        QCOMPARE(picture->picture(1), first);
    }

    void longValuesAreShortened()
    {
        const auto picture = flatChart(1e200);
        drawTrackCursor(*picture, 785, tenSeconds);
        QVERIFY(labelOf(picture->picture(1), *picture, 1e200, channel1.colour).width() < 120);
    }
};

QTEST_MAIN(tst_TrackCursor)
#include "tst_TrackCursor.moc"
