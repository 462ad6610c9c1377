#include "JournalBench.h"

#include "journal/EventJournal.h"
#include "journal/JournalReader.h"
#include "journal/OperatingSystemUser.h"

#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

namespace {

// Each of the thousands of entries of a full queue may have to wait for the disk.
constexpr int patienceMs = 120000;

const char *const victimVariable = "JOURNAL_TO_FILL";

/// Writes events until it is killed, and prints every head that it was told to be on the disk.
int beVictim(const QString &path)
{
    EventJournal journal;
    journal.open(path);
    QByteArray shown;
    while (true) {
        journal.append(eventOf(JournalKind::NameChanged, QString(300, QLatin1Char('x'))));
        while (journal.head() == shown)
            std::this_thread::yield();
        shown = journal.head();
        std::printf("%s\n", shown.constData());
        std::fflush(stdout);
    }
}

/// While it lives, nothing reaches the disk; it gives in after a minute, so that whoever waits for it comes to an end.
class ShutDisk
{
public:
    ShutDisk()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isShut = true;
        isAskedFor = gaveIn = false;
    }
    ~ShutDisk()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isShut = false;
        opened.notify_all();
    }
    ShutDisk(const ShutDisk &) = delete;
    ShutDisk &operator=(const ShutDisk &) = delete;

    static bool isAsked()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return isAskedFor;
    }
    static bool hasGivenIn()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return gaveIn;
    }
    static void pass()
    {
        std::unique_lock<std::mutex> lock(mutex);
        if (!isShut)
            return;
        isAskedFor = true;
        gaveIn = !opened.wait_for(lock, std::chrono::minutes(1), [] { return !isShut; });
    }

private:
    static inline std::mutex mutex;
    static inline std::condition_variable opened;
    static inline bool isShut = false;
    static inline bool isAskedFor = false;
    static inline bool gaveIn = false;
};

} // namespace

/// Takes the place of the system's, for every library of this program.
extern "C" int fdatasync(int file)
{
    ShutDisk::pass();
    return int(syscall(SYS_fdatasync, file));
}

/// The journal on its own thread: nothing is lost that was on the disk, and no trouble with it stops anybody.
class tst_EventJournal : public QObject
{
    Q_OBJECT

private slots:
    void writesInOrder()
    {
        const JournalBench bench;
        EventJournal journal;
        for (const JournalEvent &one : everyKind())
            journal.append(one);
        journal.open(bench.path());
        for (const JournalEvent &one : everyKind())
            journal.append(one);
        QTRY_COMPARE(journal.entryCount(), qint64(2 * everyKind().size()));
        journal.close();
        const QList<JournalEntry> entries = bench.entries();
        QCOMPARE(entries.size(), 2 * everyKind().size());
        for (int i = 0; i < entries.size(); ++i)
            QCOMPARE(entries[i].text(JournalEntry::Kind), journalWord(everyKind()[i % everyKind().size()].kind));
        QCOMPARE(journal.head(), entries.last().hash);
        QCOMPARE(journal.entryCount(), qint64(entries.size()));
    }

    void stampsTimeAndUser()
    {
        const JournalBench bench;
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        EventJournal journal;
        journal.open(bench.path());
        journal.append(eventOf(JournalKind::ProjectOpened));
        QTRY_COMPARE(journal.entryCount(), qint64(1));
        journal.close();
        const JournalEntry entry = bench.entries().first();
        const qint64 time = entry.time().toMSecsSinceEpoch();
        QVERIFY(time >= before && time <= QDateTime::currentMSecsSinceEpoch());
        QCOMPARE(entry.text(JournalEntry::User), operatingSystemUser());
        QProcess id;
        id.start(QStringLiteral("id"), {QStringLiteral("-un")});
        QVERIFY(id.waitForFinished());
        QCOMPARE(operatingSystemUser(), QString::fromLocal8Bit(id.readAll()).trimmed());
    }

    void tellsAnUncleanEnd()
    {
        const JournalBench bench;
        QVERIFY(bench.write({eventOf(JournalKind::ProjectOpened)}));
        EventJournal journal;
        QSignalSpy unclean(&journal, &EventJournal::unclean);
        journal.open(bench.path());
        journal.append(eventOf(JournalKind::ProjectOpened));
        QTRY_COMPARE(unclean.count(), 1);
        QCOMPARE(unclean.first().first().toDateTime(), bench.entries().first().time());
    }

