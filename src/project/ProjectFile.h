#pragma once

#include "device/ConfiguredDevice.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

/// One device as a project file keeps it.
struct DeviceEntry
{
    QString name;
    QString ch1Name;
    QString ch2Name;
    QString serialNumber;
    int interfaceKind = NetworkInterface;
    QString address;
    quint16 port = defaultDevicePort;
    int ch1Unit = 0;
    int ch2Unit = 0;
    AlarmRange range;
    QString ch1CustomUnit;
    QString ch2CustomUnit;
    QString buzzerAlarm = QStringLiteral("OFF");
    int dashboardNumber = 0;
};

/// What the project file keeps of @p device.
DeviceEntry entryOf(const ConfiguredDevice &device);
/// Gives @p device the entry's settings; its identity and kind stay.
void configure(ConfiguredDevice &device, const DeviceEntry &entry, bool keepConnection);

/// A project's ".tpc" file. Writing replaces the file as a whole, keeps keys it does not know and returns whether
/// the new state is on the disk.
class ProjectFile
{
public:
    explicit ProjectFile(const QString &path);

    QString path() const;

    /// First keys of a new project: name, interval and the database named after it.
    bool create(const QString &projectName, int intervalMs);
    /// Stores the list and keeps the one before it as the backup.
    bool saveDevices(const QList<DeviceEntry> &devices);
    bool saveLayout(int intervalMs, const QStringList &dashboardNames);
    bool setRecordStartTime(const QString &text);
    bool setRecordStopTime(const QString &text);

    /// Nothing when the list is missing or cannot be parsed; an empty list is a project without devices.
    std::optional<QList<DeviceEntry>> readDevices() const;
    /// The stored name, or an empty text.
    QString projectName() const;
    /// Milliseconds as stored; 0 when missing.
    int dataInterval() const;
    QStringList dashboardNames() const;
    /// The recording's path: the project's folder, "/" and the stored database name.
    QString databasePath() const;

private:
    QString m_path;
};
