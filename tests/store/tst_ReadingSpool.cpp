#include "store/ReadingSpool.h"
#include "store/Recording.h"
#include "support/LogCapture.h"
#include "support/WriteObstacles.h"

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <limits>

/// What reaches the spool file, when, and what becomes of it when the program ends at any point.
class tst_ReadingSpool : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_recording = std::make_unique<Recording>(); }
    void cleanup();

    void rowsComeBackExactly_data();
    void rowsComeBackExactly();
    void queuedRowsReachTheDiskByThemselves();
    void committedRowsLeave();
    void cleanEndLeavesNoFile();
    void nothingIsStoredTwiceWhereverTheProgramEnds_data();
    void nothingIsStoredTwiceWhereverTheProgramEnds();
    void equalReadingOfALaterBatchIsKept();
    void rowsStoredLongAgoAreFound();
    void unreadableRowsStayUntilTheyAreRead_data();
    void unreadableRowsStayUntilTheyAreRead();
    void idsOfAReplacedRecordingBeginAnew();
    void sideFileIsTakenInOnce();
    void damagedFileIsSetAsideAndReadAsFarAsPossible_data();
    void damagedFileIsSetAsideAndReadAsFarAsPossible();
    void foreignFileIsSetAside();
    void logBesideAnEmptyFileIsKept();
    void tornLogCostsItsEndOnly();
    void troubleIsToldAndOver();
    void troubleThatComesAtOnceIsTold();
    void deletedFileIsMadeAnew();
    void rowsInMemoryAreBounded();
    void logStaysBounded();

private:
    QString spool() const { return m_recording->spool(); }
    QByteArray content(const QString &path) const;
    bool spoolRows(const std::vector<PendingRow> &rows, qint64 storedUpTo = 0) const;

    std::unique_ptr<Recording> m_recording;
};

namespace {

PendingRow numbered(qint64 number, PendingRow row)
{
    row.number = number;
    return row;
}

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && isNoValue(b));
}

} // namespace

void tst_ReadingSpool::cleanup()
{
    m_recording.reset();
    emptyQueue();
}

QByteArray tst_ReadingSpool::content(const QString &path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Leaves @p rows in the spool of a closed recording.
bool tst_ReadingSpool::spoolRows(const std::vector<PendingRow> &rows, qint64 storedUpTo) const
{
    SpoolFile::Change change;
    change.rows = rows;
    change.storedUpTo = storedUpTo;
    return SpoolFile(spool()).write(change);
}

void tst_ReadingSpool::rowsComeBackExactly_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<double>("value");
    QTest::addColumn<quint32>("time");

    QTest::newRow("plain") << "A1" << 21.5 << 1700000000u;
    QTest::newRow("no value") << "A1" << noValue << 1u;
    QTest::newRow("all digits") << "A1" << 0.1 + 0.2 << 0u;
    QTest::newRow("smallest") << "A1" << std::numeric_limits<double>::denorm_min() << 4294967295u;
    QTest::newRow("not a number") << "A1" << std::numeric_limits<double>::quiet_NaN() << 1u;
    QTest::newRow("infinity") << "A1" << -std::numeric_limits<double>::infinity() << 1u;
    QTest::newRow("empty key") << "" << 1.0 << 1u;
    QTest::newRow("quotes") << "'); drop table waiting;--" << 1.0 << 1u;
    QTest::newRow("zero byte") << QString(QChar(0)) + "B" << 1.0 << 1u;
    QTest::newRow("beyond ASCII") << QString::fromUtf8("K\xc3\xbchlraum \xf0\x9f\x8c\xa1") << 1.0 << 1u;
}