    void troubleIsToldOnceAndTriedAgain()
    {
        const JournalBench bench;
        const QString folder = bench.folder() + QStringLiteral("/share");
        const QString path = folder + QStringLiteral("/Kitchen.events");
        EventJournal journal;
        QSignalSpy failed(&journal, &EventJournal::failed);
        QSignalSpy restored(&journal, &EventJournal::restored);
        journal.open(path);
        journal.append(eventOf(JournalKind::ProjectOpened));
        QTRY_COMPARE(failed.count(), 1);
        journal.append(eventOf(JournalKind::RecordingStarted));
        QVERIFY(QDir().mkpath(folder));
        // The next attempt comes with the next event at the latest.
        journal.append(eventOf(JournalKind::RecordingStopped));
        QTRY_COMPARE(restored.count(), 1);
        QCOMPARE(failed.count(), 1);
        QTRY_COMPARE(journal.entryCount(), qint64(3));
        journal.close();
        int entries = 0;
        QVERIFY(readJournal(path, [&entries](const JournalEntry &) { ++entries; }).isWhole());
        QCOMPARE(entries, 3);
    }

    void vanishedFolderMidway()
    {
        const JournalBench bench;
        const QString folder = bench.folder() + QStringLiteral("/share");
        const QString path = folder + QStringLiteral("/Kitchen.events");
        QVERIFY(QDir().mkpath(folder));
        EventJournal journal;
        QSignalSpy failed(&journal, &EventJournal::failed);
        QSignalSpy unclean(&journal, &EventJournal::unclean);
        journal.open(path);
        journal.append(eventOf(JournalKind::ProjectOpened));
        QTRY_COMPARE(journal.entryCount(), qint64(1));
        QVERIFY(QDir().rename(folder, folder + QStringLiteral("-gone")));
        journal.append(eventOf(JournalKind::RecordingStarted));
        QTRY_COMPARE(failed.count(), 1);
        QVERIFY(QDir().rename(folder + QStringLiteral("-gone"), folder));
        journal.append(eventOf(JournalKind::RecordingStopped));
        QTRY_COMPARE(journal.entryCount(), qint64(3));
        journal.close();
        QVERIFY(readJournal(path).isWhole());
        QCOMPARE(unclean.count(), 0);
    }

    void memoryIsBounded()
    {
        const JournalBench bench;
        EventJournal journal;
        for (int i = 0; i < EventJournal::longestQueue + 7; ++i)
            journal.append(eventOf(JournalKind::NameChanged));
        journal.open(bench.path());
        QTRY_COMPARE_WITH_TIMEOUT(journal.entryCount(), qint64(EventJournal::longestQueue + 1), patienceMs);
        journal.close();
        const QList<JournalEntry> entries = bench.entries();
        QCOMPARE(entries.size(), EventJournal::longestQueue + 1);
        QCOMPARE(entries.last().text(JournalEntry::Kind), QStringLiteral("entries-dropped"));
        QCOMPARE(entries.last().text(JournalEntry::Value), QStringLiteral("7"));
    }

    void closingWithoutAFileEnds()
    {
        EventJournal journal;
        const JournalBench bench;
        journal.open(bench.folder() + QStringLiteral("/none/Kitchen.events"));
        journal.append(eventOf(JournalKind::ProjectOpened));
        journal.close();
        QCOMPARE(journal.entryCount(), qint64(0));
    }

    void aDiskThatDoesNotAnswerHoldsNobodyUp()
    {
        const JournalBench bench;
        EventJournal later;
        {
            EventJournal journal;
            journal.open(bench.path());
            QTRY_COMPARE(bench.kinds(), QStringList());
            const ShutDisk disk;
            journal.append(eventOf(JournalKind::ProjectClosed));
            QTRY_VERIFY(ShutDisk::isAsked());
            journal.close();
            QVERIFY(!ShutDisk::hasGivenIn());
            // Opened again before the disk answers, the file has one writer at a time all the same.
            later.open(bench.path());
            later.append(eventOf(JournalKind::ProjectOpened));
        }
        QTRY_COMPARE(later.entryCount(), qint64(2));
        later.close();
        QCOMPARE(bench.kinds(), QStringList({"project-closed", "project-opened"}));
        QVERIFY(readJournal(bench.path()).isWhole());
    }

    void killedInTheMiddleOfAWrite()
    {
        const JournalBench bench;
        for (int round = 0; round < 5; ++round) {
            QProcess victim;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert(QLatin1String(victimVariable), bench.path());
            victim.setProcessEnvironment(environment);
            victim.start(QCoreApplication::applicationFilePath(), QStringList());
            QByteArray heads;
            QTRY_VERIFY((heads += victim.readAll()).count('\n') > 20 + round);
            victim.kill();
            QVERIFY(victim.waitForFinished());
            heads += victim.readAll();
            const QByteArray lastWhole = heads.left(heads.lastIndexOf('\n')).split('\n').last();
            bool isThere = false;
            const JournalVerdict verdict = readJournal(
                bench.path(), [&](const JournalEntry &entry) { isThere = isThere || entry.hash == lastWhole; });
            QVERIFY2(verdict.isWhole(), qPrintable(verdict.reason));
            QVERIFY(isThere);
        }
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QString path = qEnvironmentVariable(victimVariable);
    if (!path.isEmpty())
        return beVictim(path);
    tst_EventJournal test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_EventJournal.moc"
