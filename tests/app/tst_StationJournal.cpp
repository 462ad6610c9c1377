#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "journal/JournalReader.h"
#include "store/InsertSerialData.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTimer>
#include <atomic>
#include <ctime>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

const QString name = QStringLiteral("Kitchen");

// Seconds that the computer has slept through.
std::atomic_int sleptSeconds{0};

} // namespace

/// Takes the place of the system's, for every library of this program.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (clock == CLOCK_BOOTTIME)
        time->tv_sec += sleptSeconds;
    return int(result);
}

/// Every doing of a station leaves its entry in the journal beside the recording.
class tst_StationJournal : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        m_shift = 0;
        DeviceEntry entry = m_fixture->addLogger();
        entry.range = {2, 8, 0, 0};
        m_fixture->writeProject(name, {entry}, 600000);
        m_fixture->logger(0).setReply("ATDC 5.00,45.10\r\n");
    }

    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void openedRecordedClosed()
    {
        openStation();
        m_station->slotStartRecord();
        m_station->slotStopRecord();
        m_station->slotCloseProject();
        QTRY_COMPARE(kinds(), QStringList({"program-started", "project-opened", "logger-connected", "recording-started",
                                           "recording-stopped", "logger-lost", "project-closed"}));
        QVERIFY(readJournal(journal()).isWhole());
        QCOMPARE(entries()[1].text(JournalEntry::Text), m_fixture->projectPath(name));
        QCOMPARE(entries()[0].text(JournalEntry::New), QStringLiteral("V3.54"));
        QCOMPARE(entries()[5].text(JournalEntry::Text), QStringLiteral("The station closed its link."));
    }

    void endOfTheProgram_data()
    {
        QTest::addColumn<bool>("bySignal");
        QTest::newRow("window closed") << false;
        QTest::newRow("asked to end") << true;
    }

    void endOfTheProgram()
    {
        QFETCH(bool, bySignal);
        openStation();
        m_station->slotStartRecord();
        if (bySignal) {
            m_station->endProgram();
        } else {
            m_station->slotStopRecord();
            m_station->close();
        }
        m_station.reset();
        QTRY_COMPARE(kinds().mid(kinds().indexOf(QStringLiteral("recording-stopped"))),
                     QStringList({"recording-stopped", "logger-lost", "project-closed", "program-ended"}));
        openStation();
        QCOMPARE(shownMessages(), QStringList());
    }

    /// As a crash leaves it, the journal goes on without an end.
    void uncleanEndIsTold()
    {
        openStation();
        m_station.reset();
        QTRY_VERIFY(kinds().endsWith(QStringLiteral("program-ended")));
        cutLast(2);
        const QString last = entries().last().time().toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        openStation();
        QTRY_COMPARE(kinds().count(QStringLiteral("program-started")), 2);
        const QString sentence =
            QStringLiteral("The station was not closed properly the last time; the last entry of its "
                           "journal is of %1.");
        QTRY_COMPARE(shownMessages(), QStringList{sentence.arg(last)});
    }

    void loggerLostAndBack()
    {
        openStation();
        m_fixture->logger(0).setSilent();
        pollUntil([this] { return !device()->isConnected(); });
        m_fixture->logger(0).setReply("ATDC 5.00,45.10\r\n");
        pollUntil([this] { return device()->isConnected(); });
        QTRY_VERIFY2(kinds().size() >= 5, qPrintable(kinds().join(' ')));
        QTRY_COMPARE(kinds().mid(2), QStringList({"logger-connected", "logger-lost", "logger-connected"}));
        QCOMPARE(entries()[3].text(JournalEntry::Text), QStringLiteral("It gave no answers."));
        QCOMPARE(entries()[3].text(JournalEntry::Key), device()->serialNumber());
    }

    void alarmsWithTheirLimits()
    {
        openStation();
        m_fixture->logger(0).setReply("ATDC 9.25,45.10\r\n");
        pollUntil([this] { return device()->alarmOnChannel1(); });
        device()->setAlarmRange(2, 10, 0, 0);
        device()->checkAlarmAll();
        m_station->slotUpdateProjectFile();
        QTRY_VERIFY2(kinds().size() >= 6, qPrintable(kinds().join(' ')));
        QTRY_COMPARE(kinds().mid(3), QStringList({"alarm-began", "alarm-ended", "limits-changed"}));
        const JournalEntry begun = entries()[3];
        QCOMPARE(begun.text(JournalEntry::Channel), QStringLiteral("1"));
        QCOMPARE(begun.text(JournalEntry::Value), QStringLiteral("9.25"));
        QCOMPARE(begun.text(JournalEntry::Low), QStringLiteral("2"));
        QCOMPARE(begun.text(JournalEntry::High), QStringLiteral("8"));
        QCOMPARE(entries()[5].text(JournalEntry::Old), QStringLiteral("2..8"));
        QCOMPARE(entries()[5].text(JournalEntry::New), QStringLiteral("2..10"));
    }

    void writingTrouble()
    {
        openStation();
        m_station->slotStartRecord();
        m_station->writeDevice();
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
        const QString recording = m_fixture->recordingPath(name);
        QVERIFY(QFile::rename(recording, recording + QStringLiteral(".away")));
        m_station->slotStopRecord();
        QVERIFY(QFile::rename(recording + QStringLiteral(".away"), recording));
        QTRY_COMPARE(InsertSerialData::pendingCount(), 0);
        QTRY_VERIFY(kinds().contains(QStringLiteral("writing-restored")));
        const JournalEntry failed = entries()[kinds().indexOf(QStringLiteral("writing-failed"))];
        QVERIFY(failed.text(JournalEntry::Text).startsWith(QStringLiteral("The recording was deleted")));
        QCOMPARE(failed.text(JournalEntry::Value), QStringLiteral("1"));
        QCOMPARE(entries()[kinds().indexOf(QStringLiteral("writing-restored"))].text(JournalEntry::Value),
                 QStringLiteral("2"));
    }

    void droppedReadings()
    {
        openStation();
        emit m_station->findChild<InsertSerialData *>()->readingsDropped(7);
        QTRY_VERIFY(kinds().contains(QStringLiteral("rows-dropped")));
        QCOMPARE(entries()[kinds().indexOf(QStringLiteral("rows-dropped"))].text(JournalEntry::Value),
                 QStringLiteral("7"));
    }

    void clockThatWasSet()
    {
        openStation();
        m_station->slotStdTimer();
        m_shift = 3600;
        m_station->slotStdTimer();
        m_station->slotStdTimer();
        QTRY_VERIFY(kinds().contains(QStringLiteral("clock-jumped")));
        QTRY_COMPARE(kinds().count(QStringLiteral("clock-jumped")), 1);
        const JournalEntry jump = entries()[kinds().indexOf(QStringLiteral("clock-jumped"))];
        QCOMPARE(qRound(jump.fields[JournalEntry::Value].toDouble()), 3600);
        const QDateTime old = QDateTime::fromString(jump.text(JournalEntry::Old), Qt::ISODateWithMs);
        QCOMPARE(qRound(double(old.msecsTo(jump.time())) / 1000), 3600);
    }

    /// Whoever keeps the log can tell later that this journal is the one that was.
    /// The clock has gone on meanwhile, as it should.
    void sleepOfTheComputerIsNoJump()
    {
        openStation();
        m_station->slotStdTimer();
        m_shift = 3600;
        sleptSeconds += 3600;
        m_station->slotStdTimer();
        m_station->slotStopRecord();
        m_station->slotCloseProject();
        QTRY_VERIFY(kinds().endsWith(QStringLiteral("project-closed")));
        QVERIFY2(!kinds().contains(QStringLiteral("clock-jumped")), qPrintable(kinds().join(' ')));
    }

    void recordingThatCannotBeOpened()
    {
        QVERIFY(QDir().mkpath(m_fixture->recordingPath(name)));
        QTimer box;
        connect(&box, &QTimer::timeout, this, [] {
            if (QWidget *open = QApplication::activeModalWidget())
                open->close();
        });
        box.start(10);
        m_station = std::make_unique<SorvantoMain>();
        m_station->projectLoaded(m_fixture->projectPath(name));
        m_station.reset();
        QTRY_COMPARE(kinds(), QStringList({"program-started", "project-opened", "writing-failed", "project-closed",
                                           "program-ended"}));
    }

    void headIsHandedOut()
    {
        const LogCapture log;
        openStation();
        QTRY_VERIFY(kinds().contains(QStringLiteral("logger-connected")));
        m_station->slotStdTimer();
        QVERIFY(log.count(QStringLiteral("Journal of events")) == 0);
        m_shift = 24 * 3600;
        m_station->slotStdTimer();
        QCOMPARE(log.count(QStringLiteral("Journal of events")), 1);
        m_station->slotCloseProject();
        QCOMPARE(log.count(QStringLiteral("Journal of events : Kitchen.events : entries : %1 : head : %2")
                               .arg(QString::number(entries().size()), QString::fromLatin1(entries().last().hash))),
                 1);
    }

    void tornJournalIsToldAndSetAside()
    {
        QFile file(journal());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not a journal");
        file.close();
        openStation();
        QTRY_COMPARE(shownMessages(), QStringList{"The journal of events was damaged. It is kept as "
                                                  "Kitchen.events.torn-1, and a new one was begun."});
        QTRY_COMPARE(kinds().value(0), QStringLiteral("journal-set-aside"));
    }

    /// Readings are what counts.
    void recordsWithoutAJournal()
    {
        QVERIFY(QDir().mkpath(journal() + QStringLiteral("/in the way")));
        openStation();
        QTRY_COMPARE(shownMessages().size(), 1);
        QVERIFY(
            shownMessages().first().startsWith(QStringLiteral("The journal of events cannot be written. The recording "
                                                              "goes on.")));
        m_station->slotStartRecord();
        m_station->writeDevice();
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
        m_station->slotStopRecord();
        QCOMPARE(m_fixture->readingCount(name), 1);
        QVERIFY(QDir(journal()).removeRecursively());
        m_station->slotCloseProject();
        QTRY_VERIFY(kinds().contains(QStringLiteral("recording-started")));
    }