void tst_ReadingSpool::rowsComeBackExactly()
{
    QFETCH(QString, serial);
    QFETCH(double, value);
    QFETCH(quint32, time);
    QVERIFY(spoolRows({{serial, value, 0.25, time, 7}}));
    const SpoolFile::Content read = SpoolFile(spool()).read();
    QCOMPARE(read.state, SpoolFile::State::Whole);
    QCOMPARE(read.rows.size(), size_t(1));
    QCOMPARE(read.rows[0].serial, serial);
    QVERIFY(same(value, read.rows[0].channel1));
    QCOMPARE(read.rows[0].channel2, 0.25);
    QCOMPARE(read.rows[0].time, time);
    QCOMPARE(read.rows[0].number, qint64(7));
}

void tst_ReadingSpool::queuedRowsReachTheDiskByThemselves()
{
    const auto store = m_recording->open();
    InsertSerialData::enqueue(row("B2", 1700000001));
    InsertSerialData::enqueue(row("A1", 1700000000, 0.5, noValue));
    QTRY_COMPARE(m_recording->spooledRows(),
                 QStringList({"select 'B2', 21.5, 40, 1700000001", "select 'A1', 0.5, NULL, 1700000000"}));
    QCOMPARE(m_recording->rows(), QStringList());
}

void tst_ReadingSpool::committedRowsLeave()
{
    QVERIFY(m_recording->outgrowFirstPage());
    const auto store = m_recording->open();
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(m_recording->spooledRows().size(), 1);
    store->insertNow();
    InsertSerialData::enqueue(row("A1", 1700000001));
    QTRY_COMPARE(m_recording->spooledRows(), QStringList("select 'A1', 21.5, 40, 1700000001"));
}

void tst_ReadingSpool::cleanEndLeavesNoFile()
{
    auto store = m_recording->open();
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(m_recording->spooledRows().size(), 1);
    store.reset();
    QCOMPARE(QDir(m_recording->folder()).entryList(QDir::Files), QStringList("Kitchen.dat"));
}

void tst_ReadingSpool::nothingIsStoredTwiceWhereverTheProgramEnds_data()
{
    QTest::addColumn<int>("stored");
    QTest::newRow("before the batch") << 0;
    QTest::newRow("with a part of the batch written") << 2;
    QTest::newRow("after the batch, before it left the spool") << 3;
}

void tst_ReadingSpool::nothingIsStoredTwiceWhereverTheProgramEnds()
{
    QFETCH(int, stored);
    const QStringList terms{"A1', 21.5, 40, 1700000000", "B2', NULL, 3, 1700000000", "A1', 21.5, 40, 1700000001"};
    m_recording->open().reset();
    for (int i = 0; i < stored; ++i) {
        QVERIFY(OtherProgram(m_recording->file())
                    .exec("insert into ostrivane (serialno, channel1, channel2, pointDate) select '" + terms.at(i)));
    }
    const std::vector<PendingRow> rows{numbered(1, row("A1", 1700000000)),
                                       numbered(2, row("B2", 1700000000, noValue, 3)),
                                       numbered(3, row("A1", 1700000001))};
    QVERIFY(spoolRows(rows));
    auto store = m_recording->open();
    QCOMPARE(store->openingReport().rowsReplayed, 3 - stored);
    QCOMPARE(InsertSerialData::pendingCount(), 3 - stored);
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), 3);

    // The program ends once more before they have left the spool.
    store.reset();
    QVERIFY(spoolRows(rows));
    m_recording->open()->insertNow();
    QCOMPARE(m_recording->rows(),
             QStringList({"A1|21.5|40|1700000000", "B2|NULL|3|1700000000", "A1|21.5|40|1700000001"}));
    QVERIFY(!QFile::exists(spool()));
}

