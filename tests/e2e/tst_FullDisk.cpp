#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTest>

namespace {

const QString committed = QStringLiteral("commit transaction : true");
const QString toldNearlyFull = QStringLiteral("SorvantoMain::slotWritingFailed : [ERROR] The disk is nearly full");
const QString toldRestored = QStringLiteral("SorvantoMain::slotWritingRestored");

constexpr qint64 megabyte = 1024 * 1024;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What somebody else has put on the disk. Goes away when it does.
class Filler
{
public:
    explicit Filler(const QString &folder) : m_file(folder + QStringLiteral("/films")) {}
    ~Filler() { m_file.remove(); }

    /// Leaves no more than so many bytes.
    bool fillUpTo(qint64 bytesLeft)
    {
        m_file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
        // In few steps: the loggers do not answer meanwhile.
        const QByteArray piece(int(megabyte), 'x');
        for (qint64 more = left() - bytesLeft; more > 0; more = left() - bytesLeft) {
            if (m_file.write(piece.constData(), qMin(more, megabyte)) <= 0)
                return false;
        }
        return true;
    }

private:
    qint64 left() const { return QStorageInfo(QFileInfo(m_file).absolutePath()).bytesAvailable(); }

    QFile m_file;
};

} // namespace

/// A disk that fills up while the station records on it, and gets space again.
class tst_FullDisk : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void rowsWaitForSpace();
    void fullDiskLeavesTheProjectFile();

private:
    QString m_disk;
    QString m_folder;
    int m_number = 0;
};

void tst_FullDisk::initTestCase()
{
    m_disk = qEnvironmentVariable("SORVANTO_SMALL_DISK");
    QVERIFY2(!m_disk.isEmpty(), "this test is to be run as: tests/e2e/on_small_disk tst_FullDisk");
    QCOMPARE(QStorageInfo(m_disk).rootPath(), m_disk);
}

void tst_FullDisk::init()
{
    m_folder = m_disk + QStringLiteral("/project%1").arg(++m_number);
    QVERIFY(QDir().mkpath(m_folder));
}

void tst_FullDisk::rowsWaitForSpace()
{
    E2eFixture e2e(m_folder);
    for (int i = 0; i < 12; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    {
        Filler filler(m_disk);
        QVERIFY(filler.fillUpTo(15 * megabyte));
        QVERIFY2(e2e.waitUntil([&] { return station.count(toldNearlyFull) > 0; }), station.lastWords());
        const int written = e2e.readingCount();
        const int before = e2e.served(0).count();
        QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + 8); }), station.lastWords());
        QCOMPARE(e2e.readingCount(), written);
        QCOMPARE(station.count(toldNearlyFull), 1);
        QCOMPARE(station.count(toldRestored), 0);
    }
    QVERIFY2(e2e.waitUntil([&] { return station.count(toldRestored) > 0; }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QCOMPARE(e2e.differences(false), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
}

/// Not a byte is left: the times of the recording cannot be saved, and what was in the files stays in them.
void tst_FullDisk::fullDiskLeavesTheProjectFile()
{
    E2eFixture e2e(m_folder);
    for (int i = 0; i < 6; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());

    Filler filler(m_disk);
    QVERIFY(filler.fillUpTo(0));
    // Without a reading that waits the station would take its spool away, and have that room for the project file.
    const int served = e2e.served(0).count();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(served + 3); }), station.lastWords());
    const QByteArray project = contentOf(e2e.projectFile());
    const QList<RecordedRow> before = e2e.rows();
    QVERIFY(!project.isEmpty());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());

    QCOMPARE(contentOf(e2e.projectFile()), project);
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    QCOMPARE(e2e.rows().size(), before.size());
    // Memory is gone and the disk has no room for the rest: what is lost is said.
    QCOMPARE(station.count(QStringLiteral("InsertSerialData::~InsertSerialData : [ERROR]")), 1);
}

QTEST_GUILESS_MAIN(tst_FullDisk)
#include "tst_FullDisk.moc"
