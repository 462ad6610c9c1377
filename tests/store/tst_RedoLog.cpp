#include "store/MemoryFolders.h"
#include "store/RedoLog.h"
#include "support/LogCapture.h"

#include <QTemporaryDir>
#include <QtTest>

#include <sys/mount.h>

/// What is in the log whenever the program ends, whatever was done to the file, and where there is no memory for it.
class tst_RedoLog : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void changesComeBack();
    void whatIsOnTheDiskLeaves();
    void ringGoesRound();
    void growsWhileNothingLeaves();
    void isBounded();
    void damageCostsTheEndOnly();
    void endedWhileItWasEmptied();
    void foreignFileIsMadeAnew_data();
    void foreignFileIsMadeAnew();
    void foreignBeginning();
    void isOpenOnce();
    void belongsToItsUser();
    void isFoundInAnyFolder();
    void fullMemoryIsToldOnce();
    void foldersAreInMemory();
    void foldersOfOthersAreLeftAlone();

private:
    std::unique_ptr<RedoLog> open() const { return RedoLog::open(recording(), {m_folder->path()}); }
    QString recording() const { return QStringLiteral("/somewhere/Kitchen.dat"); }
    /// The only file of the folder.
    QString file() const { return m_folder->filePath(QDir(m_folder->path()).entryList(QDir::Files).value(0)); }
    bool overwrite(qint64 place, const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

constexpr qint64 beginPlace = 64;
constexpr qint64 ringStart = 4096;

SpoolChange rowsFrom(qint64 number, int count = 1)
{
    SpoolChange change;
    change.storedUpTo = number / 2;
    for (int i = 0; i < count; ++i)
        change.rows.push_back({QStringLiteral("0200AA000001"), 21.5, noValue, 1700000000, number + i});
    return change;
}

QList<qint64> numbers(const SpoolChange &change)
{
    std::vector<PendingRow> rows;
    change.applyTo(rows);
    QList<qint64> numbers;
    for (const PendingRow &row : rows)
        numbers += row.number;
    return numbers;
}

} // namespace

bool tst_RedoLog::overwrite(qint64 place, const QByteArray &bytes) const
{
    QFile log(file());
    return log.open(QIODevice::ReadWrite) && log.seek(place) && log.write(bytes) == bytes.size();
}

void tst_RedoLog::changesComeBack()
{
    SpoolChange change;
    change.rows.push_back({QString::fromUtf8("K\xc3\xbchl 'raum"), 0.1 + 0.2, noValue, 4294967295u, 7});
    change.rows.push_back({QString(), -1e-300, 3, 0, 8});
    change.gone.push_back({1, 5});
    change.gone.push_back({8, 8});
    change.storedUpTo = 42;
    {
        const auto log = open();
        QVERIFY(log->append(rowsFrom(5, 2)));
        QVERIFY(log->append(change));
    }
    const auto log = open();
    QVERIFY(!log->isEmpty());
    const SpoolChange content = log->content();
    QCOMPARE(numbers(content), QList<qint64>({6, 7}));
    QCOMPARE(*content.storedUpTo, qint64(42));
    const PendingRow &row = content.rows.at(2);
    QCOMPARE(row.serial, change.rows[0].serial);
    QCOMPARE(row.channel1, 0.1 + 0.2);
    QCOMPARE(row.channel2, noValue);
    QCOMPARE(row.time, 4294967295u);
}

void tst_RedoLog::whatIsOnTheDiskLeaves()
{
    auto log = open();
    QVERIFY(log->append(rowsFrom(1)));
    QVERIFY(log->append(rowsFrom(2)));
    const quint64 saved = log->end();
    QVERIFY(log->append(rowsFrom(3)));
    log->discard(saved);
    QCOMPARE(numbers(log->content()), QList<qint64>({3}));
    log.reset();
    log = open();
    QCOMPARE(numbers(log->content()), QList<qint64>({3}));
    log->discard(log->end());
    QVERIFY(log->isEmpty());
    log.reset();
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());
}

/// Rounds of sixty-four loggers for an hour; the disk is always one round behind.
void tst_RedoLog::ringGoesRound()
{
    const auto log = open();
    QVERIFY(log->append(rowsFrom(1, 64)));
    const qint64 size = QFileInfo(file()).size();
    for (qint64 round = 1; round < 3600; ++round) {
        const quint64 saved = log->end();
        QVERIFY(log->append(rowsFrom(1 + round * 64, 64)));
        log->discard(saved);
        const QList<qint64> left = numbers(log->content());
        QCOMPARE(left.size(), 64);
        QCOMPARE(left.first(), 1 + round * 64);
    }
    QCOMPARE(QFileInfo(file()).size(), size);
}

