#include "project/ProjectFile.h"
#include "project/RecordingLock.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <unistd.h>

class tst_RecordingLock : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_recording = path(QStringLiteral("Kitchen.dat"));
        m_refusal = QStringLiteral("Another open project records into \"Kitchen.dat\".\nPlease retry.");
    }

    void aRecordingIsLockedOnce_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("new") << false;
        QTest::newRow("there") << true;
    }
    void aRecordingIsLockedOnce()
    {
        QFETCH(bool, exists);
        if (exists)
            write(m_recording);
        {
            RecordingLock first(m_recording);
            QVERIFY(first.acquire());
            RecordingLock second(m_recording);
            QVERIFY(!second.acquire());
            QCOMPARE(second.refusal(), m_refusal);
            QVERIFY(!RecordingLock(m_recording).acquire());
            QVERIFY(RecordingLock(path(QStringLiteral("Lab.dat"))).acquire());
        }
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files).size(), exists ? 1 : 0);
        QVERIFY(RecordingLock(m_recording).acquire());
    }

    void aCopiedProjectHasTheRecordingOfItsOriginal()
    {
        const QString original = path(QStringLiteral("Kitchen.tpc"));
        const QString copy = path(QStringLiteral("Copy.tpc"));
        QVERIFY(ProjectFile(original).create(QStringLiteral("Kitchen"), 1000));
        QVERIFY(QFile::copy(original, copy));
        RecordingLock first(ProjectFile(original).databasePath());
        QVERIFY(first.acquire());
        RecordingLock second(ProjectFile(copy).databasePath());
        QVERIFY(!second.acquire());
        QVERIFY(first.isOn(ProjectFile(copy).databasePath()));
    }

    void itIsTheFileThatCounts_data()
    {
        QTest::addColumn<bool>("hard");
        QTest::newRow("symbolic link") << false;
        QTest::newRow("hard link") << true;
    }
    void itIsTheFileThatCounts()
    {
        QFETCH(bool, hard);
        write(m_recording);
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("elsewhere")));
        const QString other = path(QStringLiteral("elsewhere/Other.dat"));
        const auto makeLink = hard ? ::link : ::symlink;
        QCOMPARE(makeLink(QFile::encodeName(m_recording).constData(), QFile::encodeName(other).constData()), 0);
        {
            RecordingLock lock(m_recording);
            QVERIFY(lock.acquire());
            RecordingLock second(other);
            QVERIFY(!second.acquire());
            QCOMPARE(second.refusal(),
                     QStringLiteral("Another open project records into \"Other.dat\".\nPlease retry."));
            QCOMPARE(lock.isOn(other), !hard);
        }
        // The refused one has let go of all that it had got.
        QVERIFY(RecordingLock(other).acquire());
        QVERIFY(RecordingLock(m_recording).acquire());
    }

    void aRecordingStillToBeMadeInALinkedFolder()
    {
        QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("real")));
        QVERIFY(QFile::link(path(QStringLiteral("real")), path(QStringLiteral("link"))));
        RecordingLock lock(path(QStringLiteral("real/New.dat")));
        QVERIFY(lock.acquire());
        QVERIFY(lock.isOn(path(QStringLiteral("link/New.dat"))));
        QVERIFY(!RecordingLock(path(QStringLiteral("link/New.dat"))).acquire());
    }

    void anotherComputerIsNamed()
    {
        write(m_recording + QStringLiteral(".lock"), "4711\nsorvanto-lite\ncellar-pc\n");
        RecordingLock lock(m_recording);
        QVERIFY(!lock.acquire());
        QCOMPARE(lock.refusal(), QStringLiteral("A project that is open on the computer \"cellar-pc\" records into "
                                                "\"Kitchen.dat\".\nPlease retry."));
    }

    void aFolderIsNoRecording()
    {
        const QString none = m_folder->path() + QLatin1Char('/');
        RecordingLock first(none);
        QVERIFY(first.acquire());
        QVERIFY(RecordingLock(none).acquire());
        QVERIFY(!QFile::exists(m_folder->path() + QStringLiteral(".lock")));
    }

    void aFolderThatTakesNoFileIsNoObstacle()
    {
        const QString recording = QStringLiteral("/proc/self/Kitchen.dat");
        RecordingLock lock(recording);
        QVERIFY(lock.acquire());
        QVERIFY(!RecordingLock(recording).acquire());
    }

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    void write(const QString &file, const QByteArray &content = {}) const
    {
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
            qFatal("cannot write");
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_recording;
    QString m_refusal;
};

QTEST_GUILESS_MAIN(tst_RecordingLock)
#include "tst_RecordingLock.moc"
