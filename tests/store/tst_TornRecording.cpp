#include "store/FileCheck.h"
#include "store/Recording.h"
#include "store/Salvage.h"
#include "store/TornRecording.h"
#include "store/WriteLog.h"

#include <QDir>
#include <QFile>
#include <QLoggingCategory>
#include <QSemaphore>
#include <QThread>
#include <QtTest>

#include <random>

/// Recordings that were cut in the middle of a commit, with every cut there is.
class tst_TornRecording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void everyCutIsFound_data();
    void everyCutIsFound();
    void unsyncedSectorsAreFound_data();
    void unsyncedSectorsAreFound();
    void firstRowsAreThereWhereverTheirPageIsCut_data();
    void firstRowsAreThereWhereverTheirPageIsCut();
    void cutCreationIsFound();
    void tornFileIsSetAsideUntouched();
    void olderTornFileStays();
    void replacementCutOffIsFinished();
    void attemptCutOffIsStartedAgain();
    void foreignFileIsNotTouched_data();
    void foreignFileIsNotTouched();
    void wholeFileIsNotTouched_data();
    void wholeFileIsNotTouched();
    void commitOnItsWayIsNoTornFile();
    void nothingToSaveStillRecords();

private:
    bool record(int rows, int batch, quint32 start = 1700000000, qint64 step = 1);
    QByteArray content(const QString &path) const;
    void write(const QByteArray &content) const { write(m_recording.file(), content); }
    static void write(const QString &path, const QByteArray &content);
    QString judge(const QByteArray &content);
    QString mend(const QStringList &rowsBefore);

    Recording m_recording;
};

namespace {

constexpr int sector = 512;

PendingRow reading(int number, quint32 time)
{
    const QString key = QStringLiteral("TEMPERATURE %1").arg(number % 16, 3, 10, QLatin1Char('0'));
    return {key, 20 + number % 100 / 10.0, number % 7 == 0 ? noValue : 40 + number % 30 / 4.0, time};
}

/// When the first page of rows becomes the root of a tree, it is overwritten before the rows have their new page. Cut
/// between the two, they are nowhere in the file.
bool rootSplits(const QByteArray &before, const QByteArray &after)
{
    constexpr int root = 4096;
    return before.at(root) != after.at(root);
}

QStringList rowsById(const QString &file)
{
    return OtherProgram(file).rows(
        QStringLiteral("select id, serialno, channel1, channel2, pointDate from ostrivane order by id"));
}

void removeRecording(const Recording &recording)
{
    QDir folder(recording.folder());
    const QStringList files = folder.entryList(QDir::Files);
    for (const QString &file : files)
        folder.remove(file);
}

} // namespace

void tst_TornRecording::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.store=false\nsorvanto.store.warning=false"));
}

void tst_TornRecording::cleanup()
{
    emptyQueue();
    removeRecording(m_recording);
}

bool tst_TornRecording::record(int rows, int batch, quint32 start, qint64 step)
{
    const auto store = m_recording.open();
    if (!store)
        return false;
    for (int i = 0; i < rows; ++i) {
        InsertSerialData::enqueue(reading(i, quint32(start + i * step)));
        if (InsertSerialData::pendingCount() == batch)
            store->insertNow();
    }
    store->insertNow();
    return InsertSerialData::pendingCount() == 0;
}

QByteArray tst_TornRecording::content(const QString &path) const
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_TornRecording::write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

/// What is wrong with the verdict on a file in this state; empty when it is right.
QString tst_TornRecording::judge(const QByteArray &state)
{
    removeRecording(m_recording);
    write(state);
    const bool isWhole = m_recording.integrity() == QLatin1String("ok");
    const FileVerdict verdict = checkRecording(m_recording.file());
    return verdict == (isWhole ? FileVerdict::Whole : FileVerdict::Torn)
               ? QString()
               : QStringLiteral("verdict %1: %2").arg(int(verdict)).arg(m_recording.integrity());
}

/// What is wrong with the recording after it was opened in that state.
QString tst_TornRecording::mend(const QStringList &rowsBefore)
{
    const auto store = m_recording.open();
    if (!store)
        return QStringLiteral("not opened");
    if (m_recording.integrity() != QLatin1String("ok"))
        return m_recording.integrity();
    const QStringList rows = rowsById(m_recording.file());
    if (rows.mid(0, rowsBefore.size()) != rowsBefore)
        return QStringLiteral("rows lost: %1 of %2").arg(rows.size()).arg(rowsBefore.size());
    InsertSerialData::enqueue(row("after", 1800000000));
    store->insertNow();
    const QStringList after = rowsById(m_recording.file());
    return after.size() == rows.size() + 1 && m_recording.integrity() == QLatin1String("ok")
               ? QString()
               : QStringLiteral("does not record");
}

