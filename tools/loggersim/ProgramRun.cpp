#include "loggersim/ProgramRun.h"

#include <csignal>

namespace loggersim {

namespace {

constexpr int crashedBase = 128;

} // namespace

ProgramRun::ProgramRun(QObject *parent) : QObject(parent)
{
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &ProgramRun::slotFinished);
}

ProgramRun::~ProgramRun()
{
    m_process.disconnect(this);
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished();
}

bool ProgramRun::start(const QStringList &program, const QProcessEnvironment &environment, bool keepsStandardInput)
{
    m_process.setInputChannelMode(keepsStandardInput ? QProcess::ForwardedInputChannel : QProcess::ManagedInputChannel);
    m_process.setProcessEnvironment(environment);
    m_process.start(program.first(), program.mid(1));
    if (!m_process.waitForStarted())
        return false;
    if (!keepsStandardInput)
        m_process.closeWriteChannel();
    return true;
}

QString ProgramRun::errorString() const
{
    return m_process.errorString();
}

void ProgramRun::sendSignal(int number)
{
    if (m_process.state() == QProcess::Running)
        ::kill(static_cast<pid_t>(m_process.processId()), number);
}

void ProgramRun::slotFinished(int exitCode, QProcess::ExitStatus status)
{
    // The toolkit gives the signal's number as the code of a program that a signal ended.
    emit ended(status == QProcess::NormalExit ? exitCode : crashedBase + exitCode);
}

} // namespace loggersim