void tst_RedoLog::growsWhileNothingLeaves()
{
    constexpr int count = 50000;
    {
        const auto log = open();
        // Where the ring begins in its middle, growing has to sort it out.
        QVERIFY(log->append(rowsFrom(1, 2000)));
        QVERIFY(log->append(rowsFrom(2001)));
        const quint64 first = log->end();
        QVERIFY(log->append(rowsFrom(2002)));
        log->discard(first);
        for (int i = 2003; i <= count; ++i)
            QVERIFY(log->append(rowsFrom(i)));
    }
    const QList<qint64> left = numbers(open()->content());
    QCOMPARE(left.size(), count - 2001);
    QCOMPARE(left.first(), qint64(2002));
    QCOMPARE(left.last(), qint64(count));
}

void tst_RedoLog::isBounded()
{
    constexpr qint64 mebibyte = 1024 * 1024;
    const auto log = open();
    qint64 number = 1;
    while (log->append(rowsFrom(number, 1000)))
        number += 1000;
    QVERIFY(number > 200000);
    QVERIFY(QFileInfo(file()).size() <= 64 * mebibyte);
    // With room again it goes on.
    log->discard(log->end());
    QVERIFY(log->append(rowsFrom(number)));
    QCOMPARE(numbers(log->content()), QList<qint64>({number}));
}

void tst_RedoLog::damageCostsTheEndOnly()
{
    quint64 third = 0;
    {
        const auto log = open();
        QVERIFY(log->append(rowsFrom(1)));
        QVERIFY(log->append(rowsFrom(2)));
        third = log->end();
        QVERIFY(log->append(rowsFrom(3)));
        QVERIFY(log->append(rowsFrom(4)));
    }
    QVERIFY(overwrite(ringStart + qint64(third) + 20, "\xff\xff"));
    {
        const auto log = open();
        QCOMPARE(numbers(log->content()), QList<qint64>({1, 2}));
        QVERIFY(log->append(rowsFrom(5)));
    }
    QCOMPARE(numbers(open()->content()), QList<qint64>({1, 2, 5}));
}

void tst_RedoLog::endedWhileItWasEmptied()
{
    QVERIFY(open()->append(rowsFrom(1)));
    QVERIFY(overwrite(beginPlace, QByteArray("\0\0\x04\0\0\0\0\0", 8)));
    const auto log = open();
    QVERIFY(log->isEmpty());
    QVERIFY(log->append(rowsFrom(2)));
    QCOMPARE(numbers(log->content()), QList<qint64>({2}));
}

void tst_RedoLog::foreignFileIsMadeAnew_data()
{
    QTest::addColumn<qint64>("place");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("size");
    QTest::newRow("no log") << qint64(0) << QByteArray(4096, 'x') << -1;
    QTest::newRow("another version") << qint64(6) << QByteArray("99") << -1;
    QTest::newRow("a larger ring than there is") << qint64(8) << QByteArray("\x03") << -1;
    QTest::newRow("no such ring") << qint64(8) << QByteArray(8, '\xff') << -1;
    QTest::newRow("another recording's") << qint64(193) << QByteArray("else") << -1;
    QTest::newRow("cut off") << qint64(0) << QByteArray() << 5000;
    QTest::newRow("nothing in it") << qint64(0) << QByteArray() << 0;
}

void tst_RedoLog::foreignFileIsMadeAnew()
{
    QFETCH(qint64, place);
    QFETCH(QByteArray, bytes);
    QFETCH(int, size);
    QVERIFY(open()->append(rowsFrom(1)));
    QVERIFY(overwrite(place, bytes));
    QVERIFY(size < 0 || QFile::resize(file(), size));
    {
        const auto log = open();
        QVERIFY(log);
        QVERIFY(log->isEmpty());
        QVERIFY(log->append(rowsFrom(2)));
    }
    QCOMPARE(numbers(open()->content()), QList<qint64>({2}));
}

