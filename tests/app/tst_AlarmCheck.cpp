#include "StationFixture.h"

#include "app/AudioOutput.h"
#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "support/NullSinkServer.h"
#include "support/ScriptedLogger.h"
#include "support/SinkMonitor.h"

#include <algorithm>

namespace {

constexpr int patienceMs = 20000;
constexpr double lowToneHz = 880;

/// Tenths of a second in which the alarm's lower tone was heard.
int tenthsHeard(SinkMonitor &ear)
{
    const QList<double> &levels = ear.toneLevels(lowToneHz);
    return int(std::count_if(levels.cbegin(), levels.cend(), [](double level) { return level > 0.2; }));
}

} // namespace

/// The alarm as an operator hears it: from a reading on a real socket to the sound server's other end.
class tst_AlarmCheck : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_ear.start(soundServer())); }

    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        DeviceEntry entry = m_fixture->addLogger();
        entry.range = {2, 8, 0, 0};
        m_fixture->writeProject(QStringLiteral("Freezer"), {entry}, 600000);
        m_fixture->logger(0).setReply("ATDC 5.00,45.10\r\n");
        m_station = std::make_unique<SorvantoMain>();
        m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Freezer")));
        QTRY_VERIFY_WITH_TIMEOUT(m_station->configuredDevices().first()->isConnected(), patienceMs);
        // What the test before has played may still be on its way.
        QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 1, patienceMs);
        m_ear.forget();
    }

    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void soundsAgainAndAgainUntilTheReturn()
    {
        read("ATDC 9.00,45.10\r\n", true);
        // More than one play of less than a second holds.
        QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 12, patienceMs);
        read("ATDC 5.00,45.10\r\n", false);
        QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 2, patienceMs);
    }

    void theSecondChannelSoundsToo()
    {
        m_station->configuredDevices().first()->setAlarmRange(0, 0, 10, 20);
        m_station->configuredDevices().first()->checkAlarmAll();
        QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 0, patienceMs);
    }

    void aClosedProjectIsSilent()
    {
        read("ATDC 9.00,45.10\r\n", true);
        QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 0, patienceMs);
        m_station->slotCloseProject();
        QCOMPARE(m_station->findChild<AudioOutput *>()->state(), QAudio::StoppedState);
        QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 2, patienceMs);
    }

    void aLostLoggerIsSilent()
    {
        read("ATDC 9.00,45.10\r\n", true);
        QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 0, patienceMs);
        m_station->configuredDevices().first()->deviceDisconnected();
        QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 2, patienceMs);
    }

private:
    void read(const QByteArray &reply, bool alarming)
    {
        m_fixture->logger(0).setReply(reply);
        m_station->writeDevice();
        QTRY_COMPARE_WITH_TIMEOUT(m_station->configuredDevices().first()->alarmOnChannel1(), alarming, patienceMs);
    }

    SinkMonitor m_ear;
    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

STATION_TEST_MAIN(tst_AlarmCheck)
#include "tst_AlarmCheck.moc"
