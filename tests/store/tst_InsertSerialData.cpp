#include "store/Recording.h"
#include "support/LogCapture.h"

#include <QSqlQuery>
#include <QtTest>

class tst_InsertSerialData : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void newRecordingGetsTableAndIndex();
    void existingRecordingKeepsItsRows();
    void recordingWithoutIndexStaysAsItIs();
    void existingConnectionIsTaken();
    void failedConnectionIsNotTakenForAnOpenOne();
    void unusableFileIsRefused_data();
    void unusableFileIsRefused();
    void fileReadByAnotherProgramOpens();
    void fileLockedByAnotherProgramIsRefused();
    void lockIsWaitedForBriefly();

    void rangeOfARecording();
    void emptyTableHasNoRange();
    void rangeQueriesUseTheIndex();
    void failedRangeQueryIsZero();

    void destructionClosesQuietly();
    void destructionWritesTheQueue();
    void destructionOfANeverOpenedStoreLeavesTheQueue();
};

void tst_InsertSerialData::cleanup()
{
    emptyQueue();
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("testfiledb")));
}

void tst_InsertSerialData::newRecordingGetsTableAndIndex()
{
    const Recording recording;
    const LogCapture log;
    const auto store = recording.open();

    QVERIFY(store);
    QVERIFY(store->isOpen());
    QCOMPARE(log.lines(), QStringList({"InsertSerialData::createTable : create table",
                                       "InsertSerialData::createConnection : success"}));
    const OtherProgram viewer(recording.file());
    QCOMPARE(viewer.rows("select sql from sqlite_master where name='ostrivane'"),
             QStringList("CREATE TABLE ostrivane (\t\tid integer primary key autoincrement,\t\tserialno varchar(18) "
                         "not null, \t\tchannel1 float, channel2 float, \t\tpointDate integer not null\t\t)"));
    QCOMPARE(viewer.rows("select count(*) from sqlite_master where type='index' and tbl_name='ostrivane'"),
             QStringList("1"));
    QCOMPARE(viewer.rows("PRAGMA page_size"), QStringList("4096"));
}

void tst_InsertSerialData::existingRecordingKeepsItsRows()
{
    const Recording recording;
    InsertSerialData::enqueue(row("A1", 1700000000));
    recording.open()->insertNow();

    const LogCapture log;
    const auto store = recording.open();

    QVERIFY(store);
    QCOMPARE(log.lines(), QStringList({"InsertSerialData::createTable : table exist",
                                       "InsertSerialData::createConnection : success"}));
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
}

