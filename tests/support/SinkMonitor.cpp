#include "support/SinkMonitor.h"

#include "support/NullSinkServer.h"
#include <QtEndian>
#include <QtMath>
#include <algorithm>
#include <complex>

namespace {

constexpr int startTimeoutMs = 20000;
constexpr int windowFrames = SinkMonitor::sampleRate / 10;

double leftSample(const char *frame)
{
    return qFromLittleEndian<qint16>(frame) / 32768.0;
}

bool isSilent(const char *frame)
{
    return std::all_of(frame, frame + SinkMonitor::frameBytes, [](char byte) { return byte == 0; });
}

QByteArray withoutSilence(const QByteArray &bytes)
{
    QByteArray sounding;
    for (int at = 0; at + SinkMonitor::frameBytes <= bytes.size(); at += SinkMonitor::frameBytes) {
        if (!isSilent(bytes.constData() + at))
            sounding.append(bytes.constData() + at, SinkMonitor::frameBytes);
    }
    return sounding;
}

double toneLevel(const char *frames, double frequencyHz)
{
    const auto step = std::polar(1.0, -2 * M_PI * frequencyHz / SinkMonitor::sampleRate);
    std::complex<double> sum = 0;
    std::complex<double> phasor = 1;
    for (int i = 0; i < windowFrames; ++i, phasor *= step)
        sum += leftSample(frames + i * SinkMonitor::frameBytes) * phasor;
    return 2 * std::abs(sum) / windowFrames;
}

} // namespace

SinkMonitor::~SinkMonitor()
{
    m_recorder.kill();
    m_recorder.waitForFinished();
}

bool SinkMonitor::start(const NullSinkServer &server)
{
    m_recorder.setProcessEnvironment(server.environment());
    m_recorder.setReadChannel(QProcess::StandardOutput);
    m_recorder.start(QStringLiteral("parec"),
                     {QStringLiteral("--device"), NullSinkServer::monitorName(), QStringLiteral("--raw"),
                      QStringLiteral("--format=s16le"), QStringLiteral("--rate=44100"), QStringLiteral("--channels=2"),
                      QStringLiteral("--latency-msec=20")});
    return m_recorder.waitForStarted() && m_recorder.waitForReadyRead(startTimeoutMs);
}

void SinkMonitor::listen()
{
    m_heard += m_recorder.readAllStandardOutput();
    for (; (m_framesRead + 1) * frameBytes <= m_heard.size(); ++m_framesRead) {
        const char *frame = m_heard.constData() + m_framesRead * frameBytes;
        if (isSilent(frame)) {
            ++m_silentFrames;
        } else {
            m_sounding.append(frame, frameBytes);
            m_silentFrames = 0;
        }
    }
}

void SinkMonitor::forget()
{
    listen();
    // A part of a frame may have come in: the rest of it is still to follow.
    m_heard = m_heard.right(m_heard.size() % frameBytes);
    m_sounding.clear();
    m_framesRead = 0;
    m_silentFrames = 0;
    m_toneLevels.clear();
}

int SinkMonitor::count(const QByteArray &sound)
{
    listen();
    return m_sounding.count(withoutSilence(sound));
}

const QList<double> &SinkMonitor::toneLevels(double frequencyHz)
{
    listen();
    QList<double> &levels = m_toneLevels[frequencyHz];
    while ((levels.size() + 1) * windowFrames <= m_framesRead)
        levels.append(toneLevel(m_heard.constData() + levels.size() * windowFrames * frameBytes, frequencyHz));
    return levels;
}

double SinkMonitor::trailingSilenceSeconds()
{
    listen();
    return double(m_silentFrames) / sampleRate;
}

bool SinkMonitor::waitForSilence(double seconds)
{
    while (trailingSilenceSeconds() < seconds) {
        if (!m_recorder.waitForReadyRead(startTimeoutMs))
            return false;
    }
    return true;
}
