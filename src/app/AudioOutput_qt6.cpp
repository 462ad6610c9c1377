#include "app/AudioOutput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QMediaDevices>

// This generation of the toolkit has no unsigned samples of 16 bit, and samples in the byte order of the machine only.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the sound is little-endian");

namespace {

// 200 ms. The sound server (PulseAudio) grants less than it is asked for; less than two of its periods of 20 ms would
// wait for ever to be filled.
constexpr int bufferBytes = 44100 * 4 / 5;

} // namespace

AudioOutput *openAudioOutput(QObject *parent)
{
    QAudioFormat format;
    format.setSampleRate(44100);
    format.setChannelCount(2);
    format.setSampleFormat(QAudioFormat::Int16);
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (!device.isFormatSupported(format))
        return nullptr;
    return new AudioOutput(device, format, parent);
}

void startAudioOutput(AudioOutput &output, QIODevice *sound)
{
    // The output asks for what was granted last time: left alone, its buffer would shrink from play to play.
    output.setBufferSize(bufferBytes);
    output.start(sound);
}
