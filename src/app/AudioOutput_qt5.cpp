#include "app/AudioOutput.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>

namespace {

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

AudioOutput *openAudioOutput(QObject *parent)
{
    const auto device = QAudioDeviceInfo::defaultOutputDevice();
    for (const Stream &stream : streams) {
        const QAudioFormat format = alarmFormat(stream.sampleType);
        if (!device.isFormatSupported(format))
            continue;
        auto *output = new AudioOutput(device, format, parent);
        output->setBufferSize(stream.bufferBytes);
        return output;
    }
    return nullptr;
}

void startAudioOutput(AudioOutput &output, QIODevice *sound)
{
    output.start(sound);
}