void tst_TornRecording::everyCutIsFound_data()
{
    QTest::addColumn<int>("rowsBefore");
    QTest::addColumn<int>("batch");
    QTest::addColumn<qint64>("step");

    for (const int batch : {8, 128}) {
        for (const int rows : {0, 40, 88, 1000}) {
            QTest::addRow("%d rows, batch of %d", rows, batch) << rows << batch << qint64(1);
            QTest::addRow("%d rows, batch of %d, clock going back", rows, batch) << rows << batch << qint64(-3);
        }
    }
}

void tst_TornRecording::everyCutIsFound()
{
    QFETCH(int, rowsBefore);
    QFETCH(int, batch);
    QFETCH(qint64, step);

    QVERIFY(record(rowsBefore, 128, 1700000000, step));
    const QByteArray whole = content(m_recording.file());
    QByteArray state = whole;
    const QStringList before = rowsById(m_recording.file());
    std::vector<WriteLog::Write> writes;
    {
        const WriteLog log(m_recording.file());
        QVERIFY(record(batch, batch, quint32(1700000000 + rowsBefore * step), step));
        writes = log.writes();
    }
    QVERIFY(!writes.empty());
    const bool split = rootSplits(whole, content(m_recording.file()));

    for (size_t i = 0; i < writes.size(); ++i) {
        for (int size = 0; size < writes[i].bytes.size(); size += sector) {
            QByteArray cut = state;
            applyPart(writes[i], size, cut);
            QString problem = judge(cut);
            // Opening syncs a new file each time.
            if (problem.isEmpty() && (size == 0 || size == sector))
                problem = mend(split ? QStringList() : before);
            QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("write %1 of %2 at %3 cut after %4 bytes: %5")
                                                       .arg(i)
                                                       .arg(writes.size())
                                                       .arg(writes[i].offset)
                                                       .arg(size)
                                                       .arg(problem)));
        }
        apply(writes[i], state);
    }
}

void tst_TornRecording::unsyncedSectorsAreFound_data()
{
    everyCutIsFound_data();
}

/// After a power cut any of the sectors that were not synced may be missing.
void tst_TornRecording::unsyncedSectorsAreFound()
{
    QFETCH(int, rowsBefore);
    QFETCH(int, batch);
    QFETCH(qint64, step);

    QVERIFY(record(rowsBefore, 128, 1700000000, step));
    const QByteArray state = content(m_recording.file());
    const QStringList before = rowsById(m_recording.file());
    std::vector<WriteLog::Write> sectors;
    {
        const WriteLog log(m_recording.file());
        QVERIFY(record(batch, batch, quint32(1700000000 + rowsBefore * step), step));
        for (const WriteLog::Write &write : log.writes()) {
            for (int at = 0; at < write.bytes.size(); at += sector)
                sectors.push_back({write.offset + at, write.bytes.mid(at, sector)});
        }
    }
    const bool split = rootSplits(state, content(m_recording.file()));
    std::mt19937 random(quint32(rowsBefore * 1000 + batch)); // the same every time
    for (int round = 0; round < 40; ++round) {
        QByteArray torn = state;
        for (const WriteLog::Write &write : sectors) {
            if (random() % 4 != 0)
                apply(write, torn);
        }
        QString problem = judge(torn);
        if (problem.isEmpty() && round < 4)
            problem = mend(split ? QStringList() : before);
        QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("round %1: %2").arg(round).arg(problem)));
    }
}

void tst_TornRecording::firstRowsAreThereWhereverTheirPageIsCut_data()
{
    QTest::addColumn<int>("rowsBefore");
    QTest::addColumn<bool>("isReopened");
    QTest::addColumn<bool>("hasIndex");

    for (const int rows : {16, 64, 72}) {
        QTest::addRow("%d rows", rows) << rows << false << true;
        QTest::addRow("%d rows of an earlier run", rows) << rows << true << true;
        QTest::addRow("%d rows of an older version", rows) << rows << true << false;
    }
}

