#include "device/ChannelAlarms.h"
#include "store/PendingRow.h"

#include <QTest>
#include <cmath>
#include <limits>

class tst_ChannelAlarms : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsJudgedAtFirst();
    void judgesAValue_data();
    void judgesAValue();
    void channelsAreJudgedApart();
    void anAlarmEnds();
    void clears();
};

void tst_ChannelAlarms::nothingIsJudgedAtFirst()
{
    const ChannelAlarms alarms;
    QVERIFY(!alarms.isOnChannel1());
    QVERIFY(!alarms.isOnChannel2());
}

void tst_ChannelAlarms::judgesAValue_data()
{
    QTest::addColumn<float>("min");
    QTest::addColumn<float>("max");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("alarm");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("within") << 1.0F << 5.0F << 3.0 << false;
    QTest::newRow("at the minimum") << 1.0F << 5.0F << 1.0 << false;
    QTest::newRow("at the maximum") << 1.0F << 5.0F << 5.0 << false;
    QTest::newRow("below") << 1.0F << 5.0F << 0.99 << true;
    QTest::newRow("above") << 1.0F << 5.0F << 5.01 << true;
    QTest::newRow("at a maximum that no float has exactly") << 1.0F << 10.1F << 10.1 << false;
    QTest::newRow("at a minimum that no float has exactly") << 10.1F << 20.0F << 10.1 << false;
    QTest::newRow("above such a one") << 1.0F << 10.1F << 10.11 << true;
    QTest::newRow("negative, within") << -5.0F << -1.0F << -3.0 << false;
    QTest::newRow("negative, below") << -5.0F << -1.0F << -5.01 << true;
    QTest::newRow("equal limits") << 3.0F << 3.0F << 100.0 << false;
    QTest::newRow("equal limits, infinite value") << 0.0F << 0.0F << infinity << false;
    QTest::newRow("no value") << 1.0F << 5.0F << noValue << false;
    QTest::newRow("limits the wrong way round") << 5.0F << 1.0F << 3.0 << true;
    QTest::newRow("beyond any float") << 1.0F << 5.0F << 1e300 << true;
    QTest::newRow("beyond any float, below") << 1.0F << 5.0F << -1e300 << true;
    QTest::newRow("infinite") << 1.0F << 5.0F << infinity << true;
    QTest::newRow("not a number") << 1.0F << 5.0F << std::nan("") << false;
}

void tst_ChannelAlarms::judgesAValue()
{
    QFETCH(float, min);
    QFETCH(float, max);
    QFETCH(double, value);
    ChannelAlarms alarms;
    alarms.judge({min, max, 0, 0}, value, 0);
    QTEST(alarms.isOnChannel1(), "alarm");
    alarms.judge({0, 0, min, max}, 0, value);
    QTEST(alarms.isOnChannel2(), "alarm");
}

void tst_ChannelAlarms::channelsAreJudgedApart()
{
    ChannelAlarms alarms;
    alarms.judge({1, 5, 10, 50}, 6, 20);
    QVERIFY(alarms.isOnChannel1());
    QVERIFY(!alarms.isOnChannel2());
    alarms.judge({1, 5, 10, 50}, 2, 60);
    QVERIFY(!alarms.isOnChannel1());
    QVERIFY(alarms.isOnChannel2());
}

void tst_ChannelAlarms::anAlarmEnds()
{
    ChannelAlarms alarms;
    alarms.judge({1, 5, 1, 5}, 6, 6);
    alarms.judge({1, 5, 1, 5}, noValue, 3);
    QVERIFY(!alarms.isOnChannel1());
    QVERIFY(!alarms.isOnChannel2());
}

void tst_ChannelAlarms::clears()
{
    ChannelAlarms alarms;
    alarms.judge({1, 5, 1, 5}, 6, 6);
    QVERIFY(alarms.isOnChannel1());
    QVERIFY(alarms.isOnChannel2());
    alarms.clear();
    QVERIFY(!alarms.isOnChannel1());
    QVERIFY(!alarms.isOnChannel2());
}

QTEST_GUILESS_MAIN(tst_ChannelAlarms)
#include "tst_ChannelAlarms.moc"
