#include "device/ChannelHistory.h"
#include "store/PendingRow.h"

#include <QTest>
#include <algorithm>

namespace {

bool isEmpty(const History &history)
{
    return std::all_of(history.cbegin(), history.cend(), [](double value) { return isNoValue(value); });
}

void addSamples(ChannelHistory &history, int count)
{
    for (int i = 0; i < count; ++i)
        history.add(i, 100 + i, 200 + i, 1000 + i);
}

} // namespace

class tst_ChannelHistory : public QObject
{
    Q_OBJECT

private slots:
    void isEmptyAtFirst();
    void theNewestIsLast();
    void theOldestGivesWay();
    void theSameTimeOverwrites();
    void onlyTheNewestIsOverwritten();
    void aTimeBeforeTheNewestIsANewSample();
    void noValueIsASample();
};

void tst_ChannelHistory::isEmptyAtFirst()
{
    const ChannelHistory history;
    for (const History *values : {&history.times(), &history.channel1(), &history.channel2(), &history.intervals()})
        QVERIFY(isEmpty(*values));
}

void tst_ChannelHistory::theNewestIsLast()
{
    ChannelHistory history;
    addSamples(history, 2);
    QCOMPARE(history.times().back(), 1.0);
    QCOMPARE(history.channel1().back(), 101.0);
    QCOMPARE(history.channel2().back(), 201.0);
    QCOMPARE(history.intervals().back(), 1001.0);
    QCOMPARE(history.times()[historyLength - 2], 0.0);
    QCOMPARE(history.intervals()[historyLength - 2], 1000.0);
    QVERIFY(isNoValue(history.times()[historyLength - 3]));
}

void tst_ChannelHistory::theOldestGivesWay()
{
    ChannelHistory history;
    addSamples(history, historyLength);
    QCOMPARE(history.times().front(), 0.0);
    history.add(historyLength, 1, 2, 3);
    QCOMPARE(history.times().front(), 1.0);
    QCOMPARE(history.channel1().front(), 101.0);
    QCOMPARE(history.channel2().front(), 201.0);
    QCOMPARE(history.intervals().front(), 1001.0);
    QCOMPARE(history.times().back(), double(historyLength));
}

void tst_ChannelHistory::theSameTimeOverwrites()
{
    ChannelHistory history;
    addSamples(history, 2);
    history.add(1, 7, 8, 60000);
    QCOMPARE(history.channel1().back(), 7.0);
    QCOMPARE(history.channel2().back(), 8.0);
    QCOMPARE(history.times()[historyLength - 2], 0.0);
    // The step up to this sample was that of the interval at its first reading.
    QCOMPARE(history.intervals().back(), 1001.0);
}

void tst_ChannelHistory::onlyTheNewestIsOverwritten()
{
    ChannelHistory history;
    addSamples(history, 2);
    history.add(0, 7, 8, 1000);
    QCOMPARE(history.channel1()[historyLength - 3], 100.0);
    QCOMPARE(history.channel1()[historyLength - 2], 101.0);
    QCOMPARE(history.channel1().back(), 7.0);
}

/// A clock that was set back.
void tst_ChannelHistory::aTimeBeforeTheNewestIsANewSample()
{
    ChannelHistory history;
    history.add(5000, 1, 2, 1000);
    history.add(1400, 3, 4, 1000);
    QCOMPARE(history.times()[historyLength - 2], 5000.0);
    QCOMPARE(history.times().back(), 1400.0);
}

void tst_ChannelHistory::noValueIsASample()
{
    ChannelHistory history;
    history.add(1, noValue, 2, 1000);
    history.add(2, 3, noValue, 1000);
    QVERIFY(isNoValue(history.channel1()[historyLength - 2]));
    QVERIFY(isNoValue(history.channel2().back()));
    QCOMPARE(history.times().back(), 2.0);
}

QTEST_GUILESS_MAIN(tst_ChannelHistory)
#include "tst_ChannelHistory.moc"
