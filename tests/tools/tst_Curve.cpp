#include "loggersim/Curve.h"

#include <QSet>
#include <QTest>

using namespace loggersim;

class tst_Curve : public QObject
{
    Q_OBJECT

private slots:
    void everyReadingDiffersFromTheOneBefore_data();
    void everyReadingDiffersFromTheOneBefore();
    void sameSeedSameReadings();
    void otherSeedOtherReadings();
    void staysNearItsClimate();
    void movesSlowly();
    void repeatedReadings();
    void heldReading();
    void shiftedReadings();
    void textHasTwoDecimals_data();
    void textHasTwoDecimals();
    void everyPlaceHasAName();
};

void tst_Curve::everyReadingDiffersFromTheOneBefore_data()
{
    QTest::addColumn<int>("logger");
    for (int logger = 0; logger < 16; ++logger)
        QTest::addRow("logger %d", logger) << logger;
}

void tst_Curve::everyReadingDiffersFromTheOneBefore()
{
    QFETCH(int, logger);
    Curve curve(climateOf(logger), static_cast<quint32>(logger));
    Reading before;
    for (int i = 0; i < 20000; ++i) {
        const Reading reading = curve.next();
        QVERIFY2(reading.temperature != before.temperature, qPrintable(QString::number(i)));
        QVERIFY2(reading.humidity != before.humidity, qPrintable(QString::number(i)));
        before = reading;
    }
}

void tst_Curve::sameSeedSameReadings()
{
    Curve a(climateOf(3), 5);
    Curve b(climateOf(3), 5);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(a.next().toText(), b.next().toText());
}

void tst_Curve::otherSeedOtherReadings()
{
    Curve a(climateOf(3), 5);
    Curve b(climateOf(3), 6);
    int equal = 0;
    for (int i = 0; i < 1000; ++i)
        equal += a.next() == b.next() ? 1 : 0;
    QVERIFY(equal < 20);
}

void tst_Curve::staysNearItsClimate()
{
    for (int logger = 0; logger < 16; ++logger) {
        const Climate climate = climateOf(logger);
        Curve curve(climate, static_cast<quint32>(logger));
        for (int i = 0; i < 3000; ++i) {
            const Reading reading = curve.next();
            QVERIFY(qAbs(reading.temperature / 100.0 - climate.temperature) < climate.temperatureSwing * 1.2);
            QVERIFY(qAbs(reading.humidity / 100.0 - climate.humidity) < climate.humiditySwing * 1.2);
        }
    }
}

void tst_Curve::movesSlowly()
{
    Curve curve(climateOf(0), 1);
    Reading before = curve.next();
    for (int i = 0; i < 3000; ++i) {
        const Reading reading = curve.next();
        QVERIFY(qAbs(reading.temperature - before.temperature) <= 20);
        before = reading;
    }
}

void tst_Curve::repeatedReadings()
{
    Curve moving(climateOf(0), 1);
    Curve steady(climateOf(0), 1);
    steady.repeat(180);
    for (int i = 0; i < 10; ++i) {
        const Reading expected = moving.next();
        for (int times = 0; times < 180; ++times)
            QCOMPARE(steady.next(), expected);
    }
    // Whoever shifts the readings sees it at once.
    steady.next();
    moving.next();
    steady.shift({1000, 0});
    moving.shift({1000, 0});
    QCOMPARE(steady.next(), moving.next());
}

void tst_Curve::heldReading()
{
    Curve curve(climateOf(0), 1);
    curve.hold({4000, 9900});
    QCOMPARE(curve.next().toText(), QByteArray("40.00,99.00"));
    QCOMPARE(curve.next().toText(), QByteArray("40.00,99.00"));
    curve.resume();
    QVERIFY(curve.next().temperature < 1000);
}

void tst_Curve::shiftedReadings()
{
    Curve plain(climateOf(0), 1);
    Curve shifted(climateOf(0), 1);
    shifted.shift({1000, -500});
    for (int i = 0; i < 100; ++i) {
        const Reading expected = plain.next();
        const Reading reading = shifted.next();
        QCOMPARE(reading.temperature, expected.temperature + 1000);
        QVERIFY(qAbs(reading.humidity - expected.humidity + 500) <= 1);
    }
    shifted.resume();
    QCOMPARE(shifted.next().temperature, plain.next().temperature);
}

void tst_Curve::textHasTwoDecimals_data()
{
    QTest::addColumn<int>("temperature");
    QTest::addColumn<int>("humidity");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("plain") << 2150 << 4510 << QByteArray("21.50,45.10");
    QTest::newRow("below zero") << -1805 << 0 << QByteArray("-18.05,0.00");
    QTest::newRow("small") << -5 << 7 << QByteArray("-0.05,0.07");
    QTest::newRow("large") << 10000000 << 100 << QByteArray("100000.00,1.00");
}

void tst_Curve::textHasTwoDecimals()
{
    QFETCH(int, temperature);
    QFETCH(int, humidity);
    QTEST((Reading{temperature, humidity}.toText()), "text");
}

void tst_Curve::everyPlaceHasAName()
{
    QCOMPARE(climateOf(0).place, QString("Cold room 1"));
    QSet<QString> names;
    for (int logger = 0; logger < 64; ++logger)
        names.insert(climateOf(logger).place);
    QCOMPARE(names.size(), 64);
}

QTEST_GUILESS_MAIN(tst_Curve)
#include "tst_Curve.moc"