/// A logger asked twice in a second may well answer the same.
void tst_ReadingSpool::equalReadingOfALaterBatchIsKept()
{
    m_recording->open().reset();
    const OtherProgram earlier(m_recording->file());
    const QString insert = QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate) values ");
    QVERIFY(earlier.exec(insert + "('A1', 21.5, 40, 1700000000)"));
    // Of a batch that has left the spool, and of one that has not.
    QVERIFY(spoolRows({numbered(5, row("A1", 1700000000))}, 1));
    m_recording->open()->insertNow();
    QCOMPARE(m_recording->rows().size(), 2);

    QVERIFY(earlier.exec(insert + "('B2', 21.5, 40, 1700000001), ('C3', 21.5, 40, 1700000001)"));
    QVERIFY(spoolRows({numbered(6, row("B2", 1700000001)), numbered(7, row("B2", 1700000001)),
                       numbered(8, row("C3", 1700000001)), numbered(9, row("C3", 1700000001))},
                      2));
    const auto store = m_recording->open();
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), 5);
}

/// The spool could not be written for a day: what it still holds was recorded long before.
void tst_ReadingSpool::rowsStoredLongAgoAreFound()
{
    m_recording->open().reset();
    const OtherProgram earlier(m_recording->file());
    QVERIFY(earlier.exec("insert into ostrivane (serialno, channel1, channel2, pointDate) values "
                         "('A1', 21.5, 40, 1700000000)"));
    QVERIFY(earlier.exec(QStringLiteral("insert into ostrivane (serialno, channel1, channel2, pointDate) "
                                        "with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) "
                                        "select 'B2', 1, 0, 1700000000 + i from n")
                             .arg(newestRowsSearched + 10)));
    QVERIFY(spoolRows({numbered(5, row("A1", 1700000000)), numbered(6, row("A1", 1700000001))}));
    m_recording->open()->insertNow();
    QCOMPARE(earlier.rows("select pointDate from ostrivane where serialno = 'A1' order by id"),
             QStringList({"1700000000", "1700000001"}));
}

void tst_ReadingSpool::unreadableRowsStayUntilTheyAreRead_data()
{
    QTest::addColumn<bool>("isStored");
    QTest::newRow("not recorded") << false;
    QTest::newRow("recorded") << true;
}

/// While a project is opened another program, say a backup, has the spool locked.
void tst_ReadingSpool::unreadableRowsStayUntilTheyAreRead()
{
    QFETCH(bool, isStored);
    QVERIFY(m_recording->outgrowFirstPage());
    const int before = m_recording->rows().size();
    if (isStored)
        QVERIFY(OtherProgram(m_recording->file())
                    .exec("insert into ostrivane (serialno, channel1, channel2, pointDate) values "
                          "('A1', 21.5, 40, 1700000000)"));
    QVERIFY(spoolRows({numbered(5, row("A1", 1700000000))}, before));
    std::unique_ptr<InsertSerialData> store;
    {
        const OtherProgram backup(spool());
        QVERIFY(backup.exec("PRAGMA locking_mode = EXCLUSIVE"));
        QVERIFY(backup.exec("BEGIN EXCLUSIVE"));
        store = m_recording->open();
    }
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    InsertSerialData::enqueue(row("B2", 1700000001));
    store->insertNow();
    store.reset();
    m_recording->open()->insertNow();
    QCOMPARE(m_recording->rows().mid(before).size(), 2);
    QVERIFY(!QFile::exists(spool()));
}

void tst_ReadingSpool::idsOfAReplacedRecordingBeginAnew()
{
    m_recording->open().reset();
    QVERIFY(spoolRows({numbered(5, row("A1", 1700000000))}, 1000));
    const auto store = m_recording->open();
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QCOMPARE(SpoolFile(spool()).read().storedUpTo, qint64(0));
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), 1);
}

void tst_ReadingSpool::sideFileIsTakenInOnce()
{
    m_recording->open().reset();
    QVERIFY(m_recording->writeSideFile({row("A1", 1700000000), row("B2", 1700000001)}));
    const QByteArray sideFile = content(m_recording->sideFile());
    {
        const OtherProgram locker(m_recording->file());
        auto store = m_recording->open();
        QCOMPARE(m_recording->spooledRows().size(), 2);
        QVERIFY(!QFile::exists(m_recording->sideFile()));
        QVERIFY(locker.exec("BEGIN EXCLUSIVE"));
        store.reset();
    }
    // The program ends between the spool's commit and the removal of the file.
    QFile again(m_recording->sideFile());
    QVERIFY(again.open(QIODevice::WriteOnly));
    again.write(sideFile);
    again.close();
    const auto store = m_recording->open();
    QVERIFY(!QFile::exists(m_recording->sideFile()));
    QCOMPARE(InsertSerialData::pendingCount(), 2);
}

