#include "chart/ViewPort.h"

#include <QPoint>
#include <QTest>

Q_DECLARE_METATYPE(chart::ViewPort::Direction)

using namespace chart;

namespace {

class TestedViewPort : public ViewPort
{
public:
    TestedViewPort() { setPlotArea(QRect(100, 50, 200, 100)); }
};

constexpr auto horizontal = ViewPort::Direction::Horizontal;
constexpr auto vertical = ViewPort::Direction::Vertical;
constexpr auto both = ViewPort::Direction::Both;

} // namespace

class tst_ViewPort : public QObject
{
    Q_OBJECT

private slots:
    void showsTheWholeAtFirst()
    {
        const TestedViewPort port;
        QCOMPARE(port.viewPort(), QRectF(0, 0, 1, 1));
        QCOMPARE(port.zoomDirection(), horizontal);
        QCOMPARE(port.scrollDirection(), horizontal);
    }

    void staysWithinTheWhole_data()
    {
        QTest::addColumn<QRectF>("wanted");
        QTest::addColumn<QRectF>("given");
        QTest::newRow("inside") << QRectF(0.25, 0.25, 0.5, 0.5) << QRectF(0.25, 0.25, 0.5, 0.5);
        QTest::newRow("beyond the high end") << QRectF(0.75, 0.75, 0.5, 0.5) << QRectF(0.5, 0.5, 0.5, 0.5);
        QTest::newRow("beyond the low end") << QRectF(-1, -1, 0.5, 0.5) << QRectF(0, 0, 0.5, 0.5);
        QTest::newRow("larger than the whole") << QRectF(-1, -1, 3, 3) << QRectF(0, 0, 1, 1);
        QTest::newRow("smaller than allowed") << QRectF(0.5, 0.5, 0, 0) << QRectF(0.375, 0.375, 0.25, 0.25);
        QTest::newRow("no numbers") << QRectF(qQNaN(), qInf(), qInf(), qQNaN()) << QRectF(0, 0, 1, 1);
    }

    void staysWithinTheWhole()
    {
        QFETCH(QRectF, wanted);
        TestedViewPort port;
        port.setSmallestViewPort({0.25, 0.25});
        port.setViewPort(wanted);
        QTEST(port.viewPort(), "given");
    }

    void zoomsAtAPoint_data()
    {
        QTest::addColumn<ViewPort::Direction>("direction");
        QTest::addColumn<QRectF>("part");
        QTest::newRow("horizontally") << horizontal << QRectF(0.375, 0, 0.5, 1);
        QTest::newRow("vertically") << vertical << QRectF(0, 0.125, 1, 0.5);
        QTest::newRow("both") << both << QRectF(0.375, 0.125, 0.5, 0.5);
    }

    void zoomsAtAPoint()
    {
        QFETCH(ViewPort::Direction, direction);
        TestedViewPort port;
        port.setZoomDirection(direction);
        QVERIFY(port.zoomAt({250, 75}, 2));
        QTEST(port.viewPort(), "part");
        QVERIFY(port.zoomAt({250, 75}, 0.5));
        QCOMPARE(port.viewPort(), QRectF(0, 0, 1, 1));
        QVERIFY(!port.zoomAt({250, 75}, 0.5));
    }

    void whatLiesUnderThePointStays()
    {
        TestedViewPort port;
        port.setFullRange(Qt::Horizontal, {1000, 2000});
        const auto valueAt = [&port](int x) {
            const Range range = port.visibleRange(Qt::Horizontal);
            return range.low + (range.high - range.low) * (x - 100) / 200.0;
        };
        const double before = valueAt(130);
        QVERIFY(port.zoomAt({130, 60}, 3));
        QVERIFY(port.zoomAt({130, 60}, 1.5));
        QCOMPARE(valueAt(130), before);
    }

