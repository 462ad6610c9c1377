#include "loggersim/ProjectWriter.h"
#include "loggersim/SimLogger.h"

#include "device/ChannelUnit.h"
#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace loggersim {

namespace {

constexpr int dashboards = 4;
constexpr int devicesMax = dashboards * 16;

/// Twice the usual swing is still in order.
AlarmRange rangeAround(const Climate &climate)
{
    return {static_cast<float>(climate.temperature - 2 * climate.temperatureSwing),
            static_cast<float>(climate.temperature + 2 * climate.temperatureSwing),
            static_cast<float>(climate.humidity - 2 * climate.humiditySwing),
            static_cast<float>(climate.humidity + 2 * climate.humiditySwing)};
}

DeviceEntry entryFor(const SimLogger &logger, int dashboard)
{
    DeviceEntry entry;
    entry.name = logger.climate().place;
    entry.ch1Name = QStringLiteral("Temperature");
    entry.ch2Name = QStringLiteral("Humidity");
    entry.serialNumber = logger.key();
    entry.interfaceKind = logger.kind();
    entry.address = logger.address();
    entry.port = logger.kind() == NetworkInterface ? logger.port() : defaultDevicePort;
    entry.ch1Unit = CelsiusUnit;
    entry.ch2Unit = HumidityUnit;
    entry.range = rangeAround(logger.climate());
    entry.dashboardNumber = dashboard;
    return entry;
}

} // namespace

bool writeProject(const QString &path, int intervalMs, const QList<SimLogger *> &loggers, QString *error)
{
    if (loggers.size() > devicesMax) {
        *error = QStringLiteral("a project holds at most %1 loggers, not %2").arg(devicesMax).arg(loggers.size());
        return false;
    }
    QList<DeviceEntry> entries;
    for (const SimLogger *logger : loggers)
        entries.append(entryFor(*logger, entries.size() * dashboards / loggers.size()));
    const QStringList names{QStringLiteral("North wing"), QStringLiteral("South wing"), QStringLiteral("Basement"),
                            QStringLiteral("Outside")};
    ProjectFile file(QFileInfo(path).absoluteFilePath());
    if (file.create(QFileInfo(path).completeBaseName(), intervalMs) && file.saveDevices(entries) &&
        file.saveLayout(intervalMs, names))
        return true;
    *error = QStringLiteral("cannot write %1").arg(path);
    return false;
}

bool writeSettings(const QString &folder, const QString &projectPath, bool keepAlive, QString *error)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QDir(folder).absolutePath());
    const QFileInfo project(projectPath);
    const QString name = project.completeBaseName();
    AppSettings settings;
    settings.recentProjectList = QStringList{name};
    settings.recentProjects = QVariantMap{{name, project.absoluteFilePath()}};
    settings.autoLoad = true;
    settings.autoRecord = true;
    settings.keepAlive = keepAlive;
    if (settings.save())
        return true;
    *error = QStringLiteral("cannot write settings below %1").arg(folder);
    return false;
}

} // namespace loggersim
