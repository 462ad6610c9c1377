#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/ScriptedLogger.h"

#include <QSignalSpy>
#include <QTimer>

/// The program, or the session, ends in the middle of a recording.
class tst_EndWhileRecording : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Only an event loop that runs and ends takes the toolkit out of the state of ending.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
        m_fixture = std::make_unique<StationFixture>();
    }

    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void readingsOnTheirWayAreAwaitedAtTheEnd_data()
    {
        QTest::addColumn<bool>("isSession");
        QTest::newRow("end of the program") << false;
        QTest::newRow("end of the session") << true;
    }

    void readingsOnTheirWayAreAwaitedAtTheEnd()
    {
        QFETCH(bool, isSession);
        open(2);
        m_station->slotKeepAlive(true);
        m_station->slotStartRecord();
        pollUntilPending(2);
        // Both polls are under way when the first of the answers comes.
        m_fixture->logger(0).setSilent();
        const auto asked = m_fixture->logger(0).commands().size();
        m_station->writeDevice();
        QTRY_COMPARE(m_fixture->logger(0).commands().size(), asked + 1);
        m_station->writeDevice();
        QTRY_COMPARE(m_fixture->logger(0).commands().size(), asked + 2);
        QTRY_COMPARE(InsertSerialData::pendingCount(), 4);
        m_fixture->logger(0).send("ATDC 30.00,45.10\r\n");
        QTimer::singleShot(0, &m_fixture->logger(0), [this] { m_fixture->logger(0).send("ATDC 31.00,45.10\r\n"); });
        if (isSession)
            m_station->stopRunningRecording();
        else
            m_station->endProgram();
        const QList<RecordedRow> rows = m_fixture->rows(m_name);
        QCOMPARE(m_fixture->readingCount(m_name), 6);
        for (const double value : {30.0, 31.0})
            QVERIFY(std::any_of(rows.cbegin(), rows.cend(),
                                [value](const RecordedRow &row) { return row.channel1 == value; }));
    }

    void aSilentLoggerHoldsUpNoEnd()
    {
        open(1);
        m_station->slotKeepAlive(true);
        m_station->slotStartRecord();
        pollUntilPending(1);
        m_fixture->logger(0).setSilent();
        m_station->writeDevice();
        QSignalSpy heard(&m_fixture->logger(0), &ScriptedLogger::commandReceived);
        QVERIFY(heard.wait());
        m_station->endProgram();
        QVERIFY(m_station->isEnding());
        QCOMPARE(m_fixture->readingCount(m_name), 1);
    }

    void pollsGoOnWhenTheSessionStays()
    {
        open(1);
        m_station->slotStartRecord();
        pollUntilPending(1);
        m_station->stopRunningRecording();
        QVERIFY(child<QTimer>(*m_station, "writeDeviceTimer")->isActive());
    }

private:
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

    void pollUntilPending(int count)
    {
        while (InsertSerialData::pendingCount() < count) {
            const int before = InsertSerialData::pendingCount();
            m_station->writeDevice();
            QTRY_COMPARE(InsertSerialData::pendingCount(), before + m_station->configuredDevices().size());
        }
    }

    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

STATION_TEST_MAIN(tst_EndWhileRecording)
#include "tst_EndWhileRecording.moc"
