#include "store/Recording.h"
#include "store/SpoolFile.h"
#include "store/StoredRows.h"
#include "support/LogCapture.h"

#include <QSignalSpy>
#include <QtTest>

/// Rows that a store could not write in its life time wait beside their recording.
class tst_InsertSerialData_keptRows : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void lockedRowsAreKeptAndTakenInAgain();
    void keptRowsComeFirst();
    void keptRowsOfAFullDisk();
    void keptRowsNeverReachAnotherRecording();
    void rowsStayInTheSpoolUntilTheyAreCommitted();
    void rowsThatWaitTwiceAreKeptOnce();
    void crashBetweenCommitAndRemovalStoresNothingTwice();
    void newestRowsAreSearched_data();
    void newestRowsAreSearched();
    void aLargeBatchIsSearchedForAsAWhole();
    void takenInOnlyOnce();
    void anotherStoreMayWriteThem();
    void failedStatementLeavesTheSideFile();
    void laterRowsJoinASideFileThatStayed();
    void damagedSideFileLosesNothingReadable();
    void rowsThatCannotBeKeptAreReported();
};

namespace {

constexpr quint64 fullDisk = 0;
const QString refuseEverything = QStringLiteral("create trigger refuse before insert on ostrivane "
                                                "begin select raise(abort, 'refused'); end");

/// Leaves @p rows beside a recording that nothing was written into.
void keep(const Recording &recording, const std::vector<PendingRow> &rows)
{
    recording.open().reset();
    QVERIFY(recording.writeSideFile(rows));
}

} // namespace

void tst_InsertSerialData_keptRows::cleanup()
{
    emptyQueue();
}

void tst_InsertSerialData_keptRows::lockedRowsAreKeptAndTakenInAgain()
{
    const Recording recording;
    auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000, 0.1 + 0.2, noValue));
    InsertSerialData::enqueue(row("O'Brien", 1700000001));
    {
        const OtherProgram locker(recording.file());
        QVERIFY(locker.exec("BEGIN EXCLUSIVE"));
        const LogCapture log;
        store.reset();
        QCOMPARE(log.lines(),
                 QStringList({"InsertSerialData::~InsertSerialData : QSqlDatabase::removeDatabase(testfiledb\")",
                              "InsertSerialData::~InsertSerialData()"}));
    }
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QVERIFY(QFile::exists(recording.spool()));
    QCOMPARE(recording.rows(), QStringList());
    const std::vector<PendingRow> kept = SpoolFile(recording.spool()).read().rows;
    QCOMPARE(kept.size(), size_t(2));
    QCOMPARE(kept[0].channel1 == 0.1 + 0.2, true);
    QVERIFY(isNoValue(kept[0].channel2));

    store = recording.open();
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    store->insertNow();
    QCOMPARE(recording.rows(), QStringList({"A1|0.3|NULL|1700000000", "O'Brien|21.5|40|1700000001"}));
    QCOMPARE(store->openingReport().rowsReplayed, 2);
    store.reset();
    QVERIFY(!QFile::exists(recording.spool()));
}

void tst_InsertSerialData_keptRows::keptRowsComeFirst()
{
    const Recording recording;
    keep(recording, {row("Z9", 1700000005), row("Y8", 1700000004)});
    InsertSerialData::enqueue(row("A1", 1700000006));
    const auto store = recording.open();

    const LogCapture log;
    store->insertNow();
    QVERIFY(log.lines().contains(
        "InsertSerialData::insertNow : query : insert into ostrivane (serialno, channel1, channel2, pointDate) select "
        "'Z9', 21.5, 40, 1700000005 union select 'Y8', 21.5, 40, 1700000004 union select 'A1', 21.5, 40, 1700000006;"));
    QCOMPARE(recording.rows().size(), 3);
}

void tst_InsertSerialData_keptRows::keptRowsOfAFullDisk()
{
    const Recording recording;
    auto store = recording.open(fullDisk);
    InsertSerialData::enqueue(row("A1", 1700000000));
    store.reset();
    QCOMPARE(recording.rows(), QStringList());

    recording.open()->insertNow();
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
}

