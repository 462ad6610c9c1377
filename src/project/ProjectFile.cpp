#include "project/ProjectFile.h"

#include "project/DeviceList.h"
#include "project/IniFile.h"
#include "project/RecordingName.h"

#include <QFileInfo>

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

constexpr int longestShownName = 60;

IniValue read(const QString &path, const QString &key)
{
    const std::optional<IniText> text = readIniFile(path);
    return text ? text->value(key) : IniValue();
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
    IniText text;
    text.setValue(key::projectName, IniValue::fromText(projectName));
    text.setValue(key::dataInterval, IniValue::fromNumber(intervalMs));
    text.setValue(key::databaseName, IniValue::fromText(QFileInfo(newDatabasePath(projectName)).fileName()));
    return replaceFile(m_path, text.toBytes());
}

bool ProjectFile::saveDevices(const QList<DeviceEntry> &devices)
{
    const QByteArray before = read(m_path, key::deviceList).toBytes();
    return rewriteExisting(m_path, {{key::backup, IniValue::fromBytes(before)},
                                    {key::deviceList, IniValue::fromBytes(encodeDeviceList(devices, before))}});
}

bool ProjectFile::saveLayout(int intervalMs, const QStringList &dashboardNames)
{
    return rewriteExisting(m_path, {{key::dataInterval, IniValue::fromNumber(intervalMs)},
                                    {key::dashboardNames, IniValue::fromTexts(dashboardNames)}});
}

bool ProjectFile::setRecordStartTime(const QString &text)
{
    return rewriteExisting(m_path, {{key::recordStartTime, IniValue::fromText(text)}});
}

bool ProjectFile::setRecordStopTime(const QString &text)
{
    return rewriteExisting(m_path, {{key::recordStopTime, IniValue::fromText(text)}});
}

std::optional<QList<DeviceEntry>> ProjectFile::readDevices() const
{
    return decodeDeviceList(read(m_path, key::deviceList).toBytes());
}

QStringList ProjectFile::refusedDevices() const
{
    return ::refusedDevices(read(m_path, key::deviceList).toBytes());
}

QString ProjectFile::projectName() const
{
    return read(m_path, key::projectName).toText();
}

int ProjectFile::dataInterval() const
{
    // A number too large for an int would wrap into an interval that nobody chose.
    const qlonglong ms = read(m_path, key::dataInterval).toNumber();
    return ms >= 0 && ms <= std::numeric_limits<int>::max() ? int(ms) : 0;
}

QStringList ProjectFile::dashboardNames() const
{
    return read(m_path, key::dashboardNames).toTexts();
}

QString ProjectFile::newDatabasePath(const QString &projectName) const
{
    return QFileInfo(m_path).absolutePath() + QLatin1Char('/') + projectName + QStringLiteral(".dat");
}

QString ProjectFile::databasePath() const
{
    const QString name = read(m_path, key::databaseName).toText();
    const QString folder = QFileInfo(m_path).absolutePath() + QLatin1Char('/');
    return recordingNameProblem(name).isEmpty() ? folder + name : folder;
}

QString ProjectFile::refusal() const
{
    const QString name = read(m_path, key::databaseName).toText();
    const QString problem = recordingNameProblem(name);
    if (problem.isEmpty())
        return {};
    return QStringLiteral("The project is not opened: the name of its recording, \"%1\", %2.")
        .arg(name.left(longestShownName), problem);
}
