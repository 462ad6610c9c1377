#include "loggersim/Simulator.h"
#include "loggersim/NetworkLogger.h"
#include "loggersim/ProjectWriter.h"
#include "loggersim/SerialLogger.h"

#include <QDir>
#include <QSaveFile>
#include <csignal>

namespace loggersim {

Simulator::Simulator(const Options &options, QObject *parent)
    : QObject(parent), m_options(options), m_fleet(options.seed), m_control(&m_fleet)
{
    // Queued, so that the answer to the command still goes out.
    connect(
        &m_control, &ControlServer::quitRequested, this, [this] { handleSignal(SIGTERM, false); },
        Qt::QueuedConnection);
    connect(&m_program, &ProgramRun::ended, this, &Simulator::ended);
}

std::optional<int> Simulator::start(QString *error)
{
    if (!addLoggers(error))
        return failureCode;
    if (!setFaults(error))
        return badOptionsCode;
    if (!listen(error) || !openServedLog(error) || !writeFiles(error))
        return failureCode;
    emit ready();
    if (!m_options.program.isEmpty() && !runProgram(error))
        return failureCode;
    return std::nullopt;
}

bool Simulator::addLoggers(QString *error)
{
    if (m_options.usb > 0 && !UsbTree::canRedirect()) {
        *error = QStringLiteral("USB loggers need the library libumockdev-preload.so.0 (Debian package umockdev)");
        return false;
    }
    for (int i = 0; i < m_options.network; ++i) {
        if (!m_fleet.addNetworkLogger(m_options.addressOf(i), m_options.portOf(i), error))
            return false;
    }
    for (int i = 0; i < m_options.usb; ++i) {
        if (!m_fleet.addUsbLogger(error))
            return false;
    }
    for (SimLogger *logger : m_fleet.loggers())
        logger->curve().repeat(m_options.steady);
    return !m_options.discoveryAddress ||
           m_fleet.startDiscovery(*m_options.discoveryAddress, m_options.discoveryPort, error);
}

bool Simulator::setFaults(QString *error)
{
    for (const auto &[logger, fault] : m_options.faults) {
        if (!m_fleet.setFault(logger, fault, error))
            return false;
    }
    return true;
}

bool Simulator::listen(QString *error)
{
    if (!m_options.controlPath.isEmpty() && !m_control.listen(m_options.controlPath)) {
        *error = QStringLiteral("cannot listen on %1: %2").arg(m_options.controlPath, m_control.errorString());
        return false;
    }
    if (m_options.interactive)
        m_control.listenOnStandardInput();
    return true;
}

bool Simulator::openServedLog(QString *error)
{
    if (m_options.servedFile.isEmpty())
        return true;
    if (!m_served.open(m_options.servedFile)) {
        *error = QStringLiteral("cannot write %1: %2").arg(m_options.servedFile, m_served.errorString());
        return false;
    }
    for (const SimLogger *logger : m_fleet.loggers())
        m_served.follow(logger);
    return true;
}

bool Simulator::writeFiles(QString *error)
{
    if (m_options.projectFile.isEmpty())
        return true;
    if (!writeProject(m_options.projectFile, m_options.intervalMs, m_fleet.loggers(), error))
        return false;
    return m_options.settingsFolder.isEmpty() ||
           writeSettings(m_options.settingsFolder, m_options.projectFile, m_options.keepAlive, error);
}

bool Simulator::runProgram(QString *error)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (m_options.usb > 0)
        environment = m_fleet.usbTree().programEnvironment(environment);
    if (!m_options.settingsFolder.isEmpty())
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), QDir(m_options.settingsFolder).absolutePath());
    if (m_program.start(m_options.program, environment, !m_options.interactive))
        return true;
    *error = QStringLiteral("cannot run %1: %2").arg(m_options.program.first(), m_program.errorString());
    return false;
}

QString Simulator::overview() const
{
    QString text;
    for (const SimLogger *logger : m_fleet.loggers())
        text += QStringLiteral("%1 %2 %3 %4\n")
                    .arg(logger->key(), logger->kindText(),
                         logger->address().isEmpty() ? QStringLiteral("-") : logger->address())
                    .arg(logger->port());
    if (m_fleet.discoveryPort() != 0)
        text +=
            QStringLiteral("search %1 %2\n").arg(m_options.discoveryAddress->toString()).arg(m_fleet.discoveryPort());
    return text;
}

void Simulator::handleSignal(int number, bool fromTerminal)
{
    if (m_options.program.isEmpty())
        emit ended(0);
    else if (!fromTerminal)
        m_program.sendSignal(number);
}

bool Simulator::writeReport(QString *error) const
{
    if (m_options.reportFile.isEmpty())
        return true;
    QSaveFile file(m_options.reportFile);
    if (file.open(QIODevice::WriteOnly) && file.write(m_fleet.report()) >= 0 && file.commit())
        return true;
    *error = QStringLiteral("cannot write %1: %2").arg(m_options.reportFile, file.errorString());
    return false;
}

} // namespace loggersim
