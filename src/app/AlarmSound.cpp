#include "app/AlarmSound.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcSound, "sorvanto.sound")

/// More than the output holds of a sound that has been read to its end.
constexpr qint64 longestRestMs = 500;

} // namespace

AlarmSound::AlarmSound(QObject *parent, const QString &soundFile) : QObject(parent), m_audioFile(soundFile) {}

AlarmSound::~AlarmSound()
{
    if (!m_audioOutput)
        return;
    // An owner on its own way out must not hear of it.
    m_audioOutput->disconnect(this);
    // Destroyed while active, the output would go on feeding a stream that it has closed, as it handles pending events.
    m_audioOutput->stop();
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
    if (!m_audioOutput || !m_audioFile.isOpen() || isPlaying())
        return;
    m_audioFile.seek(0);
    m_sinceEnd.invalidate();
    startAudioOutput(*m_audioOutput, &m_audioFile);
}

/// A sound server that has run out of sound (PulseAudio) waits for a good part of a buffer before it goes on. Where
/// less than that is left of the sound the output is active for good, and nothing is to be heard.
bool AlarmSound::isPlaying()
{
    if (m_audioOutput->state() != QAudio::ActiveState)
        return false;
    if (!m_audioFile.isReadToItsEnd())
        return true;
    if (!m_sinceEnd.isValid())
        m_sinceEnd.start();
    return m_sinceEnd.elapsed() < longestRestMs;
}

void AlarmSound::stop()
{
    if (m_audioOutput)
        m_audioOutput->stop();
}

bool AlarmSound::openOutput()
{
    m_audioOutput.reset(openAudioOutput(this));
    if (m_audioOutput) {
        connect(m_audioOutput.get(), &AudioOutput::stateChanged, this, &AlarmSound::stateChanged);
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