void tst_ReadingSpool::damagedFileIsSetAsideAndReadAsFarAsPossible_data()
{
    QTest::addColumn<int>("page");
    QTest::addColumn<bool>("isReadable");
    QTest::newRow("first page") << 0 << false;
    QTest::newRow("page in the middle") << 10 << true;
}

void tst_ReadingSpool::damagedFileIsSetAsideAndReadAsFarAsPossible()
{
    QFETCH(int, page);
    QFETCH(bool, isReadable);
    constexpr int pageSize = 4096;
    constexpr int count = 5000;
    m_recording->open().reset();
    std::vector<PendingRow> rows;
    for (int i = 1; i <= count; ++i)
        rows.push_back(numbered(i, row("0200AA000001", 1700000000 + quint32(i))));
    QVERIFY(spoolRows(rows));
    QFile file(spool());
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.seek(page * pageSize);
    file.write(QByteArray(pageSize, 'x'));
    file.close();
    const QByteArray before = content(spool());

    const LogCapture log;
    const auto store = m_recording->open();
    QVERIFY(store);
    const QString aside = spool() + ".damaged-1";
    QCOMPARE(store->openingReport().damagedSpool, aside);
    QCOMPARE(content(aside), before);
    QCOMPARE(log.warnings().filter("damaged").size(), 1);
    const int left = InsertSerialData::pendingCount();
    QVERIFY2(isReadable ? left > count * 9 / 10 && left < count : left == 0, qPrintable(QString::number(left)));
    QCOMPARE(m_recording->spooledRows().size(), left);
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), left);
}

void tst_ReadingSpool::foreignFileIsSetAside()
{
    m_recording->open().reset();
    QVERIFY(OtherProgram(spool()).exec("create table diary (text)"));
    const QByteArray before = content(spool());
    const auto store = m_recording->open();
    QCOMPARE(content(store->openingReport().damagedSpool), before);
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(m_recording->spooledRows().size(), 1);
}

/// Opened, SQLite would delete the log.
void tst_ReadingSpool::logBesideAnEmptyFileIsKept()
{
    m_recording->open().reset();
    QByteArray log;
    {
        SpoolFile file(spool());
        SpoolFile::Change change;
        change.rows = {numbered(1, row("A1", 1700000000))};
        QVERIFY(file.write(change));
        log = content(spool() + "-wal");
    }
    QVERIFY(!log.isEmpty());
    for (const auto &[name, bytes] : {qMakePair(spool(), QByteArray()), qMakePair(spool() + "-wal", log)}) {
        QFile file(name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), qint64(bytes.size()));
    }
    const auto store = m_recording->open();
    QCOMPARE(store->openingReport().damagedSpool, spool() + ".damaged-1");
    QCOMPARE(content(spool() + ".damaged-1-wal"), log);
}

/// A copy of the files in the middle of a run, the last bytes of the log not on the disk.
void tst_ReadingSpool::tornLogCostsItsEndOnly()
{
    const auto store = m_recording->open();
    for (quint32 i = 0; i < 3; ++i) {
        InsertSerialData::enqueue(row("A1", 1700000000 + i));
        QTRY_COMPARE(m_recording->spooledRows().size(), int(i) + 1);
    }
    const Recording copy;
    QVERIFY(QFile::copy(spool(), copy.spool()));
    QVERIFY(QFile::copy(spool() + "-wal", copy.spool() + "-wal"));
    QFile log(copy.spool() + "-wal");
    QVERIFY(log.resize(log.size() - 512));
    QCOMPARE(copy.spooledRows(),
             QStringList({"select 'A1', 21.5, 40, 1700000000", "select 'A1', 21.5, 40, 1700000001"}));
}

