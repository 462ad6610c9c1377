#include "app/AlarmSound.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>
#include <QAudioOutput>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcSound, "sorvanto.sound")

struct Stream
{
    QAudioFormat::SampleType sampleType;
    int bufferBytes;
};

// Sound servers know 16-bit samples as signed only, and refuse the very bytes they take under that name. They are fed
// in periods of 20 ms, and one of them (PulseAudio) waits for ever for the rest of a buffer that is not whole periods.
constexpr int periodBytes = 44100 * 4 / 50;
constexpr Stream streams[] = {
    {QAudioFormat::UnSignedInt, 10000},
    {QAudioFormat::SignedInt, 3 * periodBytes},
};

QAudioFormat alarmFormat(QAudioFormat::SampleType sampleType)
{
    QAudioFormat format;
    format.setSampleRate(44100);
    format.setChannelCount(2);
    format.setSampleSize(16);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleType(sampleType);
    return format;
}

} // namespace

AlarmSound::AlarmSound(QObject *parent, const QString &soundFile) : QObject(parent), m_audioFile(soundFile) {}

AlarmSound::~AlarmSound()
{
    // The output reads from the file, which goes first. An owner on its own way out must not hear of it.
    if (m_audioOutput)
        m_audioOutput->disconnect(this);
    delete m_audioOutput;
}

bool AlarmSound::setUp()
{
    return openOutput() && openFile();
}

void AlarmSound::setAlarm(bool active)
{
    if (!active) {
        stop();
        return;
    }
    if (!m_audioOutput || !m_audioFile.isOpen() || m_audioOutput->state() == QAudio::ActiveState)
        return;
    m_audioFile.seek(0);
    m_audioOutput->start(&m_audioFile);
}

void AlarmSound::stop()
{
    if (m_audioOutput)
        m_audioOutput->stop();
}

bool AlarmSound::openOutput()
{
    const auto device = QAudioDeviceInfo::defaultOutputDevice();
    for (const Stream &stream : streams) {
        const QAudioFormat format = alarmFormat(stream.sampleType);
        if (!device.isFormatSupported(format))
            continue;
        m_audioOutput = new QAudioOutput(device, format, this);
        m_audioOutput->setBufferSize(stream.bufferBytes);
        connect(m_audioOutput, &QAudioOutput::stateChanged, this, &AlarmSound::stateChanged);
        return true;
    }
    qCWarning(lcSound).noquote() << "Raw audio format not supported by backend, cannot play audio.";
    emit setUpFailed(QStringLiteral("Audio"),
                     QStringLiteral("Raw audio format not supported by backend, cannot play audio!"));
    return false;
}

bool AlarmSound::openFile()
{
    const bool open = m_audioFile.open(QIODevice::ReadOnly);
    if (!open) {
        const auto text = QStringLiteral("Could not find file \"critical.wav\"!");
        qCWarning(lcSound).noquote() << text;
        emit setUpFailed(QStringLiteral("critical.wav"), text);
    }
    qCDebug(lcSound).noquote().nospace() << "m_audioFile size : " << m_audioFile.size();
    return open;
}
