#include "stationcosts/StationRun.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <csignal>

namespace {

constexpr int endTimeoutMs = 60000;
constexpr int tickMs = 5;

} // namespace

StationRun::StationRun()
{
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process,
                     [this] { m_output += m_process.readAllStandardError(); });
}

StationRun::~StationRun()
{
    m_process.kill();
    m_process.waitForFinished();
}

bool StationRun::start(const QStringList &program, const QProcessEnvironment &environment, const QString &logFile)
{
    m_output.clear();
    m_process.setStandardOutputFile(QProcess::nullDevice());
    if (!logFile.isEmpty())
        m_process.setStandardErrorFile(logFile);
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral("setpriv"),
                    QStringList{QStringLiteral("--pdeathsig"), QStringLiteral("KILL")} + program);
    return m_process.waitForStarted();
}

bool StationRun::isRunning() const
{
    return m_process.state() == QProcess::Running;
}

bool StationRun::waitForLine(const QByteArray &begin, int timeoutMs)
{
    const auto isThere = [&] {
        return m_output.startsWith(begin) || m_output.contains('\n' + begin);
    };
    waitUntil([&] { return isThere() || !isRunning(); }, timeoutMs);
    return isThere();
}

bool StationRun::end()
{
    if (isRunning())
        ::kill(static_cast<pid_t>(m_process.processId()), SIGTERM);
    return waitUntil([this] { return !isRunning(); }, endTimeoutMs) && m_process.exitStatus() == QProcess::NormalExit &&
           m_process.exitCode() == 0;
}

QString StationRun::lastWords() const
{
    constexpr int length = 2000;
    return QString::fromUtf8(m_output.right(length));
}

bool waitUntil(const std::function<bool()> &condition, int timeoutMs)
{
    // The timer sees to it that the condition is looked at even when nothing happens.
    QTimer tick;
    tick.start(tickMs);
    const QDeadlineTimer deadline(timeoutMs);
    QEventLoop loop;
    while (!condition() && !deadline.hasExpired())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

void letPass(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}
