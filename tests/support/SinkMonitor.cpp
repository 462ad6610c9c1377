#include "support/SinkMonitor.h"

#include "support/NullSinkServer.h"
#include <QtEndian>
#include <QtMath>
#include <complex>

namespace {

constexpr int startTimeoutMs = 20000;
constexpr int windowFrames = SinkMonitor::sampleRate / 10;

double leftSample(const char *frame)
{
    return qFromLittleEndian<qint16>(frame) / 32768.0;
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

const QByteArray &SinkMonitor::heard()
{
    m_heard += m_recorder.readAllStandardOutput();
    return m_heard;
}

void SinkMonitor::forget()
{
    heard();
    // A part of a frame may have come in: the rest of it is still to follow.
    m_heard = m_heard.right(m_heard.size() % frameBytes);
}

QList<double> SinkMonitor::toneLevels(double frequencyHz)
{
    const QByteArray &bytes = heard();
    QList<double> levels;
    for (int begin = 0; begin + windowFrames * frameBytes <= bytes.size(); begin += windowFrames * frameBytes)
        levels.append(toneLevel(bytes.constData() + begin, frequencyHz));
    return levels;
}

double SinkMonitor::trailingSilenceSeconds()
{
    const QByteArray &bytes = heard();
    int silent = 0;
    while (silent < bytes.size() && bytes.at(bytes.size() - 1 - silent) == 0)
        ++silent;
    return double(silent) / frameBytes / sampleRate;
}