    void zoomsNoFurtherThanAllowed()
    {
        TestedViewPort port;
        port.setSmallestViewPort({0.4, 1});
        QVERIFY(port.zoomAt({200, 100}, 100));
        QCOMPARE(port.viewPort().width(), 0.4);
        QVERIFY(!port.zoomAt({200, 100}, 2));
        QVERIFY(!port.zoomAt({200, 100}, 0));
    }

    void zoomsToARectangle()
    {
        TestedViewPort port;
        QVERIFY(port.zoomTo({150, 60, 100, 10}));
        QCOMPARE(port.viewPort(), QRectF(0.25, 0, 0.5, 1));
        QVERIFY(port.zoomTo({150, 60, 100, 10}));
        QCOMPARE(port.viewPort(), QRectF(0.375, 0, 0.25, 1));
        port.setViewPort({0, 0, 1, 1});
        port.setZoomDirection(both);
        QVERIFY(port.zoomTo({150, 60, 100, 50}));
        QCOMPARE(port.viewPort(), QRectF(0.25, 0.1, 0.5, 0.5));
    }

    void scrolls()
    {
        TestedViewPort port;
        const QRectF before(0.25, 0.25, 0.5, 0.5);
        port.setViewPort(before);
        QVERIFY(port.scrollFrom(before, {-50, 30}));
        QCOMPARE(port.viewPort(), QRectF(0.375, 0.25, 0.5, 0.5));
        QVERIFY(port.scrollFrom(before, {1000, 0}));
        QCOMPARE(port.viewPort(), QRectF(0, 0.25, 0.5, 0.5));
        QVERIFY(!port.scrollFrom(before, {2000, 0}));
        port.setScrollDirection(vertical);
        QVERIFY(port.scrollFrom(before, {-50, -20}));
        QCOMPARE(port.viewPort(), QRectF(0.25, 0.35, 0.5, 0.5));
    }

    void tellsValuesOfThePartShown()
    {
        TestedViewPort port;
        port.setFullRange(Qt::Horizontal, {1000, 2000});
        port.setFullRange(Qt::Vertical, {0, 100});
        port.setViewPort({0.25, 0.125, 0.5, 0.25});
        QCOMPARE(port.visibleRange(Qt::Horizontal).low, 1250.0);
        QCOMPARE(port.visibleRange(Qt::Horizontal).high, 1750.0);
        QCOMPARE(port.visibleRange(Qt::Vertical).low, 62.5);
        QCOMPARE(port.visibleRange(Qt::Vertical).high, 87.5);
    }

    void plotAreaCountsItsEdges()
    {
        TestedViewPort port;
        QVERIFY(port.isInPlotArea({100, 50}));
        QVERIFY(port.isInPlotArea({300, 150}));
        QVERIFY(!port.isInPlotArea({99, 100}));
        QVERIFY(!port.isInPlotArea({301, 100}));
        QVERIFY(!port.isInPlotArea({200, 49}));
        QVERIFY(!port.isInPlotArea({200, 151}));
        QVERIFY(!port.isInExtendedPlotArea({99, 100}));
        port.setMouseMargins({10, 0, 5, 0});
        QVERIFY(port.isInExtendedPlotArea({90, 100}));
        QVERIFY(port.isInExtendedPlotArea({305, 100}));
        QVERIFY(!port.isInExtendedPlotArea({89, 100}));
        QVERIFY(!port.isInPlotArea({99, 100}));
    }

    void withoutAPlotAreaNothingMoves()
    {
        TestedViewPort port;
        port.setPlotArea({});
        QVERIFY(!port.isInPlotArea({0, 0}));
        QVERIFY(!port.zoomAt({0, 0}, 2));
        QVERIFY(!port.zoomTo({0, 0, 10, 10}));
        QVERIFY(!port.scrollFrom({0, 0, 1, 1}, {10, 10}));
    }
};

QTEST_APPLESS_MAIN(tst_ViewPort)
#include "tst_ViewPort.moc"