/// The program ends in the middle of the batch in which the table's first page becomes the root of a tree.
void tst_TornRecording::firstRowsAreThereWhereverTheirPageIsCut()
{
    QFETCH(int, rowsBefore);
    QFETCH(bool, isReopened);
    QFETCH(bool, hasIndex);
    constexpr int batch = 100;
    constexpr quint32 start = 1700000000;

    auto store = m_recording.open();
    QVERIFY(hasIndex || OtherProgram(m_recording.file()).exec("drop index ostrivane_pointDate"));
    for (int i = 0; i < rowsBefore; ++i) {
        InsertSerialData::enqueue(reading(i, start + quint32(i)));
        if (InsertSerialData::pendingCount() == 8)
            store->insertNow();
    }
    if (isReopened) {
        store.reset();
        store = m_recording.open();
    }
    for (int i = rowsBefore; i < rowsBefore + batch; ++i)
        InsertSerialData::enqueue(reading(i, start + quint32(i)));
    QTRY_COMPARE(m_recording.spooledRows().size(), rowsBefore + batch);
    const QByteArray spool = content(m_recording.spool());
    const QByteArray spoolLog = content(m_recording.spool() + "-wal");
    QByteArray state = content(m_recording.file());
    const QByteArray before = state;
    std::vector<WriteLog::Write> writes;
    {
        const WriteLog log(m_recording.file());
        store->insertNow();
        writes = log.writes();
    }
    store.reset();
    const QStringList expected = m_recording.rows();
    QCOMPARE(expected.size(), rowsBefore + batch);
    QVERIFY(rootSplits(before, content(m_recording.file())));

    for (size_t i = 0; i < writes.size(); ++i) {
        for (const int size : {0, sector}) {
            QByteArray cut = state;
            applyPart(writes[i], size, cut);
            removeRecording(m_recording);
            write(m_recording.file(), cut);
            write(m_recording.spool(), spool);
            write(m_recording.spool() + "-wal", spoolLog);
            m_recording.open()->insertNow();
            const QStringList rows = m_recording.rows();
            const QString problem = m_recording.integrity();
            QVERIFY2(rows == expected && problem == "ok",
                     qPrintable(QString("write %1 of %2 at %3 cut after %4 bytes: %5 of %6 rows, %7")
                                    .arg(i)
                                    .arg(writes.size())
                                    .arg(writes[i].offset)
                                    .arg(size)
                                    .arg(rows.size())
                                    .arg(expected.size())
                                    .arg(problem)));
        }
        apply(writes[i], state);
    }
}

void tst_TornRecording::cutCreationIsFound()
{
    std::vector<WriteLog::Write> writes;
    {
        const WriteLog log(m_recording.file());
        QVERIFY(record(0, 8));
        writes = log.writes();
    }
    QVERIFY(writes.size() > 3);
    QByteArray state;
    for (size_t i = 0; i < writes.size(); ++i) {
        for (int size = 0; size < writes[i].bytes.size(); size += sector) {
            QByteArray cut = state;
            applyPart(writes[i], size, cut);
            if (cut.isEmpty())
                continue;
            removeRecording(m_recording);
            write(cut);
            QVERIFY2(m_recording.open(), qPrintable(QStringLiteral("write %1 cut after %2").arg(i).arg(size)));
            QCOMPARE(m_recording.integrity(), QString("ok"));
        }
        apply(writes[i], state);
    }
}

void tst_TornRecording::tornFileIsSetAsideUntouched()
{
    QVERIFY(record(1000, 128));
    const QByteArray torn = content(m_recording.file()).chopped(4096);
    write(torn);
    {
        const auto store = m_recording.open();
        QVERIFY(store);
        const OpeningReport report = store->openingReport();
        QCOMPARE(report.tornFile, m_recording.file() + ".torn-1");
        QVERIFY2(report.rowsSalvaged > 900 && report.rowsSalvaged <= 1000,
                 qPrintable(QString::number(report.rowsSalvaged)));
        QCOMPARE(rowsById(m_recording.file()).size(), report.rowsSalvaged);
    }
    QCOMPARE(content(m_recording.file() + ".torn-1"), torn);
    const OtherProgram other(m_recording.file());
    QCOMPARE(other.rows("select count(*) from sqlite_master where name='ostrivane_pointDate'"), QStringList("1"));
    QCOMPARE(QDir(m_recording.folder()).entryList(QDir::Files), QStringList({"Kitchen.dat", "Kitchen.dat.torn-1"}));
    // Another opening has nothing to tell.
    const auto again = m_recording.open();
    QVERIFY(again);
    QCOMPARE(again->openingReport().tornFile, QString());
}

void tst_TornRecording::olderTornFileStays()
{
    QVERIFY(record(300, 128));
    write(content(m_recording.file()).chopped(4096));
    QFile older(m_recording.file() + ".torn-1");
    QVERIFY(older.open(QIODevice::WriteOnly));
    older.write("older");
    older.close();
    const auto store = m_recording.open();
    QVERIFY(store);
    QCOMPARE(store->openingReport().tornFile, m_recording.file() + ".torn-2");
    QCOMPARE(content(older.fileName()), QByteArray("older"));
}

void tst_TornRecording::replacementCutOffIsFinished()
{
    QVERIFY(record(300, 128));
    const QStringList rows = rowsById(m_recording.file());
    QVERIFY(QFile::rename(m_recording.file(), m_recording.file() + ".salvaged"));
    QVERIFY(m_recording.open());
    QCOMPARE(rowsById(m_recording.file()), rows);
}

