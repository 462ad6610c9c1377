#include "store/Recording.h"
#include "support/LogCapture.h"

#include <QSemaphore>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QThread>
#include <QtTest>

#ifdef Q_OS_UNIX
#include <csignal>
#include <sys/resource.h>
#endif

/// What happens to the rows, and what the operator hears, while the file cannot be written.
class tst_InsertSerialData_failures : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void lockedFileKeepsTheRows_data();
    void lockedFileKeepsTheRows();
    void openingWaitsForAnotherProgram();
    void nearlyFullDiskKeepsTheRows();
    void largeBatchNeedsMoreSpace();
    void spaceIsAskedForTheFolderOfTheRecording();
    void realDiskHasSpace();
    void everyKindIsToldOnceASpell();
    void nothingIsToldWhenAllIsWell();
    void failedStatementLosesItsRowsOnly();
    void failedStatementOfAOneStatementBatchIsNotRetried();
    void openTransactionOfAFailedCommitIsEnded();
    void rowsOfATransactionThatWasUndoneAreWrittenAgain();
    void foreignTransactionOnTheConnectionIsEnded();
#ifdef Q_OS_UNIX
    void failedCommitKeepsTheRows();
#endif

private:
    std::unique_ptr<Recording> m_recording;
    std::unique_ptr<InsertSerialData> m_store;
    std::unique_ptr<QSignalSpy> m_failed;
    std::unique_ptr<QSignalSpy> m_restored;
    quint64 m_freeSpace = 0;
    QString m_askedFolder;
};

namespace {

constexpr quint64 mebibyte = 1024 * 1024;

} // namespace

void tst_InsertSerialData_failures::init()
{
    m_freeSpace = 1024 * mebibyte;
    m_recording = std::make_unique<Recording>();
    m_store = std::make_unique<InsertSerialData>(m_recording->file(), QStringLiteral("test"), nullptr,
                                                 [this](const QString &folder) {
                                                     m_askedFolder = folder;
                                                     return m_freeSpace;
                                                 });
    QVERIFY(m_store->createConnection());
    m_failed = std::make_unique<QSignalSpy>(m_store.get(), &InsertSerialData::writingFailed);
    m_restored = std::make_unique<QSignalSpy>(m_store.get(), &InsertSerialData::writingRestored);
}

void tst_InsertSerialData_failures::cleanup()
{
    m_store.reset();
    emptyQueue();
}

void tst_InsertSerialData_failures::lockedFileKeepsTheRows_data()
{
    QTest::addColumn<QStringList>("statements");

    QTest::newRow("reader") << QStringList({"BEGIN", "select count(*) from ostrivane"});
    QTest::newRow("writer") << QStringList({"BEGIN IMMEDIATE"});
    QTest::newRow("exclusive") << QStringList({"BEGIN EXCLUSIVE"});
}

void tst_InsertSerialData_failures::lockedFileKeepsTheRows()
{
    QFETCH(QStringList, statements);
    const OtherProgram other(m_recording->file());
    for (const QString &statement : statements)
        QVERIFY(other.exec(statement));

    const LogCapture log;
    for (quint32 i = 0; i < 4; ++i) {
        InsertSerialData::enqueue(row("A1", 1700000000 + i));
        m_store->insertNow();
    }
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(InsertSerialData::pendingCount(), 4);
    QCOMPARE(m_failed->count(), 1);
    QCOMPARE(m_failed->first().first().toString(),
             QString("The recording is in use by another program. Readings wait in memory until it is free."));

    QVERIFY(other.exec("COMMIT"));
    QCOMPARE(m_recording->rows(), QStringList());
    InsertSerialData::enqueue(row("B2", 1700000003));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(m_failed->count(), 1);
    QCOMPARE(m_restored->count(), 1);
    QCOMPARE(m_recording->rows(),
             QStringList({"A1|21.5|40|1700000000", "A1|21.5|40|1700000001", "A1|21.5|40|1700000002",
                          "A1|21.5|40|1700000003", "B2|21.5|40|1700000003"}));
    QCOMPARE(m_recording->integrity(), QString("ok"));
}

void tst_InsertSerialData_failures::openingWaitsForAnotherProgram()
{
    m_store.reset();
    QSemaphore locked;
    // Four times as long as a batch would wait, far less than the opening does.
    constexpr unsigned long heldMs = 200;
    const std::unique_ptr<QThread> backup(QThread::create([this, &locked] {
        const OtherProgram other(m_recording->file());
        other.exec("BEGIN EXCLUSIVE");
        locked.release();
        QThread::msleep(heldMs);
        other.exec("COMMIT");
    }));
    backup->start();
    locked.acquire();
    m_store = m_recording->open();
    QVERIFY(backup->wait());
    QVERIFY(m_store);
    QVERIFY(m_store->isOpen());
}

