#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/ScriptedLogger.h"

#include <QAction>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTimer>

namespace {

QString labelText(const SorvantoMain &station, const char *name)
{
    return child<QLabel>(station, name)->text();
}

QImage recordState(const SorvantoMain &station)
{
    return child<QLabel>(station, "label_record_state")->pixmap(Qt::ReturnByValue).toImage();
}

/// Keeps a read transaction open on a recording, as a viewer does while it draws.
class Reader
{
public:
    explicit Reader(const QString &file)
    {
        m_database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("reader"));
        m_database.setDatabaseName(file);
        m_query = QSqlQuery(m_database.open() ? m_database : QSqlDatabase());
        m_query.exec(QStringLiteral("begin"));
        m_query.exec(QStringLiteral("select * from ostrivane"));
        m_holds = m_query.next();
    }
    ~Reader()
    {
        m_query = QSqlQuery();
        m_database.close();
        m_database = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("reader"));
    }
    bool holdsTheFile() const { return m_holds; }

private:
    QSqlDatabase m_database;
    QSqlQuery m_query;
    bool m_holds = false;
};

} // namespace

/// Starting, flushing and stopping a recording, against loggers on real sockets and with real recordings.
class tst_Recording : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
    }

    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void oneDeviceIsWrittenInEights()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(7);
        m_station->writeDb();
        QCOMPARE(m_fixture->readingCount(m_name), 0);
        QCOMPARE(InsertSerialData::pendingCount(), 7);
        pollUntilPending(8);
        m_station->writeDb();
        QCOMPARE(m_fixture->readingCount(m_name), 8);
        QCOMPARE(InsertSerialData::pendingCount(), 0);
    }

    void twoDevicesAreWrittenInSixteens()
    {
        open(2);
        m_station->slotStartRecord();
        pollUntilPending(14);
        m_station->writeDb();
        QCOMPARE(m_fixture->readingCount(m_name), 0);
        QCOMPARE(InsertSerialData::pendingCount(), 14);
        pollUntilPending(16);
        m_station->writeDb();
        QCOMPARE(m_fixture->readingCount(m_name), 16);
        QCOMPARE(InsertSerialData::pendingCount(), 0);
    }

    void theTimerFlushes()
    {
        open(1);
        m_station->slotStartRecord();
        const auto *timer = child<QTimer>(*m_station, "writeDbTimer");
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 1500);
        pollUntilPending(8);
        QTRY_COMPARE(m_fixture->readingCount(m_name), 8);
    }

    void aRefreshInVainCostsNoReading()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(1);
        m_fixture->logger(0).stopListening();
        m_fixture->logger(0).dropConnections();
        QTRY_COMPARE(m_fixture->logger(0).openConnections(), 0);
        m_station->slotRefreshDevice();
        QVERIFY(m_fixture->logger(0).listenAgain());
        QTRY_VERIFY(!m_station->configuredDevices().first()->isOpen());
        const int served = m_fixture->served();
        const auto isServed = [&] {
            m_station->writeDevice();
            return QTest::qWaitFor([&] { return m_fixture->served() > served; }, 200);
        };
        QVERIFY(QTest::qWaitFor(isServed));
        QTRY_COMPARE(InsertSerialData::pendingCount(), 2);
    }

    void stoppingWritesEverything()
    {
        open(2);
        m_station->slotStartRecord();
        pollUntilPending(5);
        const int pending = InsertSerialData::pendingCount();
        m_station->slotStopRecord();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        const QList<RecordedRow> rows = m_fixture->rows(m_name);
        QCOMPARE(m_fixture->readingCount(m_name), pending);
        QCOMPARE(rows.size(), pending + 2);
        for (const ConfiguredDevice *device : m_station->configuredDevices())
            verifyClosedSeries(rows, device->serialNumber());
    }

    void stoppingWritesTheRange()
    {
        open(1);
        m_station->slotStartRecord();
        const QString typed = labelText(*m_station, "label_record_starttime");
        QCOMPARE(storedTime("record_start_time"), typed);
        pollUntilPending(2);
        m_station->slotStopRecord();
        const QList<RecordedRow> rows = m_fixture->rows(m_name);
        const auto text = [](qint64 time) {
            return QDateTime::fromSecsSinceEpoch(time).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
        };
        QCOMPARE(storedTime("record_start_time"), text(rows.first().time));
        QCOMPARE(storedTime("record_stop_time"), text(rows.last().time));
        QCOMPARE(labelText(*m_station, "label_record_starttime"), text(rows.first().time));
        QCOMPARE(labelText(*m_station, "label_record_endtime"), text(rows.last().time));
    }

    void startingTwiceGoesOnRecording()
    {
        open(1);
        m_station->slotStartRecord();
        const QString start = labelText(*m_station, "label_record_starttime");
        // Only a timer that is started anew is back at its period.
        auto *timer = child<QTimer>(*m_station, "writeDbTimer");
        timer->start(600000);
        m_station->slotStartRecord();
        QVERIFY(m_station->isRecording());
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 1500);
        QCOMPARE(labelText(*m_station, "label_record_starttime"), start);
    }

    void togglingStopsARunningRecording()
    {
        open(1);
        m_station->slotToggleRecord();
        QVERIFY(m_station->isRecording());
        QCOMPARE(recordState(*m_station), QPixmap(QStringLiteral(":/img/StateRecording.png")).toImage());
        QVERIFY(m_station->configuredDevices().first()->isRecording());
        m_station->slotToggleRecord();
        QVERIFY(!m_station->isRecording());
        QCOMPARE(recordState(*m_station), QPixmap(QStringLiteral(":/img/StateReady.png")).toImage());
        QVERIFY(!m_station->configuredDevices().first()->isRecording());
    }

    void recordsByItselfAtTheStart()
    {
        m_fixture->writeProject(m_name, {m_fixture->addLogger()});
        m_fixture->listProject(m_name, true, true);
        m_station = std::make_unique<SorvantoMain>();
        QVERIFY(m_station->isRecording());
        // The poll of the opening is already part of the recording.
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
    }

    void anEmptyRecordingShowsNoRange()
    {
        open(1);
        QCOMPARE(labelText(*m_station, "label_record_starttime"), QString());
        QCOMPARE(labelText(*m_station, "label_record_endtime"), QString());
        m_station->slotStdTimer();
        QCOMPARE(labelText(*m_station, "label_record_bytes"), QString());
    }

    void theRangeRunsWithTheClock()
    {
        open(1);
        m_station->slotStartRecord();
        m_station->slotStdTimer();
        QCOMPARE(labelText(*m_station, "label_record_endtime"), labelText(*m_station, "label_datetime"));
        m_station->slotStdTimer();
        QVERIFY(labelText(*m_station, "label_record_bytes").startsWith(QStringLiteral("Database ")));
    }

    void anOlderRangeIsShownAgain()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(1);
        m_station->slotStopRecord();
        const QString start = labelText(*m_station, "label_record_starttime");
        const QString end = labelText(*m_station, "label_record_endtime");
        m_station->slotCloseProject();
        loadAgain();
        QCOMPARE(labelText(*m_station, "label_record_starttime"), start);
        QCOMPARE(labelText(*m_station, "label_record_endtime"), end);
    }

    void withoutAProjectNothingIsRecorded()
    {
        m_station = std::make_unique<SorvantoMain>();
        m_station->slotStartRecord();
        QVERIFY(!m_station->isRecording());
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("Database does not exist.")});
    }

    void recordingKeepsTheWindowOpen()
    {
        open(1);
        m_station->show();
        m_station->slotStartRecord();
        m_station->close();
        QVERIFY(m_station->isVisible());
        QVERIFY(m_station->isProjectOpen());
        QVERIFY(m_station->isRecording());
        m_station->slotStopRecord();
        m_station->close();
        QVERIFY(!m_station->isVisible());
        QVERIFY(!m_station->isProjectOpen());
    }

    void closingTheProjectStopsTheRecordingFirst()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(3);
        m_station->slotCloseProject();
        const QList<RecordedRow> rows = m_fixture->rows(m_name);
        QCOMPARE(rows.size(), 4);
        QVERIFY(rows.last().isGap());
        QCOMPARE(storedTime("record_stop_time").size(), 19);
    }

    void saysWhenTheRecordedRangeCannotBeSaved()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(1);
        QCOMPARE(shownMessages(), QStringList());
        const QString path = m_fixture->projectPath(m_name);
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path)); // a folder in the file's place refuses even the superuser
        m_station->slotStopRecord();
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("Unable to save the project file.")});
        QCOMPARE(m_fixture->rows(m_name).size(), 2);
    }

    void aReaderCostsNoRow()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(8);
        m_station->writeDb();
        {
            const Reader reader(m_fixture->recordingPath(m_name));
            QVERIFY(reader.holdsTheFile());
            pollUntilPending(8);
            m_station->writeDb();
            m_station->writeDb();
            QCOMPARE(InsertSerialData::pendingCount(), 8);
            QCOMPARE(shownMessages().size(), 1);
            QVERIFY(!child<QLabel>(*m_station, "label_record_error")->isHidden());
            QVERIFY(!labelText(*m_station, "label_record_error").isEmpty());
        }
        m_station->writeDb();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(m_fixture->readingCount(m_name), 16);
        QVERIFY(child<QLabel>(*m_station, "label_record_error")->isHidden());
    }

    void rowsThatCannotBeWrittenWaitForTheirProject()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(8);
        m_station->writeDb();
        {
            const Reader reader(m_fixture->recordingPath(m_name));
            QVERIFY(reader.holdsTheFile());
            pollUntilPending(3);
            m_station->slotCloseProject();
        }
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(m_fixture->readingCount(m_name), 8);

        m_fixture->writeProject(QStringLiteral("Other"), {});
        m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Other")));
        m_station->slotStartRecord();
        m_station->slotStopRecord();
        QCOMPARE(m_fixture->rows(QStringLiteral("Other")).size(), 0);

        m_station->projectLoaded(m_fixture->projectPath(m_name));
        m_station->slotStartRecord();
        m_station->slotStopRecord();
        QCOMPARE(m_fixture->readingCount(m_name), 11);
    }

    void rowsThatCouldNotBeWrittenAtTheStopAreWrittenLater()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(8);
        m_station->writeDb();
        {
            const Reader reader(m_fixture->recordingPath(m_name));
            QVERIFY(reader.holdsTheFile());
            pollUntilPending(3);
            m_station->slotStopRecord();
            QCOMPARE(InsertSerialData::pendingCount(), 4);
        }
        QTRY_COMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(m_fixture->readingCount(m_name), 11);
        QCOMPARE(m_fixture->rows(m_name).size(), 12);
        const QString end = latestTime();
        QCOMPARE(storedTime("record_stop_time"), end);
        QCOMPARE(labelText(*m_station, "label_record_endtime"), end);
        QVERIFY(child<QLabel>(*m_station, "label_record_error")->isHidden());
    }

    void keptRowsAreInTheRecordingOnceItIsOpen()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(8);
        m_station->writeDb();
        {
            const Reader reader(m_fixture->recordingPath(m_name));
            QVERIFY(reader.holdsTheFile());
            pollUntilPending(3);
            m_station->slotCloseProject();
        }
        loadAgain();
        QCOMPARE(InsertSerialData::pendingCount(), 0);
        QCOMPARE(m_fixture->readingCount(m_name), 11);
        const QString end = latestTime();
        QCOMPARE(labelText(*m_station, "label_record_endtime"), end);
        QCOMPARE(storedTime("record_stop_time"), end);
    }

    void aDeletedRecordingIsTold()
    {
        open(1);
        m_station->slotStartRecord();
        QVERIFY(QFile::remove(m_fixture->recordingPath(m_name)));
        pollUntilPending(8);
        m_station->writeDb();
        QCOMPARE(InsertSerialData::pendingCount(), 8);
        QCOMPARE(shownMessages().size(), 1);
        m_station->slotCloseProject();
        loadAgain();
        QCOMPARE(m_fixture->readingCount(m_name), 8);
    }

    void sixSignificantDigitsAndNoValue()
    {
        open(1);
        m_fixture->logger(0).setReply("ATDC 1234567.8,----\r\n");
        m_station->slotStartRecord();
        pollUntilPending(1);
        m_fixture->logger(0).setReply("ATDC nan,21.123456789\r\n");
        pollUntilPending(2);
        m_station->slotStopRecord();
        const QList<RecordedRow> rows = m_fixture->rows(m_name);
        QCOMPARE(rows.size(), 3);
        QSet<QString> values;
        for (const RecordedRow &row : rows)
            values.insert(row.channel1.toString() + QLatin1Char(' ') + row.channel2.toString());
        QCOMPARE(values, (QSet<QString>{QStringLiteral("1234570 "), QStringLiteral("0 21.1235"), QStringLiteral(" ")}));
    }

    void endingTheProgramStopsTheRecording()
    {
        open(1);
        m_station->show();
        m_station->slotStartRecord();
        pollUntilPending(2);
        QTimer::singleShot(0, m_station.get(), &SorvantoMain::endProgram);
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!m_station->isVisible());
        QCOMPARE(m_fixture->readingCount(m_name), 2);
        QVERIFY(m_fixture->rows(m_name).last().isGap());
    }

