#include "chart/LinePath.h"
#include "chart/NoValue.h"

#include <QTest>
#include <cmath>
#include <limits>

using namespace chart;

namespace {

/// 100 x 100 pixels that show 0 to 100 on both axes.
LineField field()
{
    return {{{0, 100}, 0, 100}, {{0, 100}, 100, 0}, QRectF(0, 0, 100, 100), 1};
}

} // namespace

class tst_LinePath : public QObject
{
    Q_OBJECT

private slots:
    void joinsPointsInOrder()
    {
        const LinePath path = linePath({10, 30, 20}, {0, 50, 100}, field());
        QCOMPARE(path.segments, QVector<QLineF>({{10, 100, 30, 50}, {30, 50, 20, 0}}));
        QVERIFY(path.dots.isEmpty());
    }

    void breaksAtMissingValues_data()
    {
        QTest::addColumn<double>("missing");
        QTest::newRow("marker") << noValue;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("undefined") << std::nan("");
    }

    void breaksAtMissingValues()
    {
        QFETCH(double, missing);
        const LinePath path = linePath({10, 20, 30, 40, 50}, {0, 0, missing, 50, 50}, field());
        QCOMPARE(path.segments, QVector<QLineF>({{10, 100, 20, 100}, {40, 50, 50, 50}}));
    }

    void breaksWhereNeighboursLieTooFarApart()
    {
        LineField stepwise = field();
        const std::vector<double> steps(6, 15);
        stepwise.largestSteps = &steps;
        const LinePath path = linePath({10, 25, 41, 56, 36, 26}, {0, 0, 50, 50, 100, 100}, stepwise);
        QCOMPARE(path.segments, QVector<QLineF>({{10, 100, 25, 100}, {41, 50, 56, 50}, {36, 0, 26, 0}}));
        // From wherever the last point was, the missing ones apart.
        QCOMPARE(linePath({10, noValue, 20, noValue, 36}, {0, 7, 0, 7, 0}, stepwise).segments,
                 QVector<QLineF>({{10, 100, 20, 100}}));
    }

    void eachPointHasALargestStepOfItsOwn()
    {
        LineField stepwise = field();
        const std::vector<double> steps{0, 5, 30, 5, 30};
        stepwise.largestSteps = &steps;
        const LinePath path = linePath({10, 20, 40, 60, 80}, {50, 50, 50, 50, 50}, stepwise);
        QCOMPARE(path.segments, QVector<QLineF>({{20, 50, 40, 50}, {60, 50, 80, 50}}));
        QCOMPARE(path.dots, QVector<QPointF>({{10, 50}}));
    }

    void aPointFarFromItsNeighboursIsADot()
    {
        LineField stepwise = field();
        const std::vector<double> steps(5, 15);
        stepwise.largestSteps = &steps;
        const LinePath path = linePath({10, 20, 50, 80, 90}, {50, 50, 50, 50, 50}, stepwise);
        QCOMPARE(path.dots, QVector<QPointF>({{50, 50}}));
        QCOMPARE(path.segments.size(), 2);
    }

    void manyGapsInAColumnAreNotToldApart()
    {
        LineField stepwise = field();
        std::vector<double> xs;
        constexpr int count = 100000;
        const std::vector<double> steps(count, 1e-6);
        stepwise.largestSteps = &steps;
        for (int i = 0; i < count; ++i)
            xs.push_back(100.0 * i / count);
        const LinePath path = linePath(xs, std::vector<double>(count, 50), stepwise);
        QVERIFY(path.segments.size() + path.dots.size() <= 400);
    }

    void passesOverMissingTimes()
    {
        const LinePath path = linePath({10, noValue, 30}, {0, 70, 0}, field());
        QCOMPARE(path.segments, QVector<QLineF>({{10, 100, 30, 100}}));
    }

    void aLonePointIsADot()
    {
        const LinePath path = linePath({10, 20, 30, 40}, {50, noValue, 50, noValue}, field());
        QVERIFY(path.segments.isEmpty());
        QCOMPARE(path.dots, QVector<QPointF>({{10, 50}, {30, 50}}));
        // Two readings at one place are no line either.
        QCOMPARE(linePath({10, 10}, {50, 50}, field()).dots, QVector<QPointF>({{10, 50}}));
        QVERIFY(linePath({200}, {50}, field()).dots.isEmpty());
    }

    void linesThatLeaveTheFieldAreCut()
    {
        QCOMPARE(linePath({-50, 50}, {50, 50}, field()).segments, QVector<QLineF>({{0, 50, 50, 50}}));
        QCOMPARE(linePath({50, 150}, {50, 150}, field()).segments, QVector<QLineF>({{50, 50, 100, 0}}));
        QVERIFY(linePath({-50, -20}, {50, 50}, field()).segments.isEmpty());
        QVERIFY(linePath({20, 30}, {150, 170}, field()).segments.isEmpty());
    }

    void farAwayPointsStayDrawable()
    {
        const LinePath path = linePath({50, 1.6e308, -1.6e308, 50}, {-1.6e308, 50, 1.6e308, 1.6e308}, field());
        for (const QLineF &segment : path.segments) {
            QVERIFY(QRectF(-1, -1, 102, 102).contains(segment.p1()));
            QVERIFY(QRectF(-1, -1, 102, 102).contains(segment.p2()));
        }
    }

    void denseColumnsKeepTheirExtremes()
    {
        std::vector<double> xs;
        std::vector<double> ys;
        constexpr int count = 100000;
        for (int i = 0; i < count; ++i) {
            xs.push_back(100.0 * i / count);
            ys.push_back(50 + (i % 2 == 0 ? 10 : -10));
        }
        ys[50500] = 99;
        ys[70700] = 1;
        const LinePath path = linePath(xs, ys, field());
        QVERIFY(path.segments.size() <= 200);
        double top = 100;
        double bottom = 0;
        for (const QLineF &segment : path.segments) {
            top = std::min({top, segment.y1(), segment.y2()});
            bottom = std::max({bottom, segment.y1(), segment.y2()});
        }
        QCOMPARE(top, 1.0);
        QCOMPARE(bottom, 99.0);
    }

    void fewPointsInAColumnAreKept()
    {
        const LinePath path = linePath({50.1, 50.2, 50.3, 50.4}, {10, 90, 20, 80}, field());
        QCOMPARE(path.segments.size(), 3);
    }

    void valuesBeyondTheShorterListAreIgnored()
    {
        QCOMPARE(linePath({10, 20, 30}, {0, 0}, field()).segments.size(), 1);
        QCOMPARE(linePath({10, 20}, {0, 0, 0}, field()).segments.size(), 1);
        QVERIFY(linePath({}, {}, field()).segments.isEmpty());
    }
};

QTEST_APPLESS_MAIN(tst_LinePath)
#include "tst_LinePath.moc"
