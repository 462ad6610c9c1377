#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <map>

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

    /// What is said below is of the time since start() or the last forget().
    void forget();

    /// How often this sound was to be heard, each of its frames unaltered and in order; silence in it or between counts
    /// for nothing. What begins to play is heard a moment late, also after a pause for which its feeder came too late.
    int count(const QByteArray &sound);
    /// Strength of a tone, 0 to 1, in each tenth of a second.
    const QList<double> &toneLevels(double frequencyHz);
    /// How long it has been silent now.
    double trailingSilenceSeconds();
    /// Returns when it has been silent for so long, and handles no event meanwhile; false if nothing more comes in.
    bool waitForSilence(double seconds);

private:
    void listen();

    QProcess m_recorder;
    QByteArray m_heard;
    // Each sample is looked at once: sound keeps coming in, and the slower it is read the more there is to read again.
    QByteArray m_sounding;  ///< the frames that are not silent
    int m_framesRead = 0;   ///< of m_heard
    int m_silentFrames = 0; ///< since the last that was not
    std::map<double, QList<double>> m_toneLevels;
};
