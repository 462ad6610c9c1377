#include "E2eFixture.h"

#include "RecordingReader.h"
#include "loggersim/ProjectWriter.h"

#include <QDir>
#include <QSettings>
#include <QTest>

#include <algorithm>

namespace {

// No test comes near it unless something is broken, or the machine has many times its load to carry.
constexpr int patienceMs = 280000;

} // namespace

E2eFixture::E2eFixture(const QString &projectFolder)
    : m_projectFolder(projectFolder.isEmpty() ? m_folder.path() : projectFolder),
      m_logRules(QStringLiteral("sorvanto.*.debug=false;sorvanto.app.debug=true;sorvanto.store.debug=true"))
{
}

E2eFixture::~E2eFixture() = default;

loggersim::NetworkLogger &E2eFixture::addLogger(const QString &fault, const QString &key)
{
    const int number = loggerCount();
    auto logger = std::make_unique<loggersim::NetworkLogger>(
        key.isEmpty() ? QStringLiteral("0200E2%1").arg(number + 1, 6, 10, QLatin1Char('0')) : key,
        loggersim::climateOf(number), quint32(number));
    if (!logger->listen(QHostAddress::LocalHost, 0))
        qFatal("no port for a logger: %s", qPrintable(logger->errorString()));
    m_served.push_back(std::make_unique<ServedReadings>(logger.get()));
    m_loggers.push_back(std::move(logger));
    setFault(number, fault);
    return *m_loggers.back();
}

loggersim::SerialLogger &E2eFixture::addUsbLogger()
{
    if (!m_usbTree)
        m_usbTree = std::make_unique<loggersim::UsbTree>();
    const int plug = usbLoggerCount();
    const int number = loggerCount() + plug;
    auto logger =
        std::make_unique<loggersim::SerialLogger>(QStringLiteral("0000%1").arg(1001 + plug),
                                                  loggersim::climateOf(number), quint32(number), m_usbTree.get(), plug);
    if (!logger->plugIn())
        qFatal("no serial port for a logger: %s", qPrintable(logger->errorString()));
    m_servedByUsb.push_back(std::make_unique<ServedReadings>(logger.get()));
    m_usbLoggers.push_back(std::move(logger));
    return *m_usbLoggers.back();
}

void E2eFixture::setFault(int index, const QString &fault)
{
    QString error;
    const auto parsed = loggersim::parseFault(fault, &error);
    if (!parsed)
        qFatal("%s", qPrintable(error));
    logger(index).setFault(*parsed);
}

void E2eFixture::setFaults(const QString &fault)
{
    for (int i = 0; i < loggerCount(); ++i)
        setFault(i, fault);
}

bool E2eFixture::fallSilent(int loggers)
{
    std::vector<quint64> enough;
    for (int i = 0; i < loggers; ++i) {
        setFault(i, QStringLiteral("silent"));
        enough.push_back(logger(i).commands() + 2);
    }
    return waitUntil([&] {
        return std::equal(enough.cbegin(), enough.cend(), m_loggers.cbegin(),
                          [](quint64 commands, const auto &logger) { return logger->commands() >= commands; });
    });
}

bool E2eFixture::haveServed(int readings, int loggers) const
{
    return std::all_of(m_served.cbegin(), m_served.cbegin() + loggers,
                       [readings](const auto &served) { return served->count() >= readings; });
}

void E2eFixture::setCommand(const QStringList &command, const QString &folder)
{
    m_station.setCommand(command, folder);
    m_loadsByItself = false;
}

bool E2eFixture::start()
{
    m_isSetUp = m_isSetUp || writeFiles();
    if (!m_isSetUp)
        return false;
    if (m_station.start(environment()))
        return true;
    m_error = QStringLiteral("the station cannot be started");
    return false;
}

bool E2eFixture::writeFiles()
{
    QList<loggersim::SimLogger *> loggers;
    for (const auto &logger : m_loggers)
        loggers.append(logger.get());
    for (const auto &logger : m_usbLoggers)
        loggers.append(logger.get());
    const QString config = m_folder.filePath(QStringLiteral("config"));
    if (!loggersim::writeProject(projectFile(), m_intervalMs, loggers, &m_error) ||
        !loggersim::writeSettings(config, projectFile(), false, &m_error))
        return false;
    if (!m_loadsByItself)
        QSettings(config + QStringLiteral("/SorvantoLite/Sorvanto Lite.conf"), QSettings::IniFormat)
            .setValue(QStringLiteral("RecentProjects/autoLoad"), false);
    if (m_soundServer.start())
        return true;
    m_error = QStringLiteral("no sound server: ") + m_soundServer.errorString();
    return false;
}

QProcessEnvironment E2eFixture::environment() const
{
    QProcessEnvironment environment = m_soundServer.environment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_folder.filePath(QStringLiteral("config")));
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_folder.path());
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    environment.insert(QStringLiteral("QT_LOGGING_RULES"), m_logRules);
    if (m_slowDiskMs > 0) {
        environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(SLOW_DISK));
        environment.insert(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("verify_asan_link_order=0"));
        environment.insert(QStringLiteral("SLOW_DISK_MS"), QString::number(m_slowDiskMs));
    }
    environment.insert(m_variables);
    return m_usbTree ? m_usbTree->programEnvironment(environment) : environment;
}

bool E2eFixture::waitUntil(const std::function<bool()> &condition) const
{
    const auto isOver = [&] {
        return condition() || !m_station.isRunning();
    };
    return QTest::qWaitFor(isOver, patienceMs) && condition();
}

QString E2eFixture::projectValue(const QString &key) const
{
    return QSettings(projectFile(), QSettings::IniFormat).value(key).toString();
}

QList<RecordedRow> E2eFixture::rows() const
{
    return RecordingReader(recordingFile()).rows();
}

int E2eFixture::readingCount() const
{
    const QList<RecordedRow> all = rows();
    return int(std::count_if(all.cbegin(), all.cend(), [](const RecordedRow &row) { return !row.isGap(); }));
}

QString E2eFixture::integrity() const
{
    return RecordingReader(recordingFile()).integrity();
}

QByteArray E2eFixture::differences(int loggers, bool lastMayMiss) const
{
    const QList<RecordedRow> all = rows();
    QStringList found;
    for (int i = 0; i < loggers; ++i) {
        const QString difference = served(i).differences(all, lastMayMiss);
        if (!difference.isEmpty())
            found += difference;
    }
    return found.join(QLatin1Char('\n')).toLocal8Bit();
}