void tst_InsertSerialData_failures::nearlyFullDiskKeepsTheRows()
{
    m_freeSpace = 16 * mebibyte - 1;
    InsertSerialData::enqueue(row("A1", 1700000000));
    const LogCapture log;
    m_store->insertNow();
    m_store->insertNow();

    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QCOMPARE(m_recording->rows(), QStringList());
    QCOMPARE(m_failed->count(), 1);
    QCOMPARE(m_failed->first().first().toString(),
             QString("The disk is nearly full. Readings wait in memory until there is space again."));

    m_freeSpace = 16 * mebibyte;
    m_store->insertNow();
    QCOMPARE(m_restored->count(), 1);
    QCOMPARE(m_recording->rows(), QStringList("A1|21.5|40|1700000000"));
}

void tst_InsertSerialData_failures::largeBatchNeedsMoreSpace()
{
    m_freeSpace = 16 * mebibyte;
    for (quint32 i = 0; i < 100000; ++i)
        InsertSerialData::enqueue(row("A1", 1700000000 + i));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 100000);

    m_freeSpace = 64 * mebibyte;
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QVERIFY(QFileInfo(m_recording->file()).size() < qint64(16 * mebibyte));
    QCOMPARE(OtherProgram(m_recording->file()).rows("select count(*) from ostrivane"), QStringList("100000"));
}

void tst_InsertSerialData_failures::spaceIsAskedForTheFolderOfTheRecording()
{
    InsertSerialData::enqueue(row("A1", 1700000000));
    m_store->insertNow();
    QCOMPARE(m_askedFolder, m_recording->folder());
}

void tst_InsertSerialData_failures::realDiskHasSpace()
{
    QVERIFY(InsertSerialData::diskFreeSpace(m_recording->folder()) > 0);
    QVERIFY(InsertSerialData::diskFreeSpace(m_recording->folder()) < quint64(1) << 60);
    // What cannot be asked must not stop the recording.
    QVERIFY(InsertSerialData::diskFreeSpace(m_recording->folder() + "/nowhere") > quint64(1) << 60);
}

void tst_InsertSerialData_failures::everyKindIsToldOnceASpell()
{
    const OtherProgram other(m_recording->file());
    InsertSerialData::enqueue(row("A1", 1700000000));
    QVERIFY(other.exec("BEGIN EXCLUSIVE"));
    for (int i = 0; i < 3; ++i) {
        m_freeSpace = 1024 * mebibyte;
        m_store->insertNow();
        m_freeSpace = 0;
        m_store->insertNow();
    }
    QCOMPARE(m_failed->count(), 2);
    QVERIFY(m_failed->at(0).first().toString().contains("in use"));
    QVERIFY(m_failed->at(1).first().toString().contains("nearly full"));

    QVERIFY(other.exec("COMMIT"));
    m_freeSpace = 1024 * mebibyte;
    m_store->insertNow();
    QCOMPARE(m_restored->count(), 1);

    InsertSerialData::enqueue(row("A1", 1700000001));
    QVERIFY(other.exec("BEGIN EXCLUSIVE"));
    m_store->insertNow();
    QCOMPARE(m_failed->count(), 3);
    QVERIFY(other.exec("COMMIT"));
    m_store->insertNow();
    QCOMPARE(m_restored->count(), 2);
}

void tst_InsertSerialData_failures::nothingIsToldWhenAllIsWell()
{
    InsertSerialData::enqueue(row("A1", 1700000000));
    m_store->insertNow();
    m_store->insertNow();
    QCOMPARE(m_failed->count(), 0);
    QCOMPARE(m_restored->count(), 0);
}

void tst_InsertSerialData_failures::failedStatementLosesItsRowsOnly()
{
    const OtherProgram other(m_recording->file());
    QVERIFY(other.exec("create trigger refuse before insert on ostrivane when new.serialno='bad' "
                       "begin select raise(abort, 'no such logger'); end"));
    for (quint32 i = 0; i < 1200; ++i)
        InsertSerialData::enqueue(row(i == 700 ? "bad" : "A1", 1700000000 + i));

    const LogCapture log;
    m_store->insertNow();

    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(log.lines().filter("insert query : "),
             QStringList({"insert query : true", "insert query : false", "insert query : true"}));
    QVERIFY(log.lines().filter("lastError : ").at(1).contains("no such logger"));
    QVERIFY(log.lines().contains("commit transaction : true"));
    QCOMPARE(other.rows("select count(*) from ostrivane where pointDate not between 1700000500 and 1700000999"),
             QStringList("700"));
    QCOMPARE(other.rows("select count(*) from ostrivane where serialno='bad'"), QStringList("0"));
    QCOMPARE(m_failed->count(), 1);
    QVERIFY(m_failed->first().first().toString().startsWith("Readings could not be written and are lost: "));
    QVERIFY(m_failed->first().first().toString().contains("no such logger"));
    QCOMPARE(m_restored->count(), 0);

    InsertSerialData::enqueue(row("A1", 1700002000));
    m_store->insertNow();
    QCOMPARE(m_restored->count(), 1);
    QCOMPARE(other.rows("select count(*) from ostrivane where pointDate=1700002000"), QStringList("1"));
    QCOMPARE(m_recording->integrity(), QString("ok"));
}

