#include "device/ChannelUnit.h"
#include "device/DataInterval.h"

#include <QTest>

class tst_ChannelUnit : public QObject
{
    Q_OBJECT

private slots:
    void textsOfUnits_data();
    void textsOfUnits();
    void foreignCodesAreUndefined();
    void textsOfIntervals_data();
    void textsOfIntervals();
    void listsTheIntervalsToChooseFrom();
    void startsWithTenSeconds();
};

void tst_ChannelUnit::textsOfUnits_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("typeText");
    QTest::addColumn<QString>("besideTheValue");
    const QString degree(QChar(176));
    QTest::newRow("undefined") << 0 << "Undefined"
                               << "";
    QTest::newRow("celsius") << 1 << "Temperature(" + degree + "C)" << degree + "C";
    QTest::newRow("fahrenheit") << 2 << "Temperature(" + degree + "F)" << degree + "F";
    QTest::newRow("humidity") << 3 << "Humidity(%)"
                              << "%RH";
    QTest::newRow("custom") << 4 << "Custom"
                            << "hPa";
}

void tst_ChannelUnit::textsOfUnits()
{
    QFETCH(int, code);
    const ChannelUnit unit = channelUnitFromCode(code);
    QCOMPARE(static_cast<int>(unit), code);
    QTEST(channelTypeText(unit), "typeText");
    QTEST(unitText(unit, "hPa"), "besideTheValue");
}

void tst_ChannelUnit::foreignCodesAreUndefined()
{
    for (int code : {-1, 5, 2147483647})
        QCOMPARE(channelUnitFromCode(code), UndefinedUnit);
}

void tst_ChannelUnit::textsOfIntervals_data()
{
    QTest::addColumn<int>("ms");
    QTest::addColumn<QString>("text");
    QTest::newRow("1 s") << 1000 << "1 sec";
    QTest::newRow("5 s") << 5000 << "5 sec";
    QTest::newRow("10 s") << 10000 << "10 sec";
    QTest::newRow("1 min") << 60000 << "1 min";
    QTest::newRow("5 min") << 300000 << "5 min";
    QTest::newRow("10 min") << 600000 << "10 min";
    QTest::newRow("none") << 0 << "";
    QTest::newRow("another") << 2000 << "";
    QTest::newRow("negative") << -1000 << "";
}

void tst_ChannelUnit::textsOfIntervals()
{
    QFETCH(int, ms);
    QTEST(intervalText(ms), "text");
}

void tst_ChannelUnit::listsTheIntervalsToChooseFrom()
{
    QCOMPARE(selectableIntervals(), QList<int>({1000, 5000, 10000, 60000, 300000, 600000}));
}

void tst_ChannelUnit::startsWithTenSeconds()
{
    QCOMPARE(dataIntervalMs, 10000);
}

QTEST_GUILESS_MAIN(tst_ChannelUnit)
#include "tst_ChannelUnit.moc"
