#include "store/Recording.h"
#include "support/LogCapture.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QtTest>

#include <limits>
#include <sqlite3.h>

/// What reaches the file, and the log, when the queue is written.
class tst_InsertSerialData_batches : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void twoDevicesAreOneStatement();
    void logLinesOfABatch();
    void emptyQueueIsNoAccess();
    void closedStoreLeavesTheQueue();
    void rowsQueuedBeforeOpeningAreWritten();
    void allStoresShareTheQueue();
    void equalRowsOfABatchAreStoredOnce();
    void equalRowsOfTwoBatchesAreBothStored();
    void largeBatchIsStoredWhole();
    void hostileKeysCostNothing();
    void valuesThatAreNotFiniteCostNothing();
    void memoryDoesNotGrowWithTheFile();
};

void tst_InsertSerialData_batches::cleanup()
{
    emptyQueue();
}

void tst_InsertSerialData_batches::twoDevicesAreOneStatement()
{
    const Recording recording;
    const auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000, 21.5, noValue));
    InsertSerialData::enqueue(row("B2", 1700000000, 3, 4));

    const LogCapture log;
    store->insertNow();

    QVERIFY(log.lines().contains(
        "InsertSerialData::insertNow : query : insert into ostrivane (serialno, channel1, channel2, pointDate) select "
        "'A1', 21.5, NULL, 1700000000 union select 'B2', 3, 4, 1700000000;"));
    QCOMPARE(recording.rows(), QStringList({"A1|21.5|NULL|1700000000", "B2|3|4|1700000000"}));
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

void tst_InsertSerialData_batches::logLinesOfABatch()
{
    const Recording recording;
    const auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000));

    const LogCapture log;
    store->insertNow();

    const QStringList lines = log.lines();
    QCOMPARE(lines.size(), 7);
    const QString month = QDate::currentDate().toString(QStringLiteral("MM"));
    const QString clock = QStringLiteral("\\d\\d:%1:\\d\\d\\.\\d\\d\\d$").arg(month);
    QVERIFY(QRegularExpression("^InsertSerialData::insertNow : starttime : " + clock).match(lines.at(0)).hasMatch());
    QCOMPARE(lines.at(1), QString("InsertSerialData::insertNow : query : insert into ostrivane (serialno, channel1, "
                                  "channel2, pointDate) select 'A1', 21.5, 40, 1700000000;"));
    QCOMPARE(lines.at(2), QString("begin transaction : true"));
    QCOMPARE(lines.at(3), QString("insert query : true"));
    QVERIFY(lines.at(4).startsWith("lastError : "));
    QCOMPARE(lines.at(4).trimmed(), QString("lastError :"));
    QCOMPARE(lines.at(5), QString("commit transaction : true"));
    QVERIFY(QRegularExpression("^InsertSerialData::insertNow : endtime : " + clock).match(lines.at(6)).hasMatch());
}

void tst_InsertSerialData_batches::emptyQueueIsNoAccess()
{
    const Recording recording;
    int questions = 0;
    InsertSerialData store(recording.file(), QStringLiteral("test"), nullptr, [&questions](const QString &) {
        ++questions;
        return quint64(0);
    });
    QVERIFY(store.createConnection());
    const OtherProgram locker(recording.file());
    QVERIFY(locker.exec("BEGIN EXCLUSIVE"));
    const QSignalSpy failed(&store, &InsertSerialData::writingFailed);

    const LogCapture log;
    store.insertNow();

    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(questions, 0);
    QCOMPARE(failed.count(), 0);
}

void tst_InsertSerialData_batches::closedStoreLeavesTheQueue()
{
    const Recording recording;
    InsertSerialData store(recording.file(), QStringLiteral("test"));
    InsertSerialData::enqueue(row("A1", 1700000000));

    const LogCapture log;
    store.insertNow();

    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QCOMPARE(log.lines(), QStringList());
    QVERIFY(!QFile::exists(recording.file()));
}

void tst_InsertSerialData_batches::rowsQueuedBeforeOpeningAreWritten()
{
    const Recording recording;
    InsertSerialData::enqueue(row("A1", 1700000000));
    const auto store = recording.open();
    QCOMPARE(recording.rows(), QStringList());
    store->insertNow();
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
}

void tst_InsertSerialData_batches::allStoresShareTheQueue()
{
    const Recording recording;
    const Recording another;
    const auto store = recording.open();
    InsertSerialData second(another.file(), QStringLiteral("second"));
    QVERIFY(second.createConnection());
    InsertSerialData::enqueue(row("A1", 1700000000));
    second.insertNow();
    store->insertNow();

    QCOMPARE(another.rows(), QStringList("A1|21.5|40|1700000000"));
    QCOMPARE(recording.rows(), QStringList());
}