void tst_InsertSerialData_keptRows::keptRowsNeverReachAnotherRecording()
{
    const Recording recording;
    const Recording another;
    auto store = recording.open(fullDisk);
    InsertSerialData::enqueue(row("A1", 1700000000));
    store.reset();

    store = another.open();
    InsertSerialData::enqueue(row("B2", 1700000001));
    store->insertNow();
    QCOMPARE(another.rows(), QStringList("B2|21.5|40|1700000001"));
    store.reset();

    store = recording.open();
    store->insertNow();
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
}

void tst_InsertSerialData_keptRows::rowsStayInTheSpoolUntilTheyAreCommitted()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    const OtherProgram locker(recording.file());
    auto store = recording.open();
    QVERIFY(!QFile::exists(recording.sideFile()));
    QCOMPARE(recording.spooledRows().size(), 1);

    QVERIFY(locker.exec("BEGIN EXCLUSIVE"));
    store->insertNow();
    QCOMPARE(recording.spooledRows().size(), 1);

    QVERIFY(locker.exec("COMMIT"));
    store->insertNow();
    store.reset();
    QVERIFY(!QFile::exists(recording.spool()));
    QCOMPARE(recording.rows().size(), 1);
}

void tst_InsertSerialData_keptRows::rowsThatWaitTwiceAreKeptOnce()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    auto store = recording.open(fullDisk);
    InsertSerialData::enqueue(row("B2", 1700000001));
    store.reset();

    QCOMPARE(recording.spooledRows().size(), 2);
    recording.open()->insertNow();
    QCOMPARE(recording.rows(), QStringList({"A1|21.5|40|1700000000", "B2|21.5|40|1700000001"}));
}

void tst_InsertSerialData_keptRows::crashBetweenCommitAndRemovalStoresNothingTwice()
{
    const std::vector<PendingRow> rows{row("A1", 1700000000, 0.1 + 0.2, noValue),
                                       row("B2", 1700000001),
                                       {QString("C'") + QChar(0), 1234567, -0.5, 1700000002}};
    const Recording recording;
    recording.open().reset();
    QVERIFY(recording.writeSideFile(rows));
    recording.open()->insertNow();
    QCOMPARE(recording.rows().size(), 3);

    QVERIFY(recording.writeSideFile({rows[0], rows[1], rows[2], row("B2", 1700000001, 22)}));
    const auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000003));
    store->insertNow();
    QCOMPARE(recording.rows().size(), 5);
    QVERIFY(!QFile::exists(recording.sideFile()));

    // When all of them were there already, the file goes, too.
    QVERIFY(recording.writeSideFile(rows));
    QVERIFY(OtherProgram(recording.file()).exec("drop index ostrivane_pointDate"));
    InsertSerialData second(recording.file(), QStringLiteral("second"));
    QVERIFY(second.createConnection());
    const QSignalSpy failed(&second, &InsertSerialData::writingFailed);
    second.insertNow();
    QCOMPARE(failed.count(), 0);
    QCOMPARE(recording.rows().size(), 5);
    QVERIFY(!QFile::exists(recording.sideFile()));
    QCOMPARE(recording.integrity(), QString("ok"));
}

void tst_InsertSerialData_keptRows::newestRowsAreSearched_data()
{
    QTest::addColumn<int>("rowsSince");
    QTest::addColumn<int>("copies");
    QTest::newRow("found") << newestRowsSearched - 1 << 1;
    QTest::newRow("too long ago") << newestRowsSearched << 2;
}

/// The recording may be larger than the memory: it is not gone through for the sake of a row.
void tst_InsertSerialData_keptRows::newestRowsAreSearched()
{
    QFETCH(int, rowsSince);
    QFETCH(int, copies);
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    const OtherProgram other(recording.file());
    QVERIFY(other.exec("insert into ostrivane (serialno, channel1, channel2, pointDate) values "
                       "('A1', 21.5, 40, 1700000000)"));
    QVERIFY(other.exec(QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate) "
                                      "with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) "
                                      "select 'B2', i, 0, 1700000000 from n")
                           .arg(rowsSince)));
    recording.open()->insertNow();
    QCOMPARE(other.rows("select count(*) from ostrivane where serialno = 'A1'"), QStringList(QString::number(copies)));
}

