#include "app/AlarmSound.h"
#include "app/AudioOutput.h"
#include "support/NullSinkServer.h"
#include "support/SinkMonitor.h"
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QtEndian>
#include <QtMath>
#include <algorithm>
#include <memory>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QAudioDeviceInfo>
#include <QAudioFormat>
#endif

namespace {

constexpr int patienceMs = 30000;
constexpr double lowToneHz = 880;
constexpr double highToneHz = 1180;
constexpr double audibleLevel = 0.2;
constexpr int alarmCheckMs = 1000;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// By the end of the sound, which comes once a play; one that was not fed in time may lack it.
int playsFinished(SinkMonitor &ear)
{
    return ear.count(contentOf(QStringLiteral("://critical.wav")).right(2048));
}

/// A sound that no test outlasts: a second of the low tone, then the high one.
QByteArray longSound()
{
    constexpr int seconds = 2 * patienceMs / 1000;
    QByteArray samples;
    for (int frame = 0; frame < seconds * SinkMonitor::sampleRate; ++frame) {
        const double hz = frame < SinkMonitor::sampleRate ? lowToneHz : highToneHz;
        const auto level = qToLittleEndian(qint16(10000 * qSin(2 * M_PI * hz * frame / SinkMonitor::sampleRate)));
        for (int channel = 0; channel < 2; ++channel)
            samples.append(reinterpret_cast<const char *>(&level), sizeof level);
    }
    return samples;
}

/// In tenths of a second.
int tenthsHeard(SinkMonitor &ear, double frequencyHz)
{
    const auto &levels = ear.toneLevels(frequencyHz);
    return int(std::count_if(levels.begin(), levels.end(), [](double level) { return level > audibleLevel; }));
}

int tenthsHeard(SinkMonitor &ear)
{
    return tenthsHeard(ear, lowToneHz) + tenthsHeard(ear, highToneHz);
}

QAudio::State lastOf(const QSignalSpy &states)
{
    return states.isEmpty() ? QAudio::StoppedState : states.last().first().value<QAudio::State>();
}

} // namespace

/// The alarm as it leaves the machine: through a real sound server, heard at its other end.
class tst_AlarmSound : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void serverThatRefusesUnsignedSamplesIsUsed();
    void soundFileIsCompiledIn();
    void setUpLogsTheSizeOfTheSound();
    void missingSoundIsReported();
    void alarmIsHeard();
    void alarmRepeatsOncePerFinishedPlay();
    void activePlayIsNotStartedOver();
    void alarmStops();
    void stopEndsThePlay();
    void nextPlayStartsFromTheBeginning();
    void soundsAgainAfterAPlayWhoseEndCameTooLate();
    void mayBeDestroyedWhileItPlays();
    void serverMayVanishAndComeBack();

private:
    QString longSoundFile() const { return m_folder.filePath(QStringLiteral("long")); }

    QTemporaryDir m_folder;
    NullSinkServer m_server;
    SinkMonitor m_ear;
};

void tst_AlarmSound::initTestCase()
{
    QVERIFY2(m_server.start(), qPrintable(m_server.errorString()));
    m_server.useHere();
    QVERIFY(m_ear.start(m_server));
    QFile file(longSoundFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.write(longSound()) > 0);
}

/// What the test before has played may still be on its way.
void tst_AlarmSound::init()
{
    QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 1, patienceMs);
    m_ear.forget();
}

void tst_AlarmSound::serverThatRefusesUnsignedSamplesIsUsed()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QAudioFormat format;
    format.setSampleRate(44100);
    format.setChannelCount(2);
    format.setSampleSize(16);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleType(QAudioFormat::UnSignedInt);
    QVERIFY(!QAudioDeviceInfo::defaultOutputDevice().isNull());
    QVERIFY(!QAudioDeviceInfo::defaultOutputDevice().isFormatSupported(format));
#endif

    AlarmSound alarm;
    QSignalSpy failed(&alarm, &AlarmSound::setUpFailed);
    QVERIFY(alarm.setUp());
    QCOMPARE(failed.count(), 0);
}

void tst_AlarmSound::soundFileIsCompiledIn()
{
    const QByteArray sound = contentOf(QStringLiteral("://critical.wav"));
    QVERIFY(sound.startsWith("RIFF"));
    QCOMPARE((sound.size() - 44) % SinkMonitor::frameBytes, 0);
    // Shorter than the time between two looks at the alarms, or every other look would find it still playing.
    QVERIFY(sound.size() < qint64(SinkMonitor::sampleRate) * SinkMonitor::frameBytes * alarmCheckMs / 1000);
}

void tst_AlarmSound::setUpLogsTheSizeOfTheSound()
{
    QTest::ignoreMessage(QtDebugMsg, "m_audioFile size : 158804");
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
}

void tst_AlarmSound::missingSoundIsReported()
{
    AlarmSound alarm(nullptr, QStringLiteral("://missing.wav"));
    QSignalSpy failed(&alarm, &AlarmSound::setUpFailed);
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    QTest::ignoreMessage(QtWarningMsg, "Could not find file \"critical.wav\"!");
    QTest::ignoreMessage(QtDebugMsg, "m_audioFile size : 0");
    QVERIFY(!alarm.setUp());
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed.first().at(0).toString(), QStringLiteral("critical.wav"));
    QCOMPARE(failed.first().at(1).toString(), QStringLiteral("Could not find file \"critical.wav\"!"));
    alarm.setAlarm(true);
    QCOMPARE(states.count(), 0);
}