private:
    /// A project whose timer leaves all polling to the test.
    void open(int loggers)
    {
        QList<DeviceEntry> devices;
        for (int i = 0; i < loggers; ++i)
            devices << m_fixture->addLogger();
        m_fixture->writeProject(m_name, devices, 600000);
        m_station = std::make_unique<SorvantoMain>();
        m_station->projectLoaded(m_fixture->projectPath(m_name));
        QTRY_COMPARE(m_fixture->served(), loggers);
        for (const ConfiguredDevice *device : m_station->configuredDevices())
            QTRY_VERIFY(device->isConnected());
    }

    void loadAgain()
    {
        // The panel of the closed project must be gone, or its labels are found instead of the new ones.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_station->projectLoaded(m_fixture->projectPath(m_name));
    }

    void pollUntilPending(int count)
    {
        while (InsertSerialData::pendingCount() < count) {
            const int before = InsertSerialData::pendingCount();
            m_station->writeDevice();
            QTRY_COMPARE(InsertSerialData::pendingCount(), before + m_station->configuredDevices().size());
        }
    }

    /// The last row of a series is its gap, one second after the last reading.
    static void verifyClosedSeries(const QList<RecordedRow> &rows, const QString &serial)
    {
        quint32 lastReading = 0;
        quint32 gap = 0;
        for (const RecordedRow &row : rows) {
            if (row.serial != serial)
                continue;
            if (row.isGap())
                gap = row.time;
            else
                lastReading = qMax(lastReading, row.time);
        }
        QCOMPARE(gap, lastReading + 1);
    }

    QString latestTime() const
    {
        quint32 latest = 0;
        for (const RecordedRow &row : m_fixture->rows(m_name))
            latest = qMax(latest, row.time);
        return QDateTime::fromSecsSinceEpoch(latest).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    }

    QString storedTime(const char *key) const
    {
        return QSettings(m_fixture->projectPath(m_name), QSettings::IniFormat).value(QLatin1String(key)).toString();
    }

    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

STATION_TEST_MAIN(tst_Recording)
#include "tst_Recording.moc"