/// Half an hour of many loggers, while another program had the recording locked.
void tst_InsertSerialData_keptRows::aLargeBatchIsSearchedForAsAWhole()
{
    constexpr int count = newestRowsSearched + 10;
    const Recording recording;
    recording.open().reset();
    const OtherProgram other(recording.file());
    QVERIFY(other.exec(QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate) "
                                      "with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) "
                                      "select 'A1', 21.5, 40, 1700000000 + i from n")
                           .arg(count)));
    std::vector<PendingRow> rows;
    for (int i = 1; i <= count; ++i)
        rows.push_back(row("A1", quint32(1700000000 + i)));
    QVERIFY(recording.writeSideFile(rows));
    recording.open()->insertNow();
    QCOMPARE(other.rows("select count(*) from ostrivane"), QStringList(QString::number(count)));
}

void tst_InsertSerialData_keptRows::takenInOnlyOnce()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    const auto store = recording.open();
    QVERIFY(store->createConnection());
    QCOMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_InsertSerialData_keptRows::anotherStoreMayWriteThem()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000), row("B2", 1700000001), row("C3", 1700000002)});
    const auto store = recording.open();
    const Recording another;
    InsertSerialData second(another.file(), QStringLiteral("second"));
    QVERIFY(second.createConnection());
    second.insertNow();
    QCOMPARE(another.rows().size(), 3);

    InsertSerialData::enqueue(row("D4", 1700000003));
    store->insertNow();
    QCOMPARE(recording.rows(), QStringList("D4|21.5|40|1700000003"));
}

void tst_InsertSerialData_keptRows::failedStatementLeavesTheSideFile()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    const OtherProgram other(recording.file());
    auto store = recording.open();
    QVERIFY(other.exec(refuseEverything));
    store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    store.reset();
    QCOMPARE(recording.spooledRows().size(), 1);

    QVERIFY(other.exec("drop trigger refuse"));
    recording.open()->insertNow();
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
    QVERIFY(!QFile::exists(recording.sideFile()));
}

void tst_InsertSerialData_keptRows::laterRowsJoinASideFileThatStayed()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000)});
    const OtherProgram other(recording.file());
    auto store = recording.open();
    QVERIFY(other.exec(refuseEverything));
    store->insertNow();
    InsertSerialData::enqueue(row("B2", 1700000001));
    QVERIFY(other.exec("BEGIN EXCLUSIVE"));
    store.reset();
    QVERIFY(other.exec("COMMIT"));
    QVERIFY(other.exec("drop trigger refuse"));

    recording.open()->insertNow();
    QCOMPARE(recording.rows(), QStringList({"A1|21.5|40|1700000000", "B2|21.5|40|1700000001"}));
}

void tst_InsertSerialData_keptRows::damagedSideFileLosesNothingReadable()
{
    const Recording recording;
    keep(recording, {row("A1", 1700000000), row("B2", 1700000001), row("C3", 1700000002)});
    QFile file(recording.sideFile());
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QByteArray damaged = file.readAll().replace("1700000001", "1700\x7f\xff");
    file.resize(0);
    file.seek(0);
    file.write(damaged);
    file.close();

    const LogCapture log;
    auto store = recording.open();
    QVERIFY(store);
    QCOMPARE(log.warnings().filter("[ERROR]").size(), 1);
    QVERIFY(log.warnings().first().contains(recording.sideFile()));
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    // A crash now must not lose them either.
    QCOMPARE(recording.spooledRows().size(), 2);
    store->insertNow();

    QCOMPARE(recording.rows(), QStringList({"A1|21.5|40|1700000000", "C3|21.5|40|1700000002"}));
    QVERIFY(!QFile::exists(recording.sideFile()));
    QFile aside(recording.sideFile() + ".damaged-1");
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), damaged);
}

void tst_InsertSerialData_keptRows::rowsThatCannotBeKeptAreReported()
{
    const Recording recording;
    auto store = recording.open(fullDisk);
    QVERIFY(QDir(recording.folder()).removeRecursively());
    InsertSerialData::enqueue(row("A1", 1700000000));
    InsertSerialData::enqueue(row("A1", 1700000001));
    QStringList reasons;
    connect(store.get(), &InsertSerialData::writingFailed, this,
            [&reasons](const QString &reason) { reasons << reason; });
    const LogCapture log;
    store.reset();

    QCOMPARE(reasons.size(), 2);
    QCOMPARE(reasons.last(), QString("2 readings could not be written and are lost."));
    QCOMPARE(log.warnings().filter("InsertSerialData::~InsertSerialData : [ERROR]").size(), 1);
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

QTEST_GUILESS_MAIN(tst_InsertSerialData_keptRows)
#include "tst_InsertSerialData_keptRows.moc"
