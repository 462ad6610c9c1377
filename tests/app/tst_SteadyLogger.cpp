#include "SimulatedTime.h"
#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "store/InsertSerialData.h"
#include "support/ScriptedLogger.h"

#include <QDeadlineTimer>
#include <QRandomGenerator>

/// A logger that answers the same values for an hour: every second of it is in the recording.
class tst_SteadyLogger : public QObject
{
    Q_OBJECT

private slots:
    void everySecondIsRecordedOnce_data()
    {
        QTest::addColumn<int>("begin");
        QTest::newRow("opened as a second begins") << 0;
        QTest::newRow("opened as a second ends") << 998;
    }

    void everySecondIsRecordedOnce()
    {
        QFETCH(int, begin);
        StationFixture fixture;
        const DeviceEntry entry = fixture.addLogger();
        fixture.logger(0).setReply("ATDC 20.00,45.10\r\n");
        fixture.writeProject(QStringLiteral("Kitchen"), {entry}, 1000);
        fixture.listProject(QStringLiteral("Kitchen"), false, true);

        SimulatedTime time(1800000000000 + begin);
        SorvantoMain station;
        station.setClock([&time] { return time.dateTime(); });
        // Only these make polls; flushing is the test's.
        time.watch(child<QTimer>(station, "writeDeviceTimer"));
        time.watch(child<QTimer>(station, "pollShiftTimer"));
        station.projectLoaded(fixture.projectPath(QStringLiteral("Kitchen")));
        QVERIFY(station.isRecording());
        child<QTimer>(station, "writeDbTimer")->stop();
        const ConfiguredDevice *device = station.configuredDevices().first();
        int polls = 1;
        int flushed = 0;
        QVERIFY(becomesTrue([] { return InsertSerialData::pendingCount() == 1; }));

        QRandomGenerator delay{1};
        const qint64 end = time.now() + 3600000;
        while (time.now() < end) {
            const QDateTime before = device->pollTime();
            time.fireNext(int(delay.bounded(-1, 9)));
            polls += device->pollTime() == before ? 0 : 1;
            QVERIFY(becomesTrue([&] { return flushed + InsertSerialData::pendingCount() == polls; }));
            flushed += InsertSerialData::pendingCount();
            station.writeDb();
            flushed -= InsertSerialData::pendingCount();
        }
        station.slotStopRecord();
        quint32 last = 0;
        int readings = 0;
        for (const RecordedRow &row : fixture.rows(QStringLiteral("Kitchen"))) {
            if (row.isGap())
                continue;
            if (last != 0)
                QCOMPARE(row.time, last + 1);
            last = row.time;
            ++readings;
        }
        QCOMPARE(readings, polls);
        QVERIFY(readings >= 3600);
    }

private:
    /// Without the pauses of the usual waiting, of which an hour has many.
    template <typename Condition>
    static bool becomesTrue(const Condition &condition)
    {
        const QDeadlineTimer patience(20000);
        while (!condition() && !patience.hasExpired())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return condition();
    }
};

STATION_TEST_MAIN(tst_SteadyLogger)
#include "tst_SteadyLogger.moc"
