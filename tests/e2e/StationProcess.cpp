#include "StationProcess.h"

#include <QTest>

#include <algorithm>

namespace {

// Far beyond what a loaded machine needs with sanitizers.
constexpr int endTimeoutMs = 60000;

constexpr int lastWordsMax = 40;

} // namespace

StationProcess::StationProcess() : m_command(QStringLiteral(STATION))
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    QObject::connect(&m_process, &QProcess::readyRead, &m_process, [this] { slotOutput(); });
}

StationProcess::~StationProcess()
{
    m_process.kill();
    m_process.waitForFinished();
}

void StationProcess::setCommand(const QStringList &command, const QString &folder)
{
    m_command = command;
    m_process.setWorkingDirectory(folder);
}

bool StationProcess::start(const QProcessEnvironment &environment)
{
    m_lines.clear();
    m_rest.clear();
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral("setpriv"),
                    QStringList{QStringLiteral("--pdeathsig"), QStringLiteral("KILL")} + m_command);
    return m_process.waitForStarted();
}

bool StationProcess::isRunning() const
{
    return m_process.state() == QProcess::Running;
}

bool StationProcess::end(int signalNumber)
{
    if (isRunning())
        ::kill(static_cast<pid_t>(m_process.processId()), signalNumber);
    return QTest::qWaitFor([this] { return !isRunning(); }, endTimeoutMs);
}

bool StationProcess::hasSucceeded() const
{
    return !isRunning() && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

int StationProcess::count(const QString &start) const
{
    return int(std::count_if(m_lines.cbegin(), m_lines.cend(),
                             [&start](const QString &line) { return line.startsWith(start); }));
}

QByteArray StationProcess::lastWords() const
{
    const QString state = isRunning() ? QStringLiteral("is running")
                          : m_process.exitStatus() == QProcess::CrashExit
                              ? QStringLiteral("was ended by signal %1").arg(m_process.exitCode())
                              : QStringLiteral("ended with code %1").arg(m_process.exitCode());
    const QStringList last = m_lines.mid(qMax(0, int(m_lines.size()) - lastWordsMax));
    return QStringLiteral("the station %1; it said last:\n%2").arg(state, last.join(QLatin1Char('\n'))).toLocal8Bit();
}

void StationProcess::slotOutput()
{
    m_rest += m_process.readAll();
    for (int end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n')) {
        m_lines += QString::fromUtf8(m_rest.constData(), end);
        m_rest.remove(0, end + 1);
    }
}