private:
    QString journal() const { return m_fixture->path(QStringLiteral("Kitchen.events")); }
    ConfiguredDevice *device() const { return m_station->configuredDevices().first(); }

    void openStation()
    {
        m_station = std::make_unique<SorvantoMain>();
        m_station->setClock([this] { return QDateTime::currentDateTime().addSecs(m_shift); });
        m_station->show();
        m_station->projectLoaded(m_fixture->projectPath(name));
        QTRY_VERIFY(device()->isConnected());
    }

    template <typename Condition>
    void pollUntil(const Condition &condition)
    {
        constexpr int enoughPolls = 20;
        bool isMet = false;
        for (int i = 0; i < enoughPolls && !isMet; ++i) {
            m_station->writeDevice();
            isMet = QTest::qWaitFor(condition, 500);
        }
        QVERIFY(isMet);
    }

    QList<JournalEntry> entries() const
    {
        QList<JournalEntry> all;
        readJournal(journal(), [&all](const JournalEntry &entry) { all.append(entry); });
        return all;
    }

    QStringList kinds() const
    {
        QStringList all;
        const QList<JournalEntry> found = entries();
        for (const JournalEntry &entry : found)
            all << entry.text(JournalEntry::Kind);
        return all;
    }

    void cutLast(int count) const
    {
        const QString connection = QStringLiteral("cut");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
            database.setDatabaseName(journal());
            QVERIFY(database.open());
            QVERIFY(QSqlQuery(database).exec(
                QStringLiteral("delete from entry where id > (select max(id) from entry) - %1").arg(count)));
        }
        QSqlDatabase::removeDatabase(connection);
    }

    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
    int m_shift = 0;
};

STATION_TEST_MAIN(tst_StationJournal)
#include "tst_StationJournal.moc"