void tst_InsertSerialData_batches::equalRowsOfABatchAreStoredOnce()
{
    const Recording recording;
    const auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000, noValue, noValue));
    InsertSerialData::enqueue(row("A1", 1700000000, 21.5, 40));
    InsertSerialData::enqueue(row("A1", 1700000000, 21.5, 40));
    InsertSerialData::enqueue(row("A1", 1700000000, noValue, noValue));
    InsertSerialData::enqueue(row("A1", 1700000000, 21.5, 40.5));
    store->insertNow();

    QStringList rows = recording.rows();
    rows.sort();
    QCOMPARE(rows, QStringList({"A1|21.5|40.5|1700000000", "A1|21.5|40|1700000000", "A1|NULL|NULL|1700000000"}));
}

void tst_InsertSerialData_batches::equalRowsOfTwoBatchesAreBothStored()
{
    const Recording recording;
    const auto store = recording.open();
    for (int i = 0; i < 2; ++i) {
        InsertSerialData::enqueue(row("A1", 1700000000));
        store->insertNow();
    }
    QCOMPARE(recording.rows().size(), 2);
}

void tst_InsertSerialData_batches::largeBatchIsStoredWhole()
{
    const Recording recording;
    const auto store = recording.open();
    for (quint32 i = 0; i < 600; ++i)
        InsertSerialData::enqueue(row("A1", 1700000000 + i));
    for (quint32 i = 0; i < 600; ++i)
        InsertSerialData::enqueue(row("A1", 1700000000 + 2 * i));

    const LogCapture log;
    store->insertNow();

    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(recording.rows().size(), 900);
    QCOMPARE(OtherProgram(recording.file()).rows("select count(distinct pointDate) from ostrivane"),
             QStringList("900"));
    QCOMPARE(log.lines().count("insert query : true"), 2);
    QCOMPARE(log.lines().count("begin transaction : true"), 1);
    QCOMPARE(log.lines().count("commit transaction : true"), 1);
    QCOMPARE(recording.integrity(), QString("ok"));
}

void tst_InsertSerialData_batches::hostileKeysCostNothing()
{
    const QStringList keys{"'",
                           "''",
                           "O'Brien",
                           "'); drop table ostrivane;--",
                           "' union select name, 1, 2, 3 from sqlite_master;--",
                           "%s %1 %n",
                           QString(QChar(0)),
                           QString("A") + QChar(0) + "'B",
                           QString::fromUtf8("K\xc3\xbchlraum \xc2\xb0"
                                             "C"),
                           QString(100000, QLatin1Char('x'))};
    const Recording recording;
    const auto store = recording.open();
    for (const QString &key : keys)
        InsertSerialData::enqueue({key, 1, 2, 1700000000});
    const QString half(QChar(0xd800));
    InsertSerialData::enqueue({half, 1, 2, 1700000000});
    InsertSerialData::enqueue(row("A1", 1700000000));
    const QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
    store->insertNow();

    QCOMPARE(failed.count(), 0);
    QStringList stored = OtherProgram(recording.file()).rows("select serialno from ostrivane");
    QStringList expected = keys + QStringList({"A1", QString::fromUtf8(half.toUtf8())});
    stored.sort();
    expected.sort();
    QCOMPARE(stored, expected);
    QCOMPARE(recording.integrity(), QString("ok"));
}

void tst_InsertSerialData_batches::valuesThatAreNotFiniteCostNothing()
{
    using limits = std::numeric_limits<double>;
    const Recording recording;
    const auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000, limits::quiet_NaN(), limits::infinity()));
    InsertSerialData::enqueue(row("B2", 1700000000, -limits::infinity(), 1234567));
    InsertSerialData::enqueue(row("C3", 1700000000, 21.123456, -0.5));
    store->insertNow();

    QCOMPARE(recording.rows(),
             QStringList({"A1|NULL|NULL|1700000000", "B2|NULL|1234570|1700000000", "C3|21.1235|-0.5|1700000000"}));
}

void tst_InsertSerialData_batches::memoryDoesNotGrowWithTheFile()
{
    constexpr int batches = 150;
    constexpr int batchSize = 1000;
    constexpr int bytesPerMiB = 1024 * 1024;
    const Recording recording;
    const auto store = recording.open();
    quint32 time = 1700000000;
    const auto writeBatch = [&] {
        for (int i = 0; i < batchSize; ++i)
            InsertSerialData::enqueue(row("0200AA000001", ++time));
        store->insertNow();
    };
    writeBatch();
    const qint64 before = sqlite3_memory_used();
    QVERIFY(before > 0);
    for (int i = 0; i < batches; ++i)
        writeBatch();
    QVERIFY(QFileInfo(recording.file()).size() > 4 * bytesPerMiB);
    QVERIFY2(sqlite3_memory_used() - before < bytesPerMiB, qPrintable(QString::number(sqlite3_memory_used() - before)));
}

QTEST_GUILESS_MAIN(tst_InsertSerialData_batches)
#include "tst_InsertSerialData_batches.moc"
