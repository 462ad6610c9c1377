#include "FuzzGround.h"

#include "device/DeviceKey.h"
#include "project/IniFile.h"
#include "project/ProjectFile.h"

#include <QFileInfo>

#include <cmath>

namespace {

bool isNear(float a, float b)
{
    return std::abs(double(a) - double(b)) <= 0.005 + std::abs(double(a)) * 1e-6;
}

/// Limits are kept with two decimals.
bool isAlike(DeviceEntry a, const DeviceEntry &b)
{
    const bool limits = isNear(a.range.min1, b.range.min1) && isNear(a.range.max1, b.range.max1) &&
                        isNear(a.range.min2, b.range.min2) && isNear(a.range.max2, b.range.max2);
    a.range = b.range;
    return limits && a == b;
}

bool areAlike(const QList<DeviceEntry> &a, const QList<DeviceEntry> &b)
{
    return a.size() == b.size() && std::equal(a.cbegin(), a.cend(), b.cbegin(), isAlike);
}

/// What has nothing to do with the devices.
QStringList othersIn(const ProjectFile &project)
{
    const IniText text = readIniFile(project.path()).value_or(IniText());
    return QStringList{project.projectName(), QString::number(project.dataInterval()), project.databasePath(),
                       project.refusal(), QString::fromLatin1(text.value(QStringLiteral("Other/key")).raw().toHex())} +
           project.dashboardNames();
}

void checkPaths(const ProjectFile &project)
{
    const QString folder = QFileInfo(project.path()).absolutePath() + QLatin1Char('/');
    require(project.databasePath().startsWith(folder) &&
                !project.databasePath().mid(folder.size()).contains(QLatin1Char('/')),
            "a recording lies in its project's folder");
    require(project.dataInterval() >= 0, "an interval is not negative");
}

void checkDevices(ProjectFile &project, const QList<DeviceEntry> &devices)
{
    for (const DeviceEntry &device : devices)
        require(deviceKeyProblem(device.serialNumber).isEmpty(), "a device's number can be its key");
    const QStringList refused = project.refusedDevices();
    const QStringList others = othersIn(project);

    require(project.saveDevices(devices), "what was read can be saved");
    const std::optional<QList<DeviceEntry>> saved = project.readDevices();
    require(saved && areAlike(devices, *saved), "what was saved is read alike");
    require(project.refusedDevices() == refused, "what is left out is not lost");
    require(othersIn(project) == others, "other keys stay");

    require(project.saveDevices(*saved) && project.readDevices() == saved, "and again, to the letter");
    require(project.saveDevices(*saved), "also with a backup that is alike"); // a rounded zero has lost its sign
    const QByteArray content = contentOf(project.path());
    require(project.saveDevices(*saved), "it can be saved once more");
    require(contentOf(project.path()) == content, "the same devices make the same file");
}

void checkLayout(ProjectFile &project)
{
    const QStringList names = project.dashboardNames();
    const int interval = project.dataInterval();
    require(project.saveLayout(interval, names), "the layout can be saved");
    require(project.dashboardNames() == names && project.dataInterval() == interval, "the layout is read alike");
    require(project.setRecordStartTime(QStringLiteral("2024-01-01 00:00:00")), "the start can be saved");
}

} // namespace

/// A project file of any content: what opens can be saved, and reads back the same.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray content(reinterpret_cast<const char *>(data), int(size));
    ProjectFile project(fuzzFile("Lab.tpc"));
    writeFile(project.path(), content);
    const std::optional<IniText> text = readIniFile(project.path());
    require(text && text->toBytes() == content, "reading changes nothing");

    checkPaths(project);
    const std::optional<QList<DeviceEntry>> devices = project.readDevices();
    if (devices)
        checkDevices(project, *devices);
    checkLayout(project);
    require(!devices || (project.readDevices() && areAlike(*devices, *project.readDevices())),
            "the layout leaves the devices");
    return 0;
}
