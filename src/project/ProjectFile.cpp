#include "project/ProjectFile.h"

#include "project/DeviceList.h"

#include <QFileInfo>
#include <QPair>
#include <QSettings>
#include <QVariant>

namespace {

namespace key {
const QString projectName = QStringLiteral("projectName");
const QString dataInterval = QStringLiteral("DataInterval");
const QString databaseName = QStringLiteral("databaseName");
const QString dashboardNames = QStringLiteral("dashboardNames");
const QString deviceList = QStringLiteral("DeviceList");
const QString backup = QStringLiteral("Backup");
const QString recordStartTime = QStringLiteral("record_start_time");
const QString recordStopTime = QStringLiteral("record_stop_time");
} // namespace key

/// Keys and values in the order of writing; an invalid value stands for a key that is not there.
using Values = QList<QPair<QString, QVariant>>;

QVariant read(const QString &path, const QString &key)
{
    return QSettings(path, QSettings::IniFormat).value(key);
}

void set(QSettings &settings, const Values &values)
{
    for (const auto &[name, value] : values) {
        if (value.isValid())
            settings.setValue(name, value);
        else
            settings.remove(name);
    }
}

bool write(QSettings &settings, const Values &values)
{
    Values onDisk;
    for (const auto &[name, value] : values)
        onDisk.append({name, settings.value(name)});
    set(settings, values);
    settings.sync();
    if (settings.status() != QSettings::AccessError)
        return true;
    // What could not be written stays in a cache that every later object for this path reads from and writes.
    set(settings, onDisk);
    return false;
}

bool writeExisting(const QString &path, const Values &values)
{
    // The file would come back without its name and its database.
    if (!QFileInfo::exists(path))
        return false;
    QSettings settings(path, QSettings::IniFormat);
    return write(settings, values);
}

} // namespace

ProjectFile::ProjectFile(const QString &path) : m_path(path) {}

QString ProjectFile::path() const
{
    return m_path;
}

bool ProjectFile::create(const QString &projectName, int intervalMs)
{
    QSettings settings(m_path, QSettings::IniFormat);
    Values values;
    const QStringList left = settings.allKeys();
    for (const QString &name : left)
        values.append({name, QVariant()});
    values.append({key::projectName, projectName});
    values.append({key::dataInterval, intervalMs});
    values.append({key::databaseName, projectName + QStringLiteral(".dat")});
    return write(settings, values);
}

bool ProjectFile::saveDevices(const QList<DeviceEntry> &devices)
{
    return writeExisting(m_path, {{key::backup, read(m_path, key::deviceList).toByteArray()},
                                  {key::deviceList, encodeDeviceList(devices)}});
}

bool ProjectFile::saveLayout(int intervalMs, const QStringList &dashboardNames)
{
    return writeExisting(m_path, {{key::dataInterval, intervalMs}, {key::dashboardNames, dashboardNames}});
}

bool ProjectFile::setRecordStartTime(const QString &text)
{
    return writeExisting(m_path, {{key::recordStartTime, text}});
}

bool ProjectFile::setRecordStopTime(const QString &text)
{
    return writeExisting(m_path, {{key::recordStopTime, text}});
}

std::optional<QList<DeviceEntry>> ProjectFile::readDevices() const
{
    return decodeDeviceList(read(m_path, key::deviceList).toByteArray());
}

QString ProjectFile::projectName() const
{
    return read(m_path, key::projectName).toString();
}

int ProjectFile::dataInterval() const
{
    return read(m_path, key::dataInterval).toInt();
}

QStringList ProjectFile::dashboardNames() const
{
    return read(m_path, key::dashboardNames).toStringList();
}

QString ProjectFile::databasePath() const
{
    return QFileInfo(m_path).absolutePath() + QLatin1Char('/') + read(m_path, key::databaseName).toString();
}
