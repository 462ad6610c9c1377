#pragma once

#include "StationParts.h"

#include "device/ConfiguredDevice.h"
#include "dialogs/ProjectMain.h"
#include "dialogs/ProjectManager.h"
#include "views/ProjectCenter.h"

#include <QPointer>

/// Somebody who leads a station from screen to screen. The project is "Kitchen" unless it is said otherwise.
class Operator
{
public:
    Operator() { startStation(); }

    StationFixture fixture;
    std::unique_ptr<SorvantoMain> station;

    void startStation()
    {
        station = std::make_unique<SorvantoMain>();
        station->show();
    }

    // Null while another screen is shown.
    ProjectMain *startScreen() const { return shownScreen<ProjectMain>(*station); }
    ProjectManager *manager() const { return shownScreen<ProjectManager>(*station); }
    ProjectCenter *project() const { return shownScreen<ProjectCenter>(*station); }
    QString projectPath() const { return fixture.projectPath(name); }
    ProjectFile projectFile() const { return ProjectFile(projectPath()); }
    QStringList actions() const { return enabledActions(*station); }
    QString status(const char *label) const { return labelText(*station, label); }

    void trigger(const char *menu, const QString &text) const { action(*station, menu, text)->trigger(); }
    void edit() const { trigger("menu_project", QStringLiteral("Add/Delete")); }
    void close() const { trigger("menu_project", QStringLiteral("Close")); }
    void confirm() const { child<QPushButton>(*manager(), "btn_confirm")->click(); }

    void createProject() const
    {
        QFile file(projectPath());
        if (!file.open(QIODevice::WriteOnly))
            qFatal("no file for the project");
        file.close();
        emit startScreen()->projectCreated(projectPath());
    }

    /// A project with so many loggers; false when they do not all answer.
    bool openProject(int loggers, int intervalMs = 10000)
    {
        QList<DeviceEntry> entries;
        for (int i = 0; i < loggers; ++i)
            entries << fixture.addLogger();
        fixture.writeProject(name, entries, intervalMs);
        emit startScreen()->projectLoaded(projectPath());
        return QTest::qWaitFor([this] {
            const QList<ConfiguredDevice *> devices = station->configuredDevices();
            return std::all_of(devices.cbegin(), devices.cend(),
                               [](const ConfiguredDevice *device) { return device->isConnected(); });
        });
    }

    /// What the dialog for adding by hand gives to the manager: a device with an open link.
    QPointer<ConfiguredDevice> addByHand(const DeviceEntry &entry) const
    {
        auto *device = new ConfiguredDevice(entry.serialNumber, NetworkInterface);
        device->setDeviceInfo(entry.name, QStringLiteral("CH1"), QStringLiteral("CH2"), entry.address, entry.port);
        device->openDevice();
        manager()->slotManualConfigDevice(device);
        return device;
    }
    QPointer<ConfiguredDevice> addByHand() { return addByHand(fixture.addLogger()); }

    /// Takes a row off the first dashboard.
    void remove(int row) const
    {
        auto *board = child<QListWidget>(*manager(), "configured_list_1");
        board->clearSelection();
        board->item(row)->setSelected(true);
        child<QPushButton>(*manager(), "btn_remove")->click();
    }

    const QString name = QStringLiteral("Kitchen");
};