void tst_InsertSerialData::recordingWithoutIndexStaysAsItIs()
{
    const Recording recording;
    const OtherProgram elder(recording.file());
    QVERIFY(elder.exec("create table ostrivane (id integer primary key autoincrement, serialno varchar(18) not null, "
                       "channel1 float, channel2 float, pointDate integer not null)"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    const auto store = recording.open();
    QVERIFY(store);
    store->insertNow();

    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
    QCOMPARE(store->startDateTime(), 1700000000u);
    QCOMPARE(elder.rows("select count(*) from sqlite_master where type='index'"), QStringList("0"));
}

void tst_InsertSerialData::existingConnectionIsTaken()
{
    const Recording recording;
    const auto first = recording.open();
    QVERIFY(first);
    InsertSerialData second(recording.file(), QStringLiteral("test"));

    const LogCapture log;
    QVERIFY(second.createConnection());
    QVERIFY(second.isOpen());
    QVERIFY(first->createConnection());
    QCOMPARE(log.lines(), QStringList());
}

void tst_InsertSerialData::failedConnectionIsNotTakenForAnOpenOne()
{
    const Recording recording;
    InsertSerialData store(recording.folder() + "/later/Kitchen.dat", QStringLiteral("test"));
    QVERIFY(!store.createConnection());
    QVERIFY(!store.createConnection());
    QVERIFY(!store.isOpen());

    QVERIFY(QDir(recording.folder()).mkdir("later"));
    const LogCapture log;
    QVERIFY(store.createConnection());
    QVERIFY(store.isOpen());
    QCOMPARE(log.warnings(), QStringList());
}

void tst_InsertSerialData::unusableFileIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("line");

    QTest::newRow("directory") << "folder"
                               << "";
    QTest::newRow("in no folder") << "nowhere/Kitchen.dat"
                                  << "";
    QTest::newRow("no database") << "text"
                                 << "PRAGMA cache_size = 65536 : query error";
}

void tst_InsertSerialData::unusableFileIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, line);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("folder"));
    QFile text(folder.filePath("text"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    const QByteArray words = QByteArray("Not a database, but somebody's letter. ").repeated(100);
    text.write(words);
    text.close();
    InsertSerialData store(folder.filePath(name), QStringLiteral("test"));
    InsertSerialData::enqueue(row("A1", 1700000000));

    const LogCapture log;
    QVERIFY(!store.createConnection());
    QVERIFY(!store.isOpen());
    QCOMPARE(log.lines().last(), QString("InsertSerialData::createConnection : fail"));
    QVERIFY(!store.createConnection());
    if (!line.isEmpty())
        QCOMPARE(log.lines().first(), line);
    store.insertNow();
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QVERIFY(text.open(QIODevice::ReadOnly));
    QCOMPARE(text.readAll(), words);
}

void tst_InsertSerialData::fileReadByAnotherProgramOpens()
{
    const Recording recording;
    recording.open().reset();
    const OtherProgram viewer(recording.file());
    QVERIFY(viewer.exec("BEGIN"));
    QCOMPARE(viewer.rows("select count(*) from ostrivane"), QStringList("0"));

    QVERIFY(recording.open());
    QVERIFY(viewer.exec("COMMIT"));
}

void tst_InsertSerialData::fileLockedByAnotherProgramIsRefused()
{
    const Recording recording;
    recording.open().reset();
    const OtherProgram locker(recording.file());
    QVERIFY(locker.exec("BEGIN EXCLUSIVE"));
    QVERIFY(!recording.open());

    QVERIFY(locker.exec("COMMIT"));
    QVERIFY(recording.open());
}

void tst_InsertSerialData::lockIsWaitedForBriefly()
{
    const Recording recording;
    const auto store = recording.open();
    QSqlQuery query(QSqlDatabase::database(QStringLiteral("testfiledb")));
    QVERIFY(query.exec("PRAGMA busy_timeout") && query.next());
    QVERIFY(query.value(0).toInt() > 0);
    QVERIFY(query.value(0).toInt() <= 50);
}

void tst_InsertSerialData::rangeOfARecording()
{
    const Recording recording;
    const auto store = recording.open();
    for (const quint32 time : {1700000005u, 1700000000u, 4294967295u, 1700000003u})
        InsertSerialData::enqueue(row("A1", time));
    store->insertNow();

    const LogCapture log;
    QCOMPARE(store->startDateTime(), 1700000000u);
    QCOMPARE(store->endDateTime(), 4294967295u);
    const auto text = [](qint64 time) {
        return QDateTime::fromSecsSinceEpoch(time).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    };
    QCOMPARE(log.lines(), QStringList({"InsertSerialData::startDateTime : " + text(1700000000),
                                       "InsertSerialData::endDateTime : " + text(4294967295)}));
}

void tst_InsertSerialData::emptyTableHasNoRange()
{
    const Recording recording;
    const auto store = recording.open();
    const LogCapture log;

    QCOMPARE(store->startDateTime(), 0u);
    QCOMPARE(store->endDateTime(), 0u);
    const QString epoch = QDateTime::fromSecsSinceEpoch(0).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    QCOMPARE(log.lines(),
             QStringList({"InsertSerialData::startDateTime : " + epoch, "InsertSerialData::endDateTime : " + epoch}));
}

void tst_InsertSerialData::rangeQueriesUseTheIndex()
{
    const Recording recording;
    QVERIFY(recording.open());
    const OtherProgram viewer(recording.file());
    for (const char *query : {"select min(pointDate) from ostrivane;", "select max(pointDate) from ostrivane;"}) {
        const QStringList plan = viewer.rows(QStringLiteral("EXPLAIN QUERY PLAN ") + query);
        QCOMPARE(plan.size(), 1);
        QVERIFY2(plan.first().contains("SEARCH ostrivane USING COVERING INDEX"), qPrintable(plan.first()));
    }
}

void tst_InsertSerialData::failedRangeQueryIsZero()
{
    const Recording recording;
    const auto store = recording.open();
    QVERIFY(OtherProgram(recording.file()).exec("drop table ostrivane"));

    const LogCapture log;
    QCOMPARE(store->startDateTime(), 0u);
    QCOMPARE(store->endDateTime(), 0u);
    QCOMPARE(log.lines(), QStringList({"InsertSerialData::startDateTime : query error",
                                       "InsertSerialData::endDateTime : query error"}));
}

void tst_InsertSerialData::destructionClosesQuietly()
{
    const Recording recording;
    auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000));
    store->insertNow();
    QCOMPARE(store->startDateTime(), 1700000000u);

    const LogCapture log;
    store.reset();

    QCOMPARE(log.lines(),
             QStringList({"InsertSerialData::~InsertSerialData : QSqlDatabase::removeDatabase(testfiledb\")",
                          "InsertSerialData::~InsertSerialData()"}));
    QCOMPARE(log.warnings(), QStringList());
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("testfiledb")));
}

void tst_InsertSerialData::destructionWritesTheQueue()
{
    const Recording recording;
    auto store = recording.open();
    InsertSerialData::enqueue(row("A1", 1700000000));
    store.reset();

    QCOMPARE(InsertSerialData::pendingCount(), 0);
    QCOMPARE(recording.rows(), QStringList("A1|21.5|40|1700000000"));
    QVERIFY(!QFile::exists(recording.spool()));
}

void tst_InsertSerialData::destructionOfANeverOpenedStoreLeavesTheQueue()
{
    const Recording recording;
    auto store = std::make_unique<InsertSerialData>(recording.file(), QStringLiteral("test"));
    InsertSerialData::enqueue(row("A1", 1700000000));
    const LogCapture log;
    store.reset();

    QCOMPARE(log.lines(), QStringList("InsertSerialData::~InsertSerialData()"));
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QVERIFY(!QFile::exists(recording.spool()));
}

QTEST_GUILESS_MAIN(tst_InsertSerialData)
#include "tst_InsertSerialData.moc"
