#pragma once

#include "project/DeviceEntry.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

/// A project's ".tpc" file. Writing replaces the file as a whole, keeps keys it does not know and returns whether
/// the new state is on the disk; if not, the file and what is read from it stay as they were. Only create() makes a
/// file where there is none.
class ProjectFile
{
public:
    explicit ProjectFile(const QString &path);

    QString path() const;

    /// First keys of a new project: name, interval and the database named after it; no key of an earlier one stays.
    bool create(const QString &projectName, int intervalMs);
    /// Stores the list and keeps the one before it as the backup.
    bool saveDevices(const QList<DeviceEntry> &devices);
    bool saveLayout(int intervalMs, const QStringList &dashboardNames);
    bool setRecordStartTime(const QString &text);
    bool setRecordStopTime(const QString &text);

    /// Nothing when the list is missing or cannot be parsed; an empty list is a project without devices.
    std::optional<QList<DeviceEntry>> readDevices() const;
    /// A sentence for each device that readDevices() leaves out because its number cannot be a key; it stays in the
    /// file.
    QStringList refusedDevices() const;
    /// The stored name, or an empty text.
    QString projectName() const;
    /// Milliseconds as stored; 0 when missing, negative or beyond an int.
    int dataInterval() const;
    QStringList dashboardNames() const;
    /// The recording that create() gives to a project of that name.
    QString newDatabasePath(const QString &projectName) const;
    /// The recording's path: the project's folder, "/" and the stored database name.
    QString databasePath() const;
    /// Why the project must not be opened, in words for the operator: its recording has a name that leads out of the
    /// project's folder. databasePath() is then that of a project without a recording. Empty for any other project.
    QString refusal() const;

private:
    QString m_path;
};