void tst_ReadingSpool::troubleIsToldAndOver()
{
    QVERIFY(QDir(m_recording->folder()).mkdir("Kitchen.dat.spool"));
    auto store = m_recording->open();
    QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
    QSignalSpy restored(store.get(), &InsertSerialData::writingRestored);
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(failed.count(), 1);
    QVERIFY(failed.first().first().toString().startsWith("Readings cannot be saved at once and wait in memory"));
    InsertSerialData::enqueue(row("A1", 1700000001));

    QVERIFY(QDir(m_recording->folder()).rmdir("Kitchen.dat.spool"));
    QTRY_COMPARE(restored.count(), 1);
    QCOMPARE(failed.count(), 1);
    QCOMPARE(m_recording->spooledRows().size(), 2);
}

void tst_ReadingSpool::deletedFileIsMadeAnew()
{
    const auto store = m_recording->open();
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(m_recording->spooledRows().size(), 1);
    QVERIFY(QFile::remove(spool()));
    QFile::remove(spool() + "-wal");
    InsertSerialData::enqueue(row("A1", 1700000001));
    QTRY_COMPARE(m_recording->spooledRows().size(), 2);
}

void tst_ReadingSpool::rowsInMemoryAreBounded()
{
    QVERIFY(QDir(m_recording->folder()).mkdir("Kitchen.dat.spool"));
    const OtherProgram other(m_recording->file());
    const auto store = m_recording->open();
    QVERIFY(other.exec("BEGIN EXCLUSIVE"));
    QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
    QSignalSpy dropped(store.get(), &InsertSerialData::readingsDropped);
    InsertSerialData::enqueue(row("A1", 1700000000));
    QTRY_COMPARE(failed.count(), 1);
    for (int i = 1; i < InsertSerialData::mostRowsInMemory + 3; ++i)
        InsertSerialData::enqueue(row("A1", 1700000000 + quint32(i)));
    QCOMPARE(InsertSerialData::pendingCount(), InsertSerialData::mostRowsInMemory);
    QCOMPARE(failed.count(), 2);

    QVERIFY(other.exec("COMMIT"));
    store->insertNow();
    QCOMPARE(dropped.count(), 1);
    QCOMPARE(dropped.first().first().toInt(), 3);
    QCOMPARE(other.rows("select count(*) from ostrivane"),
             QStringList(QString::number(InsertSerialData::mostRowsInMemory)));
}

/// The thread may be in trouble before anybody listens.
void tst_ReadingSpool::troubleThatComesAtOnceIsTold()
{
    SpoolChange change;
    change.rows.push_back(numbered(1, row("0200AA000001", 1700000000)));
    ReadingSpool readings(m_recording->folder() + "/none/Kitchen.dat.spool");
    readings.bring(change);
    readings.finish({});
    const QSignalSpy failed(&readings, &ReadingSpool::failed);
    QTRY_COMPARE(failed.count(), 1);
}

/// Weeks of a recording that somebody keeps locked.
void tst_ReadingSpool::logStaysBounded()
{
    constexpr qint64 mebibyte = 1024 * 1024;
    SpoolFile file(spool());
    qint64 number = 0;
    for (int round = 0; round < 1000; ++round) {
        SpoolFile::Change change;
        for (int i = 0; i < 64; ++i)
            change.rows.push_back(numbered(++number, row("0200AA000001", 1700000000 + quint32(round))));
        QVERIFY(file.write(change));
    }
    QVERIFY(QFileInfo(spool() + "-wal").size() < 5 * mebibyte);
}

QTEST_GUILESS_MAIN(tst_ReadingSpool)
#include "tst_ReadingSpool.moc"
