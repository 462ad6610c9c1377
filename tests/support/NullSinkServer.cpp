#include "support/NullSinkServer.h"

#include <QDeadlineTimer>
#include <QLocalSocket>

namespace {

constexpr int startTimeoutMs = 20000;
constexpr int retryMs = 50;

const QString sinkName = QStringLiteral("silence");

} // namespace

NullSinkServer::NullSinkServer()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

NullSinkServer::~NullSinkServer()
{
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        kill();
}

bool NullSinkServer::start()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH"})
        environment.insert(QString::fromLatin1(name), m_folder.path());
    environment.remove(QStringLiteral("PULSE_SERVER"));
    m_process.setProcessEnvironment(environment);
    // Goes down with the test, however the test ends.
    m_process.start(QStringLiteral("setpriv"),
                    QStringList{QStringLiteral("--pdeathsig"), QStringLiteral("KILL"), QStringLiteral("pulseaudio")} +
                        arguments());
    if (!m_process.waitForStarted()) {
        m_error = m_process.errorString();
        return false;
    }
    return waitUntilListening();
}

void NullSinkServer::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}

QString NullSinkServer::address() const
{
    return QStringLiteral("unix:") + socketPath();
}

QProcessEnvironment NullSinkServer::environment() const
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PULSE_SERVER"), address());
    environment.insert(QStringLiteral("PULSE_COOKIE"), m_folder.filePath(QStringLiteral("cookie")));
    return environment;
}

void NullSinkServer::useHere() const
{
    qputenv("PULSE_SERVER", address().toLocal8Bit());
    qputenv("PULSE_COOKIE", m_folder.filePath(QStringLiteral("cookie")).toLocal8Bit());
}

QString NullSinkServer::monitorName()
{
    return sinkName + QStringLiteral(".monitor");
}

QString NullSinkServer::socketPath() const
{
    return m_folder.filePath(QStringLiteral("native"));
}

QStringList NullSinkServer::arguments() const
{
    return {
        QStringLiteral("-n"),
        QStringLiteral("--daemonize=no"),
        QStringLiteral("--use-pid-file=no"),
        QStringLiteral("--exit-idle-time=-1"),
        QStringLiteral("--realtime=no"),
        QStringLiteral("--high-priority=no"),
        // The alarm's own format, so that what is heard is what was played, to the bit.
        QStringLiteral("-L"),
        QStringLiteral("module-null-sink sink_name=%1 format=s16le rate=44100 channels=2").arg(sinkName),
        QStringLiteral("-L"),
        QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=%1").arg(socketPath()),
    };
}

bool NullSinkServer::waitUntilListening()
{
    const QDeadlineTimer deadline(startTimeoutMs);
    while (!deadline.hasExpired() && m_process.state() == QProcess::Running) {
        QLocalSocket client;
        client.connectToServer(socketPath());
        if (client.waitForConnected(retryMs))
            return true;
        // Not there yet: wait for the server to say something, to end, or for a moment to pass.
        m_process.waitForReadyRead(retryMs);
    }
    m_error = QString::fromLocal8Bit(m_process.readAll());
    return false;
}
