#include "Recording.h"

#include "store/SetAside.h"
#include "store/SpoolFile.h"
#include "support/LogCapture.h"
#include "support/WriteObstacles.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

/// Damaged files are kept whatever happens: nothing good takes their place unless they have another.
class tst_SetAside : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void earlierNamesStay_data();
    void earlierNamesStay();
    void spoolThatCannotBeSetAsideStays_data();
    void spoolThatCannotBeSetAsideStays();
    void sideFileThatWasTakenInIsSetAside();
    void tornRecordingThatCannotBeSetAsideStays();
};

namespace {

const QByteArray anyContent = QByteArrayLiteral("x");

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(path));
}

bool setMode(const QString &path, mode_t mode)
{
    return chmod(QFile::encodeName(path).constData(), mode) == 0;
}

/// In which files can be written, but not renamed.
class FixedFolder
{
public:
    explicit FixedFolder(const QString &path) : m_path(path) { m_isFixed = setMode(path, 0555); }
    ~FixedFolder() { setMode(m_path, 0777); }
    FixedFolder(const FixedFolder &) = delete;
    FixedFolder &operator=(const FixedFolder &) = delete;
    bool isFixed() const { return m_isFixed; }

private:
    QString m_path;
    bool m_isFixed;
};

} // namespace

void tst_SetAside::cleanup()
{
    emptyQueue();
}

void tst_SetAside::earlierNamesStay_data()
{
    QTest::addColumn<QString>("taken");
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << ""
                          << "file.damaged-1";
    QTest::newRow("file") << "file.damaged-1"
                          << "file.damaged-2";
    QTest::newRow("its log alone") << "file.damaged-1-wal"
                                   << "file.damaged-2";
}

void tst_SetAside::earlierNamesStay()
{
    QFETCH(QString, taken);
    QFETCH(QString, expected);
    const QTemporaryDir folder;
    if (!taken.isEmpty())
        write(folder.filePath(taken), "older");
    write(folder.filePath("file"), anyContent);
    write(folder.filePath("file-wal"), "log");
    QCOMPARE(setAside(folder.filePath("file"), "damaged", {"-wal", "-shm"}), folder.filePath(expected));
    QCOMPARE(contentOf(folder.filePath(expected)), anyContent);
    QCOMPARE(contentOf(folder.filePath(expected) + "-wal"), QByteArray("log"));
    QVERIFY(!QFile::exists(folder.filePath("file")));
    QVERIFY(taken.isEmpty() || contentOf(folder.filePath(taken)) == "older");
}

void tst_SetAside::spoolThatCannotBeSetAsideStays_data()
{
    QTest::addColumn<int>("page");
    QTest::newRow("first page") << 0;
    QTest::newRow("page in the middle") << 10;
}

void tst_SetAside::spoolThatCannotBeSetAsideStays()
{
    QFETCH(int, page);
    constexpr int pageSize = 4096;
    const Recording recording;
    recording.open().reset();
    {
        SpoolFile::Change change;
        for (int i = 1; i <= 5000; ++i) {
            change.rows.push_back(row("0200AA000001", 1700000000 + quint32(i)));
            change.rows.back().number = i;
        }
        QVERIFY(SpoolFile(recording.spool()).write(change));
    }
    QByteArray damaged = contentOf(recording.spool());
    damaged.replace(page * pageSize, pageSize, QByteArray(pageSize, 'x'));
    write(recording.spool(), damaged);
    // Without them nobody could read it in such a folder.
    const QStringList logs{recording.spool() + "-wal", recording.spool() + "-shm"};
    for (const QString &log : logs)
        write(log, {});
    for (const QString &path : QStringList{recording.file(), recording.spool()} + logs)
        QVERIFY(setMode(path, 0666));
    {
        const FixedFolder folder(recording.folder());
        QVERIFY(folder.isFixed());
        const OrdinaryUser nobody;
        auto store = recording.open();
        QVERIFY(store);
        const QSignalSpy failed(store.get(), &InsertSerialData::writingFailed);
        InsertSerialData::enqueue(row("B2", 1800000000));
        QTRY_COMPARE(failed.count(), 1);
        store->insertNow();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(contentOf(recording.spool()), damaged);
        InsertSerialData::enqueue(row("B2", 1800000001));
        store.reset();
        QCOMPARE(contentOf(recording.spool()), damaged);
    }
    const QStringList rows = recording.rows();
    QCOMPARE(rows.filter("B2").size(), 2);
    QVERIFY(page == 0 || rows.size() > 4500);
}

/// The program had ended between taking it in and setting it aside.
void tst_SetAside::sideFileThatWasTakenInIsSetAside()
{
    const Recording recording;
    recording.open().reset();
    QVERIFY(recording.writeSideFile({row("A1", 1700000000), row("B2", 1700000001)}));
    const QByteArray damaged = contentOf(recording.sideFile()).replace("1700000001", "17000");
    write(recording.sideFile(), damaged + "x");
    const QString aside = recording.sideFile() + ".damaged-";
    auto store = recording.open();
    QVERIFY(store);
    QVERIFY(QFile::rename(aside + "1", recording.sideFile()));
    const QByteArray spooled = contentOf(recording.spool());
    store.reset();
    QVERIFY(!recording.rows().isEmpty());
    write(recording.spool(), spooled);

    store = recording.open();
    QVERIFY(!QFile::exists(recording.sideFile()));
    QCOMPARE(contentOf(aside + "1"), damaged + "x");
}

void tst_SetAside::tornRecordingThatCannotBeSetAsideStays()
{
    const Recording recording;
    {
        const auto store = recording.open();
        for (quint32 i = 0; i < 2000; ++i)
            InsertSerialData::enqueue(row("A1", 1700000000 + i));
        store->insertNow();
    }
    const QByteArray torn = contentOf(recording.file()).chopped(4096);
    write(recording.file(), torn);
    QVERIFY(setMode(recording.file(), 0666));
    const LogCapture log;
    {
        const FixedFolder folder(recording.folder());
        QVERIFY(folder.isFixed());
        const OrdinaryUser nobody;
        recording.open().reset();
    }
    QCOMPARE(contentOf(recording.file()), torn);
    QCOMPARE(log.warnings().filter("torn, and not to be replaced").size(), 1);
}

QTEST_GUILESS_MAIN(tst_SetAside)
#include "tst_SetAside.moc"
