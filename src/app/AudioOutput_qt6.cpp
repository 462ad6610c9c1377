#include "app/AudioOutput.h"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QMediaDevices>

// This generation of the toolkit has no unsigned samples of 16 bit, and samples in the byte order of the machine only.
static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "the sound is little-endian");

AudioOutput *openAudioOutput(QObject *parent)
{
    QAudioFormat format;
    format.setSampleRate(44100);
    format.setChannelCount(2);
    format.setSampleFormat(QAudioFormat::Int16);
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (!device.isFormatSupported(format))
        return nullptr;
    auto *output = new AudioOutput(device, format, parent);
    output->setBufferSize(signedBufferBytes);
    return output;
}
