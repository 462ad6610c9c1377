#include "chart/ValueTicks.h"

#include <QTest>
#include <cmath>

using namespace chart;

namespace {

std::vector<double> list(const ValueTicks &ticks)
{
    return ticks.values;
}

QStringList texts(const ValueTicks &ticks, int longest)
{
    QStringList result;
    for (const QString &text : tickTexts(ticks, longest))
        result << text;
    return result;
}

} // namespace

class tst_ValueTicks : public QObject
{
    Q_OBJECT

private slots:
    void aroundARange_data()
    {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::addColumn<int>("intervals");
        QTest::addColumn<QString>("labels");

        QTest::newRow("tenths") << 21.39 << 21.61 << 4 << "21.3 21.4 21.5 21.6 21.7";
        QTest::newRow("halves") << 20.7 << 22.4 << 4 << "20.5 21.0 21.5 22.0 22.5";
        QTest::newRow("next coarser where it would be one too many") << 0.9 << 5.1 << 5 << "0 2 4 6";
        QTest::newRow("below zero") << -3.0 << 2.0 << 5 << "-3 -2 -1 0 1 2";
        QTest::newRow("hundreds") << 950.0 << 1234.0 << 4 << "900 1000 1100 1200 1300";
        QTest::newRow("one interval") << 21.4 << 21.6 << 1 << "21 22";
        QTest::newRow("one interval around zero") << -1.0 << 1.0 << 2 << "-1 0 1";
        QTest::newRow("hundredths") << 0.301 << 0.329 << 3 << "0.30 0.31 0.32 0.33";
    }

    void aroundARange()
    {
        QFETCH(double, low);
        QFETCH(double, high);
        QFETCH(int, intervals);
        const ValueTicks ticks = ticksAround({low, high}, intervals);
        QTEST(texts(ticks, 10).join(' '), "labels");
        QVERIFY(ticks.values.front() <= low);
        QVERIFY(ticks.values.back() >= high);
        QVERIFY(int(ticks.values.size()) <= intervals + 2);
    }

    void withinARange()
    {
        QCOMPARE(texts(ticksWithin({20.7, 22.4}, 4), 10).join(' '), QString("21.0 21.5 22.0"));
        QCOMPARE(texts(ticksWithin({-0.3, 1.2}, 2), 10).join(' '), QString("0 1"));
        QVERIFY(list(ticksWithin({0.6, 0.9}, 1)).empty());
    }

    void extremeRangesEnd_data()
    {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("high");
        QTest::newRow("all of it") << -1.7e308 << 1.7e308;
        QTest::newRow("huge and flat") << 1.6e308 << 1.6e308;
        QTest::newRow("huge and nearly flat") << 1e15 << 1e15 + 0.125;
        QTest::newRow("denormal") << 4e-320 << 5e-320;
        QTest::newRow("zero") << 0.0 << 0.0;
    }

    void extremeRangesEnd()
    {
        QFETCH(double, low);
        QFETCH(double, high);
        const ValueTicks ticks = ticksAround(withRoom({low, high}), 5);
        QVERIFY(ticks.values.size() >= 2);
        QVERIFY(ticks.values.size() <= 7);
        for (size_t i = 0; i < ticks.values.size(); ++i) {
            QVERIFY(std::isfinite(ticks.values[i]));
            QVERIFY(i == 0 || ticks.values[i] > ticks.values[i - 1]);
        }
    }

    void aFlatLineHasRoomOnBothSides_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("temperature") << 21.5;
        QTest::newRow("zero") << 0.0;
        QTest::newRow("frost") << -18.0;
        QTest::newRow("a round value") << 20.0;
        QTest::newRow("tiny") << 1e-9;
        QTest::newRow("huge") << 1e200;
    }

    void aFlatLineHasRoomOnBothSides()
    {
        QFETCH(double, value);
        const ValueTicks ticks = ticksAround(withRoom({value, value}), 5);
        const double span = ticks.values.back() - ticks.values.front();
        QVERIFY(value - ticks.values.front() > span / 10);
        QVERIFY(ticks.values.back() - value > span / 10);
    }

    void roomDoesNotCrossZero()
    {
        QCOMPARE(withRoom({0.1, 10}).low, 0.0);
        QCOMPARE(withRoom({-10, -0.1}).high, 0.0);
        QVERIFY(withRoom({0, 10}).low < 0);
    }

    void longTextsAreShortenedButStayDistinct()
    {
        const ValueTicks ticks = ticksAround({2550000, 2700000}, 3);
        QCOMPARE(texts(ticks, 7), QStringList({"2550000", "2600000", "2650000", "2700000"}));
        QCOMPARE(texts(ticks, 6), QStringList({"2.55e6", "2.6e6", "2.65e6", "2.7e6"}));
        QCOMPARE(texts(ticksAround({1e-12, 3e-12}, 3), 6), QStringList({"1e-12", "2e-12", "3e-12"}));
        QCOMPARE(texts(ticksAround({-1e-8, 1e-8}, 2), 6), QStringList({"-1e-8", "0", "1e-8"}));
    }
};

QTEST_APPLESS_MAIN(tst_ValueTicks)
#include "tst_ValueTicks.moc"
