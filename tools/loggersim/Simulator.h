#pragma once

#include "loggersim/ControlServer.h"
#include "loggersim/Fleet.h"
#include "loggersim/Options.h"
#include "loggersim/ProgramRun.h"
#include "loggersim/ServedLog.h"

#include <QObject>

namespace loggersim {

constexpr int failureCode = 1;
constexpr int badOptionsCode = 2;

/// One run of the simulator as the command line describes it.
class Simulator : public QObject
{
    Q_OBJECT

public:
    explicit Simulator(const Options &options, QObject *parent = nullptr);

    /// Brings up the loggers, the files and the program. Nothing when all of it stands, else the exit code, with the
    /// reason in @p error.
    std::optional<int> start(QString *error);
    /// Where everything can be reached, one line each.
    QString overview() const;
    /// Passes a signal on to the program, or ends the run where there is none.
    void handleSignal(int number, bool fromTerminal);
    /// Writes what was asked for at the end. False, and the reason in @p error, when that fails.
    bool writeReport(QString *error) const;

    Fleet &fleet() { return m_fleet; }

signals:
    /// The loggers, the files and the control socket stand; the program has not been started yet.
    void ready();
    void ended(int exitCode);

private:
    bool addLoggers(QString *error);
    bool setFaults(QString *error);
    bool listen(QString *error);
    bool writeFiles(QString *error);
    bool openServedLog(QString *error);
    bool runProgram(QString *error);

    const Options m_options;
    ServedLog m_served;
    Fleet m_fleet;
    ControlServer m_control;
    ProgramRun m_program;
};

} // namespace loggersim