void tst_AlarmSound::alarmIsHeard()
{
    AlarmSound alarm;
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    QVERIFY(alarm.setUp());
    QCOMPARE(tenthsHeard(m_ear), 0);
    alarm.setAlarm(true);
    QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear, lowToneHz) > 0 && tenthsHeard(m_ear, highToneHz) > 0, patienceMs);
    QCOMPARE(states.first().first().value<QAudio::State>(), QAudio::ActiveState);
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&alarm] { alarm.setAlarm(true); });
    check.start(alarmCheckMs);
    // To its last sample, and unaltered: signed samples are what the file holds.
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(m_ear) > 0, patienceMs);
}

void tst_AlarmSound::alarmRepeatsOncePerFinishedPlay()
{
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&alarm] { alarm.setAlarm(true); });
    check.start(alarmCheckMs);
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(m_ear) >= 3, patienceMs);
}

void tst_AlarmSound::activePlayIsNotStartedOver()
{
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
    const auto *output = alarm.findChild<AudioOutput *>();
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&alarm] { alarm.setAlarm(true); });
    check.start(alarmCheckMs);
    QTimer look;
    connect(&look, &QTimer::timeout, &alarm, [&] {
        if (output->state() == QAudio::ActiveState)
            alarm.setAlarm(true);
    });
    look.start(20);
    // Were it started over at each look, it would never reach its end.
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(m_ear) > 0, patienceMs);
}

void tst_AlarmSound::alarmStops()
{
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
    bool inAlarm = true;
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&] { alarm.setAlarm(inAlarm); });
    check.start(alarmCheckMs);
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(m_ear) >= 2, patienceMs);
    inAlarm = false;
    // Longer than any pause between two plays.
    QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 2, patienceMs);
}

void tst_AlarmSound::stopEndsThePlay()
{
    AlarmSound alarm(nullptr, longSoundFile());
    QVERIFY(alarm.setUp());
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    alarm.setAlarm(true);
    QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 0, patienceMs);
    alarm.stop();
    QTRY_COMPARE_WITH_TIMEOUT(lastOf(states), QAudio::StoppedState, patienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 1, patienceMs);
}

void tst_AlarmSound::nextPlayStartsFromTheBeginning()
{
    AlarmSound alarm(nullptr, longSoundFile());
    QVERIFY(alarm.setUp());
    alarm.setAlarm(true);
    QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear, highToneHz) > 0, patienceMs);
    alarm.setAlarm(false);
    QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 1, patienceMs);
    m_ear.forget();
    alarm.setAlarm(true);
    QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear, lowToneHz) > 5, patienceMs);
}

/// The rest of the sound alone does not make the server go on.
void tst_AlarmSound::soundsAgainAfterAPlayWhoseEndCameTooLate()
{
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
    alarm.setAlarm(true);
    const auto *output = alarm.findChild<AudioOutput *>();
    constexpr qint64 bytesPerSecond = SinkMonitor::sampleRate * SinkMonitor::frameBytes;
    const qint64 size = contentOf(QStringLiteral("://critical.wav")).size();
    while (output->processedUSecs() * bytesPerSecond / 1000000 < size - 3600)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QVERIFY(m_ear.waitForSilence(0.3));
    m_ear.forget();
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&alarm] { alarm.setAlarm(true); });
    check.start(alarmCheckMs);
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(m_ear) > 0, patienceMs);
}

/// The output has handed over a part of the sound, and will go on as soon as events are handled.
void tst_AlarmSound::mayBeDestroyedWhileItPlays()
{
    auto alarm = std::make_unique<AlarmSound>();
    QVERIFY(alarm->setUp());
    alarm->setAlarm(true);
    const auto *output = alarm->findChild<AudioOutput *>();
    const auto room = output->bytesFree();
    while (output->bytesFree() == room)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    alarm.reset();
    QTRY_VERIFY_WITH_TIMEOUT(m_ear.trailingSilenceSeconds() > 1, patienceMs);
}

void tst_AlarmSound::serverMayVanishAndComeBack()
{
    AlarmSound alarm;
    QVERIFY(alarm.setUp());
    QSignalSpy states(&alarm, &AlarmSound::stateChanged);
    alarm.setAlarm(true);
    QTRY_VERIFY_WITH_TIMEOUT(tenthsHeard(m_ear) > 0, patienceMs);
    m_server.kill();
    QTRY_COMPARE_WITH_TIMEOUT(lastOf(states), QAudio::StoppedState, patienceMs);
    alarm.setAlarm(true);
    alarm.setAlarm(false);
    alarm.stop();

    QVERIFY2(m_server.start(), qPrintable(m_server.errorString()));
    SinkMonitor ear;
    QVERIFY(ear.start(m_server));
    QTimer check;
    connect(&check, &QTimer::timeout, &alarm, [&alarm] { alarm.setAlarm(true); });
    check.start(alarmCheckMs);
    QTRY_VERIFY_WITH_TIMEOUT(playsFinished(ear) > 0, patienceMs);
}

QTEST_GUILESS_MAIN(tst_AlarmSound)
#include "tst_AlarmSound.moc"
