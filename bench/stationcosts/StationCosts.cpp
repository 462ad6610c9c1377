#include "stationcosts/StationCosts.h"

#include "loggersim/NetworkLogger.h"
#include "loggersim/ProjectWriter.h"
#include "stationcosts/StationRun.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <chrono>

namespace {

const QString recordedProject = QStringLiteral("Recorded");

// Splash, connecting to every logger at once, first polls and first flush are over by then.
constexpr int settleMs = 12000;
// The station is left alone for a moment before and after the measurement.
constexpr int marginMs = 1000;
// So many polls are in vain before the station ends: no reading is on its way then.
constexpr int silenceMs = 3000;
constexpr int progressMs = 30000;
constexpr int readyTimeoutMs = 30000;
constexpr int emptyProgramMs = 5000;

qint64 monotonicNs()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

} // namespace

StationCosts::StationCosts(const CostOptions &options) : m_options(options), m_folder(options.folder) {}

StationCosts::~StationCosts() = default;

bool StationCosts::run()
{
    return setUp() && measureEmptyProgram() && measureRecording() && (m_options.openings == 0 || measureOpenings());
}

bool StationCosts::setUp()
{
    if (!QDir().mkpath(m_folder.path()))
        return fail(QStringLiteral("cannot create ") + m_folder.path());
    QFile::remove(file(QStringLiteral("progress.log")));
    if (!m_soundServer.start())
        return fail(QStringLiteral("no sound server: ") + m_soundServer.errorString());
    return addLoggers();
}

bool StationCosts::addLoggers()
{
    const quint32 firstAddress = QHostAddress(QStringLiteral("127.0.1.1")).toIPv4Address();
    for (int i = 0; i < m_options.loggers + m_options.hostileLoggers; ++i) {
        auto *logger = m_fleet.addNetworkLogger(QHostAddress(firstAddress + quint32(i)), 0, &m_error);
        if (!logger)
            return false;
        if (i >= m_options.loggers)
            continue;
        m_served.push_back(std::make_unique<ServedReadings>(logger));
        QObject::connect(logger, &loggersim::SimLogger::commandReceived, logger, [this] {
            if (m_isMeasuring)
                m_pollTimes.add(monotonicNs());
        });
    }
    return true;
}

bool StationCosts::spoilLoggers()
{
    const QList<loggersim::SimLogger *> hostile = m_fleet.loggers().mid(m_options.loggers);
    return std::all_of(hostile.cbegin(), hostile.cend(), [this](const loggersim::SimLogger *logger) {
        return m_fleet.setFault(logger->key(), m_options.fault, &m_error);
    });
}

bool StationCosts::prepareProject(const QString &name)
{
    const QString project = file(name + QStringLiteral(".tpc"));
    return loggersim::writeProject(project, 1000, m_fleet.loggers(), &m_error) &&
           loggersim::writeSettings(m_config.path(), project, false, &m_error);
}

void StationCosts::setFaults(const QString &fault)
{
    const QList<loggersim::SimLogger *> loggers = m_fleet.loggers();
    QString error; // these faults suit every logger
    for (const loggersim::SimLogger *logger : loggers)
        m_fleet.setFault(logger->key(), fault, &error);
}

bool StationCosts::measureEmptyProgram()
{
    StationRun empty;
    if (!empty.start({program(QStringLiteral("empty_window"))}, environment({})) ||
        !empty.waitForLine("ready", readyTimeoutMs))
        return fail(QStringLiteral("the empty program did not start:\n") + empty.lastWords());
    const double before = processorSeconds(empty.processId());
    letPass(emptyProgramMs);
    m_empty.processorShare = (processorSeconds(empty.processId()) - before) * 1000 / emptyProgramMs;
    m_empty.memory = memoryOf(empty.processId());
    empty.end();
    return true;
}

bool StationCosts::measureRecording()
{
    for (const QString &suffix : {QStringLiteral(".dat"), QStringLiteral(".dat.spool")})
        QFile::remove(file(recordedProject + suffix));
    if (!prepareProject(recordedProject) || !spoilLoggers())
        return false;
    const QString figures = file(QStringLiteral("figures.ini"));
    QFile::remove(figures);
    const QString rules = m_options.withDiagnostics ? QString() : QStringLiteral("sorvanto.*=false");
    const QStringList command{program(QStringLiteral("watched_station")), figures, QString::number(settleMs),
                              QString::number(m_options.seconds * 1000)};
    StationRun station;
    m_clock.start();
    if (!station.start(command, environment(rules), file(QStringLiteral("station.log"))))
        return fail(QStringLiteral("the station did not start"));
    Used used;
    const bool recorded = record(station, &used);
    addReadings();
    if (recorded) {
        addUse(used);
        addStretches(figures);
        addPollTimes();
    }
    setFaults(QStringLiteral("none"));
    note(QStringLiteral("\n") + m_table.toText());
    return recorded;
}

/// From the station's start to its end; false when it did not come that far.
bool StationCosts::record(StationRun &station, Used *used)
{
    letPass(settleMs - marginMs);
    m_atFirst = memoryOf(station.processId());
    letPass(marginMs);
    const double processorBefore = processorSeconds(station.processId());
    m_isMeasuring = true;
    QElapsedTimer measuring;
    measuring.start();
    const qint64 duration = m_options.seconds * qint64(1000);
    while (station.isRunning() && measuring.elapsed() < duration) {
        letPass(int(qMin<qint64>(progressMs, duration - measuring.elapsed())));
        noteProgress(station, processorBefore);
    }
    m_isMeasuring = false;
    used->processorShare =
        (processorSeconds(station.processId()) - processorBefore) * 1000 / double(measuring.elapsed());
    letPass(marginMs);
    used->memory = memoryOf(station.processId());
    if (!station.isRunning())
        return fail(QStringLiteral("the station ended before its time; see station.log"));
    setFaults(QStringLiteral("silent"));
    letPass(silenceMs);
    return station.end() || fail(QStringLiteral("the station did not end well; see station.log"));
}

void StationCosts::noteProgress(const StationRun &station, double processorBefore)
{
    qint64 served = 0;
    for (const auto &readings : m_served)
        served += readings->count();
    note(QStringLiteral("%1 s since the start: %2 readings served, recording %3 KiB, processor %4 s, resident %5 MiB")
             .arg(m_clock.elapsed() / 1000)
             .arg(served)
             .arg(QFileInfo(file(recordedProject + QStringLiteral(".dat"))).size() / 1024)
             .arg(processorSeconds(station.processId()) - processorBefore, 0, 'f', 2)
             .arg(residentMiB(station.processId()), 0, 'f', 1));
}

void StationCosts::note(const QString &text) const
{
    QFile log(file(QStringLiteral("progress.log")));
    if (log.open(QIODevice::Append))
        log.write(QDateTime::currentDateTime().toString(Qt::ISODate).toUtf8() + ' ' + text.toUtf8() + '\n');
}

bool StationCosts::fail(const QString &reason)
{
    m_error = reason;
    return false;
}

QString StationCosts::program(const QString &name) const
{
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
}

QProcessEnvironment StationCosts::environment(const QString &logRules) const
{
    QProcessEnvironment environment = m_soundServer.environment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_config.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_config.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    if (logRules.isEmpty())
        environment.remove(QStringLiteral("QT_LOGGING_RULES"));
    else
        environment.insert(QStringLiteral("QT_LOGGING_RULES"), logRules);
    return environment;
}