/// So near the end of all numbers that counting on begins anew.
void tst_RedoLog::foreignBeginning()
{
    QVERIFY(open()->append(rowsFrom(1)));
    QVERIFY(overwrite(beginPlace, QByteArray("\xfb\xff\xff\xff\xff\xff\xff\xff", 8)));
    QVERIFY(overwrite(beginPlace + 64, QByteArray("\xfe\xff\xff\xff\xff\xff\xff\xff", 8)));
    const auto log = open();
    QVERIFY(log);
    QVERIFY(log->isEmpty());
}

void tst_RedoLog::isOpenOnce()
{
    const auto log = open();
    QVERIFY(log->append(rowsFrom(1)));
    const LogCapture capture;
    QVERIFY(!open());
    QCOMPARE(capture.warnings().filter("in use").size(), 1);
    QCOMPARE(numbers(log->content()), QList<qint64>({1}));
}

void tst_RedoLog::belongsToItsUser()
{
    const auto log = open();
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    QCOMPARE(QFile::permissions(file()) & others, QFile::Permissions());
}

/// A station that is started in another way may have another folder of its own.
void tst_RedoLog::isFoundInAnyFolder()
{
    QVERIFY(open()->append(rowsFrom(1)));
    const QTemporaryDir preferred;
    const auto log = RedoLog::open(recording(), {preferred.path(), m_folder->path()});
    QCOMPARE(numbers(log->content()), QList<qint64>({1}));
}

void tst_RedoLog::fullMemoryIsToldOnce()
{
    const QByteArray folder = QFile::encodeName(m_folder->path());
    QCOMPARE(::mount("none", folder.constData(), "tmpfs", 0, "size=64k"), 0);
    const LogCapture capture;
    QVERIFY(!open());
    QCOMPARE(capture.warnings().size(), 1);
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files), QStringList());

    // It may also become full later.
    QCOMPARE(::mount("none", folder.constData(), "tmpfs", MS_REMOUNT, "size=300k"), 0);
    {
        const auto log = open();
        qint64 number = 1;
        while (log->append(rowsFrom(number)))
            ++number;
        QVERIFY(number > 1000);
        QCOMPARE(numbers(log->content()).size(), int(number) - 1);
    }
    QVERIFY(!open()->isEmpty());
    QCOMPARE(::umount(folder.constData()), 0);
}

void tst_RedoLog::foldersAreInMemory()
{
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    const QTemporaryDir onDisk;
    const QByteArray runtime = QFile::encodeName(m_folder->path());
    QCOMPARE(::mount("none", runtime.constData(), "tmpfs", 0, "size=1m"), 0);
    qputenv("XDG_RUNTIME_DIR", runtime);
    const QString own = m_folder->filePath("sorvanto-lite");
    QCOMPARE(memoryFolders().value(0), own);
    QVERIFY(QFileInfo(own).isDir());
    QCOMPARE(::umount(runtime.constData()), 0);

    const QByteArray disk = QFile::encodeName(onDisk.path());
    QCOMPARE(::mount(disk.constData(), "/dev/shm", nullptr, MS_BIND, nullptr), 0);
    qputenv("XDG_RUNTIME_DIR", disk);
    const QStringList none = memoryFolders();
    QCOMPARE(::umount("/dev/shm"), 0);
    const bool isDiskInMemory = !none.isEmpty();
    qputenv("XDG_RUNTIME_DIR", before);
    if (isDiskInMemory)
        QVERIFY2(none.first().startsWith(onDisk.path()), qPrintable(none.first()));
    const LogCapture capture;
    QVERIFY(!RedoLog::open(recording(), {}));
    QCOMPARE(capture.warnings().size(), 1);
}

void tst_RedoLog::foldersOfOthersAreLeftAlone()
{
    const QByteArray before = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray runtime = QFile::encodeName(m_folder->path());
    QCOMPARE(::mount("none", runtime.constData(), "tmpfs", 0, "size=1m"), 0);
    qputenv("XDG_RUNTIME_DIR", runtime);
    const QString name = m_folder->filePath("sorvanto-lite");
    const QTemporaryDir elsewhere;
    QVERIFY(QFile::link(elsewhere.path(), name));
    QVERIFY(!memoryFolders().contains(name));
    QVERIFY(QFile::remove(name));
    QVERIFY(QDir().mkdir(name));
    QVERIFY(QFile::setPermissions(name, QFile::Permissions(0x7777)));
    QVERIFY(!memoryFolders().contains(name));
    qputenv("XDG_RUNTIME_DIR", before);
    QCOMPARE(::umount(runtime.constData()), 0);
}

QTEST_GUILESS_MAIN(tst_RedoLog)
#include "tst_RedoLog.moc"
