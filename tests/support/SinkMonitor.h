#pragma once

#include <QByteArray>
#include <QProcess>

class NullSinkServer;

/// An ear on what is played on a NullSinkServer: collects it as 16-bit stereo at 44100 Hz, silence included.
class SinkMonitor
{
public:
    static constexpr int sampleRate = 44100;
    static constexpr int frameBytes = 4;

    ~SinkMonitor();

    /// Returns when the first sound, or silence, has come in.
    bool start(const NullSinkServer &server);

    /// Everything since start() or the last forget().
    const QByteArray &heard();
    void forget();

    /// Strength of a tone, 0 to 1, in each tenth of a second heard so far.
    QList<double> toneLevels(double frequencyHz);
    /// How long it has been silent now.
    double trailingSilenceSeconds();

private:
    QProcess m_recorder;
    QByteArray m_heard;
};
