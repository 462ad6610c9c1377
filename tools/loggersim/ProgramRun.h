#pragma once

#include <QProcess>

namespace loggersim {

/// Runs another program in front of the simulator: it has the simulator's input and output, gets its signals, and its
/// end is reported as the exit code that a shell would give.
class ProgramRun : public QObject
{
    Q_OBJECT

public:
    explicit ProgramRun(QObject *parent = nullptr);
    ~ProgramRun() override;

    /// False, with errorString(), when it cannot be started.
    bool start(const QStringList &program, const QProcessEnvironment &environment, bool keepsStandardInput);
    QString errorString() const;
    void sendSignal(int number);

signals:
    void ended(int exitCode);

private:
    void slotFinished(int exitCode, QProcess::ExitStatus status);

    QProcess m_process;
};

} // namespace loggersim
