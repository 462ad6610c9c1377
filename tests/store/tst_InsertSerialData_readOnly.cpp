#include "store/PendingRowFile.h"
#include "store/Recording.h"
#include "support/LogCapture.h"
#include "support/WriteObstacles.h"

#include <QSignalSpy>
#include <QtTest>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

/// A recording that cannot be written to is there for looking.
class tst_InsertSerialData_readOnly : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void opensForLooking_data();
    void opensForLooking();
    void takesNoRows();
    void writableAgain();
    void anotherStoreOnTheConnection();
    void connectionThatCanOnlyRead();
    void withoutTable();
    void noDatabaseIsRefused();
    void missingFileIsRefused();
    void writableFileInAFolderThatTakesNone();

private:
    enum Obstacle { Nobody, Superuser, Share };

    void protect(Obstacle obstacle) const;
    QByteArray content() const;

    std::unique_ptr<Recording> m_recording;
};

namespace {

constexpr mode_t readers = 0444;
constexpr mode_t writers = 0666;

bool setMode(const QString &path, mode_t mode)
{
    return chmod(QFile::encodeName(path).constData(), mode) == 0;
}

/// A folder on a disk of its own that is mounted for reading only; visible to this process alone.
bool mountReadOnly(const QString &folder)
{
    const QByteArray path = QFile::encodeName(folder);
    struct statvfs disk = {};
    if (statvfs(path.constData(), &disk) != 0)
        return false;
    // An ordinary user may add to what the disk forbids already, but take nothing of it away.
    const unsigned long forbidden = disk.f_flag & (MS_NOSUID | MS_NODEV | MS_NOEXEC);
    return mount(path.constData(), path.constData(), nullptr, MS_BIND, nullptr) == 0 &&
           mount(nullptr, path.constData(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY | forbidden, nullptr) == 0;
}

} // namespace

void tst_InsertSerialData_readOnly::init()
{
    m_recording = std::make_unique<Recording>();
    InsertSerialData::enqueue(row("A1", 1700000000));
    InsertSerialData::enqueue(row("B2", 1700000007));
    m_recording->open()->insertNow();
    QVERIFY(setMode(m_recording->folder(), 0777));
    QCOMPARE(InsertSerialData::pendingCount(), 0);
}

void tst_InsertSerialData_readOnly::cleanup()
{
    umount(QFile::encodeName(m_recording->folder()).constData());
    m_recording.reset();
    emptyQueue();
    QVERIFY(!QSqlDatabase::contains(QStringLiteral("testfiledb")));
}

void tst_InsertSerialData_readOnly::protect(Obstacle obstacle) const
{
    if (obstacle == Share)
        QVERIFY(mountReadOnly(m_recording->folder()));
    else
        QVERIFY(setMode(m_recording->file(), readers));
}

QByteArray tst_InsertSerialData_readOnly::content() const
{
    QFile file(m_recording->file());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_InsertSerialData_readOnly::opensForLooking_data()
{
    QTest::addColumn<int>("obstacle");
    QTest::newRow("write-protected") << int(Nobody);
    QTest::newRow("write-protected, for the superuser") << int(Superuser);
    QTest::newRow("read-only share") << int(Share);
}

void tst_InsertSerialData_readOnly::opensForLooking()
{
    QFETCH(int, obstacle);
    protect(Obstacle(obstacle));
    const QByteArray before = content();
    {
        const auto user = obstacle == Nobody ? std::make_unique<OrdinaryUser>() : nullptr;
        const LogCapture log;
        const auto store = m_recording->open();
        QVERIFY(store);
        QVERIFY(store->isOpen());
        QVERIFY(store->isReadOnly());
        QCOMPARE(log.warnings(), QStringList());
        QCOMPARE(log.lines(), QStringList("InsertSerialData::createConnection : success"));
        QCOMPARE(store->startDateTime(), 1700000000u);
        QCOMPARE(store->endDateTime(), 1700000007u);
    }
    QCOMPARE(content(), before);
    QCOMPARE(QDir(m_recording->folder()).entryList(QDir::Files | QDir::Hidden), QStringList("Kitchen.dat"));
}

void tst_InsertSerialData_readOnly::takesNoRows()
{
    // Of an earlier run, beside a recording that was archived since.
    QVERIFY(m_recording->writeSideFile({row("C3", 1700000008)}));
    protect(Superuser);
    auto store = m_recording->open();
    QVERIFY(store);
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    InsertSerialData::enqueue(row("D4", 1700000009));
    const QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
    const LogCapture log;
    store->insertNow();
    QCOMPARE(log.lines(), QStringList());
    QCOMPARE(failed.count(), 0);
    store.reset();

    // What is queued belongs to another recording.
    QCOMPARE(InsertSerialData::pendingCount(), 1);
    QCOMPARE(PendingRowFile(m_recording->file()).read().rows.size(), size_t(1));
    QCOMPARE(m_recording->rows().size(), 2);
}

void tst_InsertSerialData_readOnly::writableAgain()
{
    QVERIFY(m_recording->writeSideFile({row("C3", 1700000008)}));
    protect(Superuser);
    QVERIFY(m_recording->open()->isReadOnly());
    QVERIFY(setMode(m_recording->file(), writers));
    const auto store = m_recording->open();
    QVERIFY(!store->isReadOnly());
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), 3);
}

