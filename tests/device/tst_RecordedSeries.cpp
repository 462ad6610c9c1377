#include "device/RecordedSeries.h"
#include "store/PendingRow.h"
#include "support/RecordedRows.h"

#include <QTest>

namespace {

/// A reading for the record.
RecordedSeries::Readings one(qint64 timeMs, double value1, double value2)
{
    return {{timeMs, value1, value2, true}};
}

} // namespace

class tst_RecordedSeries : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { takeRecordedRows(); }

    void aReadingIsARow();
    void timesAreWholeSeconds_data();
    void timesAreWholeSeconds();
    void aChannelMayHaveNoValue();
    void theEndIsASecondAfterTheLastReading();
    void nothingIsClosedTwice();
    void whatWasNeverOpenIsNotClosed();
    void aSeriesGoesOnAfterItsEnd();
    void aReadingOfAnEarlierTimeIsTheLast();
    void seriesAreApart();
};

void tst_RecordedSeries::aReadingIsARow()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(100000, 21.5, 40.25), {});
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().serial, QStringLiteral("7"));
    QCOMPARE(rows.first().channel1.toDouble(), 21.5);
    QCOMPARE(rows.first().channel2.toDouble(), 40.25);
    QCOMPARE(rows.first().time, 100U);
}

void tst_RecordedSeries::timesAreWholeSeconds_data()
{
    QTest::addColumn<qint64>("ms");
    QTest::addColumn<quint32>("reading");
    QTest::addColumn<quint32>("end");
    QTest::newRow("edge") << qint64(100000) << 100U << 101U;
    QTest::newRow("middle") << qint64(100500) << 100U << 101U;
    QTest::newRow("last millisecond") << qint64(100999) << 100U << 101U;
    QTest::newRow("beyond 2038") << qint64(2147483648500) << 2147483648U << 2147483649U;
}

void tst_RecordedSeries::timesAreWholeSeconds()
{
    QFETCH(qint64, ms);
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(ms, 1, 2), {});
    series.close();
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 2);
    QTEST(rows.at(0).time, "reading");
    QTEST(rows.at(1).time, "end");
}

void tst_RecordedSeries::aChannelMayHaveNoValue()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(100000, noValue, 2), {});
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QVERIFY(rows.first().channel1.isNull());
    QCOMPARE(rows.first().channel2.toDouble(), 2.0);
}

void tst_RecordedSeries::theEndIsASecondAfterTheLastReading()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(100000, 1, 2), {});
    series.add(one(110000, 3, 4), {});
    series.close();
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 3);
    QVERIFY(!rows.at(1).isGap());
    QVERIFY(rows.at(2).isGap());
    QCOMPARE(rows.at(2).serial, QStringLiteral("7"));
    QCOMPARE(rows.at(2).time, 111U);
}

void tst_RecordedSeries::nothingIsClosedTwice()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(100000, 1, 2), {});
    series.close();
    QCOMPARE(takeRecordedRows().size(), 2);
    series.close();
    QVERIFY(takeRecordedRows().isEmpty());
}

void tst_RecordedSeries::whatWasNeverOpenIsNotClosed()
{
    RecordedSeries series(QStringLiteral("7"));
    series.close();
    QVERIFY(takeRecordedRows().isEmpty());
}

void tst_RecordedSeries::aSeriesGoesOnAfterItsEnd()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(100000, 1, 2), {});
    series.close();
    series.add(one(200000, 3, 4), {});
    series.close();
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 4);
    QCOMPARE(rows.at(3).time, 201U);
    QVERIFY(rows.at(3).isGap());
}

/// A clock that was set back: the gap comes after what was read last.
void tst_RecordedSeries::aReadingOfAnEarlierTimeIsTheLast()
{
    RecordedSeries series(QStringLiteral("7"));
    series.add(one(200000, 1, 2), {});
    series.add(one(100000, 3, 4), {});
    series.close();
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows.at(1).time, 101U);
    QVERIFY(rows.at(1).isGap());
}

void tst_RecordedSeries::seriesAreApart()
{
    RecordedSeries first(QStringLiteral("7"));
    RecordedSeries second(QStringLiteral("8"));
    first.add(one(100000, 1, 2), {});
    second.close();
    first.close();
    const auto rows = takeRecordedRows();
    QCOMPARE(rows.size(), 2);
    for (const RecordedRow &row : rows)
        QCOMPARE(row.serial, QStringLiteral("7"));
}

QTEST_GUILESS_MAIN(tst_RecordedSeries)
#include "tst_RecordedSeries.moc"