void tst_InsertSerialData_failures::failedStatementOfAOneStatementBatchIsNotRetried()
{
    const OtherProgram other(m_recording->file());
    QVERIFY(other.exec("alter table ostrivane rename to elsewhere"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(m_failed->count(), 1);

    QVERIFY(other.exec("alter table elsewhere rename to ostrivane"));
    InsertSerialData::enqueue(row("A1", 1700000001));
    m_store->insertNow();
    QCOMPARE(m_recording->rows(), QStringList("A1|21.5|40|1700000001"));
    QCOMPARE(m_restored->count(), 1);
}

// A statement that still returns rows makes SQLite refuse the commit and keep the transaction open.
void tst_InsertSerialData_failures::openTransactionOfAFailedCommitIsEnded()
{
    QVERIFY(OtherProgram(m_recording->file()).exec("create table scratch (x)"));
    QSqlQuery busy(QSqlDatabase::database(QStringLiteral("testfiledb")));
    QVERIFY(busy.exec("insert into scratch values (1), (2), (3) returning x"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    InsertSerialData::enqueue(row("B2", 1700000000, noValue, 1234567));

    const LogCapture log;
    m_store->insertNow();
    QVERIFY(log.lines().contains("commit transaction : false"));
    QCOMPARE(InsertSerialData::pendingCount(), 2);
    QCOMPARE(m_failed->count(), 1);
    InsertSerialData::enqueue(row("C3", 1700000001));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 3);

    busy.finish();
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(m_restored->count(), 1);
    QCOMPARE(m_recording->rows(),
             QStringList({"A1|21.5|40|1700000000", "B2|NULL|1234570|1700000000", "C3|21.5|40|1700000001"}));
    QCOMPARE(m_recording->integrity(), QString("ok"));
}

void tst_InsertSerialData_failures::rowsOfATransactionThatWasUndoneAreWrittenAgain()
{
    const OtherProgram other(m_recording->file());
    QVERIFY(other.exec("create trigger refuse before insert on ostrivane when new.serialno='B2' "
                       "begin select raise(rollback, 'undone'); end"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    InsertSerialData::enqueue(row("B2", 1700000000));
    InsertSerialData::enqueue(row("C3", 1700000000));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 3);
    QCOMPARE(m_failed->count(), 1);

    QVERIFY(other.exec("drop trigger refuse"));
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(m_restored->count(), 1);
    QCOMPARE(m_recording->rows(),
             QStringList({"A1|21.5|40|1700000000", "B2|21.5|40|1700000000", "C3|21.5|40|1700000000"}));
    QCOMPARE(m_recording->integrity(), QString("ok"));
}

void tst_InsertSerialData_failures::foreignTransactionOnTheConnectionIsEnded()
{
    QVERIFY(QSqlQuery(QSqlDatabase::database(QStringLiteral("testfiledb"))).exec("BEGIN"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    m_store->insertNow();

    QCOMPARE(m_failed->count(), 0);
    QCOMPARE(m_recording->rows(), QStringList("A1|21.5|40|1700000000"));
}

#ifdef Q_OS_UNIX
namespace {

/// No file may grow beyond @p bytes: the write that would fails, as on a broken or full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(qint64 bytes)
    {
        m_handlerBefore = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = rlim_t(bytes);
        m_ok = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handlerBefore);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;
    bool isOk() const { return m_ok; }

private:
    rlimit m_before{};
    void (*m_handlerBefore)(int) = nullptr;
    bool m_ok = false;
};

} // namespace

void tst_InsertSerialData_failures::failedCommitKeepsTheRows()
{
    for (quint32 i = 0; i < 400; ++i)
        InsertSerialData::enqueue(row("A1", 1700000000 + i));
    {
        const FileSizeLimit limit(QFileInfo(m_recording->file()).size());
        QVERIFY(limit.isOk());
        const LogCapture log;
        m_store->insertNow();
        QVERIFY(log.lines().contains("commit transaction : false"));
    }
    QCOMPARE(InsertSerialData::pendingCount(), 400);
    QCOMPARE(m_failed->count(), 1);
    QVERIFY(m_failed->first().first().toString().startsWith("Readings could not be written and wait in memory: "));

    // Without a journal that write has ruined the file. The rows outlive it.
    m_store->insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 400);
    QCOMPARE(m_failed->count(), 1);
    QCOMPARE(m_restored->count(), 0);
    m_failed.reset();
    m_restored.reset();
    m_store.reset();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(m_recording->spooledRows().size(), 400);
}
#endif

QTEST_GUILESS_MAIN(tst_InsertSerialData_failures)
#include "tst_InsertSerialData_failures.moc"
