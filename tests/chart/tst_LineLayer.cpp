#include "chart/LineLayer.h"
#include "chart/NoValue.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace chart;

namespace {

constexpr Range everything{-1e9, 1e9};

QImage draw(const LineLayer &layer, qreal density = 1)
{
    QImage image(QSize(100, 100) * density, QImage::Format_RGB32);
    image.setDevicePixelRatio(density);
    image.fill(Qt::black);
    QPainter painter(&image);
    layer.draw(painter, {{0, 100}, 0, 100}, {{0, 100}, 100, 0}, QRectF(0, 0, 100, 100));
    return image;
}

} // namespace

class tst_LineLayer : public QObject
{
    Q_OBJECT

private slots:
    void nearestSample_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<int>("index");
        QTest::newRow("exact") << 20.0 << 2;
        QTest::newRow("nearest below") << 24.0 << 2;
        QTest::newRow("nearest above") << 26.0 << 4;
        QTest::newRow("before the first") << -100.0 << 1;
        QTest::newRow("after the last") << 100.0 << 5;
        QTest::newRow("of several the newest") << 40.0 << 5;
    }

    void nearestSample()
    {
        QFETCH(double, x);
        const LineLayer layer({noValue, 10, 20, noValue, 30, 40, 35, 1e300});
        QTEST(layer.nearestIndex(x, {0, 50}), "index");
    }

    void theNewestOfTheSameTime() { QCOMPARE(LineLayer({10, 20, 20, 30}).nearestIndex(20, everything), 2); }

    void nothingIsNearest()
    {
        QCOMPARE(LineLayer({}).nearestIndex(1, everything), -1);
        QCOMPARE(LineLayer({noValue, noValue}).nearestIndex(1, everything), -1);
        QCOMPARE(LineLayer({10, 20}).nearestIndex(10, {30, 40}), -1);
    }

    void valuesOfWhatIsShown()
    {
        LineLayer layer({10, 20, 30, noValue});
        layer.addDataSet({1000, 5, noValue, 7000}, "a", Qt::red);
        layer.addDataSet({1000, noValue, -3}, "b", Qt::green);
        const std::optional<Range> range = layer.valuesWithin({15, 35});
        QVERIFY(range.has_value());
        QCOMPARE(range->low, -3.0);
        QCOMPARE(range->high, 5.0);
        QVERIFY(!layer.valuesWithin({40, 50}).has_value());
    }

    void aLineIsTwoPixelsWide_data()
    {
        QTest::addColumn<double>("density");
        QTest::newRow("single") << 1.0;
        QTest::newRow("double") << 2.0;
    }

    void aLineIsTwoPixelsWide()
    {
        QFETCH(double, density);
        LineLayer layer({0, 100});
        layer.addDataSet({50, 50}, "a", Qt::red);
        const QImage image = draw(layer, density);
        int red = 0;
        for (int y = 0; y < image.height(); ++y)
            red += image.pixelColor(image.width() / 2, y) == QColor(Qt::red) ? 1 : 0;
        QCOMPARE(red, int(2 * density));
    }

    void aLineEndsWhereTheNextPointIsTooFar()
    {
        LineLayer layer({10, 30, 60, 80});
        layer.addDataSet({50, 50, 50, 50}, "a", Qt::red);
        QCOMPARE(draw(layer).pixelColor(45, 50), QColor(Qt::red));
        layer.setLargestStep(29.9);
        QCOMPARE(draw(layer).pixelColor(45, 50), QColor(Qt::black));
        QCOMPARE(draw(layer).pixelColor(20, 50), QColor(Qt::red));
        QCOMPARE(draw(layer).pixelColor(70, 50), QColor(Qt::red));
        layer.setLargestStep(30);
        QCOMPARE(draw(layer).pixelColor(45, 50), QColor(Qt::red));
        // Those that are not told are infinite.
        layer.setLargestSteps({0, 10});
        QCOMPARE(draw(layer).pixelColor(20, 50), QColor(Qt::black));
        QCOMPARE(draw(layer).pixelColor(45, 50), QColor(Qt::red));
    }

    void oneReadingIsVisible()
    {
        LineLayer layer({50});
        layer.addDataSet({50}, "a", Qt::red);
        QCOMPARE(draw(layer).pixelColor(50, 50), QColor(Qt::red));
    }

    void overlapsOfALineOneCanLookThroughDoNotShow()
    {
        LineLayer layer({10, 50, 90});
        layer.addDataSet({50, 50, 50}, "a", QColor(255, 0, 0, 128));
        const QImage image = draw(layer);
        QCOMPARE(image.pixel(50, 50), image.pixel(30, 50));
        QVERIFY(image.pixelColor(50, 50).red() > 100);
    }
};

QTEST_MAIN(tst_LineLayer)
#include "tst_LineLayer.moc"
