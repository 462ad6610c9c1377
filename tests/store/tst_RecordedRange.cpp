#include "Recording.h"

#include "store/RecordedRange.h"
#include "support/LogCapture.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

/// The range of recordings with and without an index on their times.
class tst_RecordedRange : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void indexedRecordingIsAsked();
    void emptyRecordingHasNone_data();
    void emptyRecordingHasNone();
    void withoutAnIndexEveryRowCounts();
    void batchesGoOnBetweenTheSteps();
    void rowsWrittenAfterwardsCount();
    void lockedRecordingIsReadLater();
};

namespace {

constexpr quint32 early = 1600000000;

/// As earlier versions have made it.
void removeIndex(const Recording &recording)
{
    recording.open().reset();
    if (!OtherProgram(recording.file()).exec("drop index ostrivane_pointDate"))
        qFatal("no index to remove");
}

/// Rows a second apart, of which one in the middle has the time @p middle.
void fill(const Recording &recording, int rows, quint32 middle)
{
    const OtherProgram other(recording.file());
    const QString insert =
        QStringLiteral("with recursive n(i) as (select 0 union all select i + 1 from n where i < %1) "
                       "insert into ostrivane (serialno, channel1, channel2, pointDate) "
                       "select 'A1', 21.5, 40, %2 + i from n")
            .arg(rows - 1)
            .arg(early);
    const QString shift = QStringLiteral("update ostrivane set pointDate = %1 where id = %2").arg(middle).arg(rows / 2);
    if (!other.exec(insert) || !other.exec(shift))
        qFatal("no rows");
}

} // namespace

void tst_RecordedRange::cleanup()
{
    emptyQueue();
}

void tst_RecordedRange::indexedRecordingIsAsked()
{
    const Recording recording;
    recording.open().reset();
    fill(recording, 10000, 1500000000);
    const auto store = recording.open();
    RecordedRange range(*store, recording.file());
    LogCapture log;
    QCOMPARE(range.start(), 1500000000u);
    QCOMPARE(range.end(), early + 9999);
    QCOMPARE(log.lines().size(), 2);
    QVERIFY(!range.isSearching());
}

void tst_RecordedRange::emptyRecordingHasNone_data()
{
    QTest::addColumn<bool>("isIndexed");
    QTest::newRow("with an index") << true;
    QTest::newRow("without one") << false;
}

void tst_RecordedRange::emptyRecordingHasNone()
{
    QFETCH(bool, isIndexed);
    const Recording recording;
    if (!isIndexed)
        removeIndex(recording);
    const auto store = recording.open();
    RecordedRange range(*store, recording.file());
    QCOMPARE(range.start(), 0u);
    QCOMPARE(range.end(), 0u);
    QVERIFY(!range.isSearching());
}

/// Where the clock was set back or forward for a while, the extremes lie anywhere.
void tst_RecordedRange::withoutAnIndexEveryRowCounts()
{
    for (const quint32 middle : {1500000000u, 4294967295u}) {
        const Recording recording;
        removeIndex(recording);
        fill(recording, 20000, middle);
        const auto store = recording.open();
        RecordedRange range(*store, recording.file());
        const QSignalSpy known(&range, &RecordedRange::known);
        QCOMPARE(range.start(), early);
        QCOMPARE(range.end(), early + 19999);
        QTRY_COMPARE(known.count(), 1);
        QCOMPARE(range.start(), std::min(early, middle));
        QCOMPARE(range.end(), std::max(early + 19999, middle));
        QVERIFY(!range.isSearching());
    }
}

/// No turn of the event loop is longer than a step, and none keeps a batch from the file.
void tst_RecordedRange::batchesGoOnBetweenTheSteps()
{
    constexpr int rows = 1000000;
    const Recording recording;
    removeIndex(recording);
    fill(recording, rows, 1500000000);
    const auto store = recording.open();
    const QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
    RecordedRange range(*store, recording.file());
    const QSignalSpy known(&range, &RecordedRange::known);
    int batches = 0;
    QTimer batch;
    connect(&batch, &QTimer::timeout, this, [&] {
        for (quint32 i = 0; i < 16; ++i)
            InsertSerialData::enqueue(row("B2", early + rows + i));
        store->insertNow();
        ++batches;
    });
    int turns = 0;
    QTimer turn;
    connect(&turn, &QTimer::timeout, this, [&turns] { ++turns; });
    turn.start(0);
    batch.start(50);
    QTRY_COMPARE_WITH_TIMEOUT(known.count(), 1, 120000);
    batch.stop();
    QVERIFY2(turns >= rows / RecordedRange::rowsPerStep - 2, qPrintable(QString::number(turns)));
    QVERIFY(batches > 0);
    QCOMPARE(failed.count(), 0);
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(range.start(), 1500000000u);
    QCOMPARE(range.end(), early + rows + 15);
}

void tst_RecordedRange::rowsWrittenAfterwardsCount()
{
    const Recording recording;
    removeIndex(recording);
    const auto store = recording.open();
    RecordedRange range(*store, recording.file());
    const QSignalSpy known(&range, &RecordedRange::known);
    InsertSerialData::enqueue(row("A1", early));
    for (quint32 i = 0; i < 3000; ++i)
        InsertSerialData::enqueue(row("A1", early + 10 + i));
    InsertSerialData::enqueue(row("A1", 1500000000));
    store->insertNow();
    QCOMPARE(range.end(), early + 3009);
    QTRY_COMPARE(known.count(), 1);
    QCOMPARE(range.start(), 1500000000u);
    InsertSerialData::enqueue(row("A1", 1400000000));
    store->insertNow();
    QCOMPARE(range.start(), 1400000000u);
}

void tst_RecordedRange::lockedRecordingIsReadLater()
{
    const Recording recording;
    removeIndex(recording);
    fill(recording, 5000, 1500000000);
    const auto store = recording.open();
    const auto other = std::make_unique<OtherProgram>(recording.file());
    RecordedRange range(*store, recording.file());
    const QSignalSpy known(&range, &RecordedRange::known);
    QVERIFY(other->exec("begin exclusive"));
    QCOMPARE(range.end(), early + 4999);
    bool isTried = false;
    QTimer::singleShot(50, this, [&isTried] { isTried = true; });
    QTRY_VERIFY(isTried);
    QCOMPARE(known.count(), 0);
    QVERIFY(other->exec("commit"));
    QTRY_COMPARE(known.count(), 1);
    QCOMPARE(range.start(), 1500000000u);
}

QTEST_GUILESS_MAIN(tst_RecordedRange)
#include "tst_RecordedRange.moc"