void tst_InsertSerialData_readOnly::anotherStoreOnTheConnection()
{
    protect(Superuser);
    const auto first = m_recording->open();
    InsertSerialData second(m_recording->file(), QStringLiteral("test"));
    QVERIFY(!second.isReadOnly());
    QVERIFY(second.createConnection());
    QVERIFY(second.isReadOnly());
}

/// SQLite makes do with reading when the system refuses more, whatever the file's permissions promise.
void tst_InsertSerialData_readOnly::connectionThatCanOnlyRead()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("testfiledb"));
    database.setDatabaseName(m_recording->file());
    database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
    QVERIFY(database.open());
    const auto store = m_recording->open();
    QVERIFY(store);
    QVERIFY(store->isReadOnly());
}

void tst_InsertSerialData_readOnly::withoutTable()
{
    QVERIFY(OtherProgram(m_recording->file()).exec("drop table ostrivane"));
    protect(Superuser);
    const auto store = m_recording->open();
    QVERIFY(store);
    QVERIFY(store->isReadOnly());
    QCOMPARE(store->startDateTime(), 0u);
    QCOMPARE(store->endDateTime(), 0u);
}

void tst_InsertSerialData_readOnly::noDatabaseIsRefused()
{
    QFile file(m_recording->file());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("Not a database, but somebody's letter. ").repeated(100));
    file.close();
    protect(Superuser);
    InsertSerialData store(m_recording->file(), QStringLiteral("test"));
    QVERIFY(!store.createConnection());
    QVERIFY(!store.isOpen());
    QVERIFY(!store.isReadOnly());
}

void tst_InsertSerialData_readOnly::missingFileIsRefused()
{
    QVERIFY(QFile::remove(m_recording->file()));
    protect(Share);
    InsertSerialData store(m_recording->file(), QStringLiteral("test"));
    const LogCapture log;
    QVERIFY(!store.createConnection());
    QVERIFY(!store.isReadOnly());
    QCOMPARE(log.lines(), QStringList("InsertSerialData::createConnection : fail"));
}

/// Without a journal nothing but the file itself is written: there is no reason to lose a reading.
void tst_InsertSerialData_readOnly::writableFileInAFolderThatTakesNone()
{
    QVERIFY(setMode(m_recording->file(), writers));
    QVERIFY(setMode(m_recording->folder(), 0555));
    {
        const OrdinaryUser nobody;
        const auto store = m_recording->open();
        QVERIFY(store);
        QVERIFY(!store->isReadOnly());
        InsertSerialData::enqueue(row("C3", 1700000008));
        store->insertNow();
    }
    QCOMPARE(m_recording->rows().size(), 3);
    QVERIFY(setMode(m_recording->folder(), 0777));
}

QTEST_GUILESS_MAIN(tst_InsertSerialData_readOnly)
#include "tst_InsertSerialData_readOnly.moc"