void tst_TornRecording::attemptCutOffIsStartedAgain()
{
    QVERIFY(record(300, 128));
    QVERIFY(QFile::copy(m_recording.file(), m_recording.file() + ".salvage"));
    write(content(m_recording.file()).chopped(4096));
    const auto store = m_recording.open();
    QVERIFY(store);
    QCOMPARE(rowsById(m_recording.file()).size(), store->openingReport().rowsSalvaged);
    QVERIFY(!QFile::exists(m_recording.file() + ".salvage"));
}

void tst_TornRecording::foreignFileIsNotTouched_data()
{
    QTest::addColumn<QByteArray>("content");

    std::mt19937 random(1);
    QByteArray noise(40000, '\0');
    for (char &byte : noise)
        byte = char(random());
    QTest::newRow("text") << QByteArray("This is no recording.\n");
    QTest::newRow("encrypted") << noise;
    QTest::newRow("name only") << QByteArray("SQLite format 3\0", 16);
    QTest::newRow("name and noise") << QByteArray("SQLite format 3\0", 16) + noise;
}

void tst_TornRecording::foreignFileIsNotTouched()
{
    QFETCH(QByteArray, content);
    write(content);
    QCOMPARE(checkRecording(m_recording.file()), FileVerdict::Foreign);
    QVERIFY(!m_recording.open());
    QCOMPARE(this->content(m_recording.file()), content);
    QCOMPARE(QDir(m_recording.folder()).entryList(QDir::Files), QStringList("Kitchen.dat"));
}

void tst_TornRecording::wholeFileIsNotTouched_data()
{
    QTest::addColumn<QStringList>("changes");

    QTest::newRow("as recorded") << QStringList();
    QTest::newRow("of an older version") << QStringList("drop index ostrivane_pointDate");
    QTest::newRow("newest rows deleted") << QStringList("delete from ostrivane where id > 700");
    QTest::newRow("oldest rows deleted") << QStringList("delete from ostrivane where id < 700");
    QTest::newRow("all rows deleted") << QStringList("delete from ostrivane");
    QTest::newRow("compacted") << QStringList({"delete from ostrivane where id % 3 = 0", "vacuum"});
    QTest::newRow("giving pages back") << QStringList({"pragma auto_vacuum = 1", "vacuum"});
    QTest::newRow("other pages") << QStringList({"pragma page_size = 1024", "vacuum"});
    QTest::newRow("with a log") << QStringList("pragma journal_mode = wal");
    QTest::newRow("with another table") << QStringList({"create table notes (text)", "insert into notes values ('a')"});
    QTest::newRow("with another index") << QStringList("create index keys on ostrivane (serialno, pointDate)");
    QTest::newRow("long keys") << QStringList("update ostrivane set serialno = printf('%.20000c', 'x') where id > 990");
}

void tst_TornRecording::wholeFileIsNotTouched()
{
    QFETCH(QStringList, changes);
    QVERIFY(record(1000, 128));
    for (const QString &change : changes)
        QVERIFY(OtherProgram(m_recording.file()).exec(change));
    const QStringList rows = rowsById(m_recording.file());
    QCOMPARE(m_recording.integrity(), QString("ok"));
    QCOMPARE(checkRecording(m_recording.file()), FileVerdict::Whole);
    const auto store = m_recording.open();
    QVERIFY(store);
    QCOMPARE(store->openingReport().tornFile, QString());
    QCOMPARE(rowsById(m_recording.file()), rows);
}

void tst_TornRecording::commitOnItsWayIsNoTornFile()
{
    QVERIFY(record(1000, 128));
    const QByteArray whole = content(m_recording.file());
    QSemaphore locked;
    const std::unique_ptr<QThread> writer(QThread::create([&] {
        const OtherProgram other(m_recording.file());
        other.exec("BEGIN EXCLUSIVE");
        write(whole.chopped(4096));
        locked.release();
        QThread::msleep(200);
        write(whole);
        other.exec("COMMIT");
    }));
    writer->start();
    locked.acquire();
    QCOMPARE(checkRecording(m_recording.file()), FileVerdict::Torn);
    const auto store = m_recording.open();
    writer->wait();
    QVERIFY(store);
    QCOMPARE(store->openingReport().tornFile, QString());
}

void tst_TornRecording::nothingToSaveStillRecords()
{
    QVERIFY(record(300, 128));
    const QByteArray torn = content(m_recording.file()).left(4096);
    write(torn);
    const auto store = m_recording.open();
    QVERIFY(store);
    QCOMPARE(store->openingReport().rowsSalvaged, 0);
    QCOMPARE(content(store->openingReport().tornFile), torn);
    InsertSerialData::enqueue(row("after", 1800000000));
    store->insertNow();
    QCOMPARE(rowsById(m_recording.file()).size(), 1);
}

QTEST_GUILESS_MAIN(tst_TornRecording)
#include "tst_TornRecording.moc"
