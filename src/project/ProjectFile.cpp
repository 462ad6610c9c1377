#include "project/ProjectFile.h"

#include "project/DeviceList.h"
#include "project/IniFile.h"

#include <QFileInfo>
#include <QSettings>
#include <QVariant>

#include <limits>

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

QVariant read(const QString &path, const QString &key)
{
    return QSettings(path, QSettings::IniFormat).value(key);
}

bool rewriteExisting(const QString &path, const IniValues &values)
{
    // A file that was deleted would come back without its name and its database.
    return QFileInfo::exists(path) && rewriteIniFile(path, values);
}

} // namespace

ProjectFile::ProjectFile(const QString &path) : m_path(path) {}

QString ProjectFile::path() const
{
    return m_path;
}

bool ProjectFile::create(const QString &projectName, int intervalMs)
{
    IniValues values;
    const QStringList left = QSettings(m_path, QSettings::IniFormat).allKeys();
    for (const QString &name : left)
        values.append({name, QVariant()});
    values.append({key::projectName, projectName});
    values.append({key::dataInterval, intervalMs});
    values.append({key::databaseName, QFileInfo(newDatabasePath(projectName)).fileName()});
    return rewriteIniFile(m_path, values);
}

bool ProjectFile::saveDevices(const QList<DeviceEntry> &devices)
{
    const QByteArray before = read(m_path, key::deviceList).toByteArray();
    return rewriteExisting(m_path, {{key::backup, before}, {key::deviceList, encodeDeviceList(devices, before)}});
}

bool ProjectFile::saveLayout(int intervalMs, const QStringList &dashboardNames)
{
    return rewriteExisting(m_path, {{key::dataInterval, intervalMs}, {key::dashboardNames, dashboardNames}});
}

bool ProjectFile::setRecordStartTime(const QString &text)
{
    return rewriteExisting(m_path, {{key::recordStartTime, text}});
}

bool ProjectFile::setRecordStopTime(const QString &text)
{
    return rewriteExisting(m_path, {{key::recordStopTime, text}});
}

std::optional<QList<DeviceEntry>> ProjectFile::readDevices() const
{
    return decodeDeviceList(read(m_path, key::deviceList).toByteArray());
}

QStringList ProjectFile::refusedDevices() const
{
    return ::refusedDevices(read(m_path, key::deviceList).toByteArray());
}

QString ProjectFile::projectName() const
{
    return read(m_path, key::projectName).toString();
}

int ProjectFile::dataInterval() const
{
    // A number too large for an int would wrap into an interval that nobody chose.
    const qlonglong ms = read(m_path, key::dataInterval).toLongLong();
    return ms >= 0 && ms <= std::numeric_limits<int>::max() ? int(ms) : 0;
}

QStringList ProjectFile::dashboardNames() const
{
    return read(m_path, key::dashboardNames).toStringList();
}

QString ProjectFile::newDatabasePath(const QString &projectName) const
{
    return QFileInfo(m_path).absolutePath() + QLatin1Char('/') + projectName + QStringLiteral(".dat");
}

QString ProjectFile::databasePath() const
{
    return QFileInfo(m_path).absolutePath() + QLatin1Char('/') + read(m_path, key::databaseName).toString();
}
