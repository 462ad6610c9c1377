#include "SampleFiles.h"

#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QSettings>

namespace {

const QString coldRoom = QStringLiteral("K\u00FChlraum \u00B0C \u2013 1");
const QString snowman = QStringLiteral("\u2603 \U0001F321 \u00E9a \"x\", \\y;");

// Digits and letters that could be taken for more of the character before them.
const QStringList dashboards{coldRoom, QStringLiteral("\u00B0C"), QStringLiteral("\u20131, \u00FCf"), snowman};

constexpr int intervalMs = 60000;

QList<DeviceEntry> devices()
{
    DeviceEntry usb;
    usb.name = coldRoom;
    usb.ch1Name = QStringLiteral("\u00FCber 0");
    usb.ch2Name = snowman;
    usb.serialNumber = QStringLiteral("00001001");
    usb.interfaceKind = UsbInterface;
    usb.address = QStringLiteral("ttyACM0");
    usb.ch1Unit = 1;
    usb.ch2Unit = 4;
    usb.range = {-10, 8.5, 0, 100};
    usb.ch2CustomUnit = QStringLiteral("\u00B5g/m\u00B3");
    DeviceEntry network;
    network.name = QStringLiteral("\u65E5\u672C");
    network.serialNumber = QStringLiteral("0200AA000001");
    network.address = QStringLiteral("192.168.0.7");
    network.buzzerAlarm = QStringLiteral("ON");
    network.dashboardNumber = 3;
    return {usb, network};
}

AppSettings settings()
{
    AppSettings result;
    result.recentProjectList = QStringList{coldRoom, snowman, QStringLiteral("plain")};
    for (const QString &name : qAsConst(result.recentProjectList))
        result.recentProjects.insert(name, QStringLiteral("/projects/%1.tpc").arg(name));
    result.autoLoad = true;
    result.keepAlive = true;
    return result;
}

void settleIn(const QString &folder)
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder);
}

QString inFolder(const QString &folder, const QString &file)
{
    return folder + QLatin1Char('/') + file;
}

QStringList projectDifferences(const ProjectFile &file)
{
    QStringList result;
    if (file.projectName() != coldRoom)
        result << QStringLiteral("projectName: ") + file.projectName();
    if (!file.databasePath().endsWith(QLatin1Char('/') + coldRoom + QStringLiteral(".dat")))
        result << QStringLiteral("databaseName: ") + file.databasePath();
    if (file.dashboardNames() != dashboards)
        result << QStringLiteral("dashboardNames: ") + file.dashboardNames().join(QLatin1Char('|'));
    if (file.dataInterval() != intervalMs)
        result << QStringLiteral("DataInterval: %1").arg(file.dataInterval());
    const auto read = file.readDevices();
    if (!read || *read != devices())
        result << QStringLiteral("DeviceList");
    return result;
}

QStringList settingsDifferences()
{
    AppSettings read;
    read.load();
    const AppSettings written = settings();
    QStringList result;
    if (read.recentProjectList != written.recentProjectList)
        result << QStringLiteral("list: ") + read.recentProjectList.join(QLatin1Char('|'));
    if (read.recentProjects != written.recentProjects)
        result << QStringLiteral("projects: ") + read.recentProjects.keys().join(QLatin1Char('|'));
    if (read.autoLoad != written.autoLoad || read.autoRecord != written.autoRecord ||
        read.keepAlive != written.keepAlive)
        result << QStringLiteral("flags");
    return result;
}

} // namespace

QString SampleFiles::projectFile()
{
    return QStringLiteral("ColdRoom.tpc");
}

QString SampleFiles::settingsFile()
{
    return QStringLiteral("SorvantoLite/Sorvanto Lite.conf");
}

bool SampleFiles::write(const QString &folder)
{
    settleIn(folder);
    ProjectFile file(inFolder(folder, projectFile()));
    // The second time the first list becomes the backup.
    return file.create(coldRoom, intervalMs) && file.saveDevices(devices()) && file.saveDevices(devices()) &&
           file.saveLayout(intervalMs, dashboards) && settings().save();
}

QStringList SampleFiles::differences(const QString &folder)
{
    settleIn(folder);
    return projectDifferences(ProjectFile(inFolder(folder, projectFile()))) + settingsDifferences();
}
