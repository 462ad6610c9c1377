#include "app/SorvantoMain.h"

#include "app/AlarmSound.h"
#include "app/Logging.h"
#include "app/MainMenus.h"
#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "project/ProjectFile.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QAction>
#include <QFileInfo>
#include <QTimer>

namespace {

// However short the stored interval, no logger is asked more often.
constexpr int shortestPollMs = 1000;

constexpr int longestFolderText = 40;

QString shortened(const QString &folder)
{
    return folder.size() > longestFolderText ? folder.left(longestFolderText) + QStringLiteral("...") : folder;
}

} // namespace

void SorvantoMain::projectLoaded(const QString &path)
{
    const auto entries = ProjectFile(path).readDevices();
    if (!entries) {
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("There is no device information!"));
        return;
    }
    if (m_bIsProjectOpen) {
        closeProject();
        deleteProjectCenter();
    }
    adoptDevices(*entries);
    deleteInsertSerialData();

    const ProjectFile file(path);
    m_projectFile = path;
    m_projectName = QFileInfo(path).baseName();
    m_settings.addRecentProject(m_projectName, path);
    if (!file.projectName().isEmpty())
        m_projectName = file.projectName();
    dataIntervalMs = file.dataInterval();
    m_dashboardNames = file.dashboardNames();
    m_databasePath = file.databasePath();

    showProjectLabels();
    m_bIsProjectOpen = true;
    refreshActions();
    openProjectView();
}

void SorvantoMain::adoptDevices(const QList<DeviceEntry> &entries)
{
    for (const DeviceEntry &entry : entries) {
        ConfiguredDevice *device = deviceOf(entry.serialNumber);
        qCDebug(lcApp).noquote() << (device ? "ConfiguredDevice :" : "new ConfiguredDevice :") << entry.serialNumber
                                 << entry.port;
        if (!device) {
            device = new ConfiguredDevice(entry.serialNumber, entry.interfaceKind, this);
            m_configuredDevices.append(device);
        }
        configure(*device, entry, m_menus->keepAlive->isChecked());
        // The stored port may be another logger's by now; the USB watch hands out the present one.
        if (device->interfaceKind() == UsbInterface)
            device->forgetPort();
    }
}

void SorvantoMain::openProjectView()
{
    m_projectCenter = new ProjectCenter(m_projectFile, this);
    connect(m_projectCenter, &ProjectCenter::clickRecord, this, &SorvantoMain::slotToggleRecord);
    connect(m_projectCenter, &ProjectCenter::updateProjectFile, this, &SorvantoMain::slotUpdateProjectFile);
    if (!createInsertSerialData(m_databasePath))
        return;
    // In its place before it is filled: every move makes all tiles look up their styles again.
    m_form->centralFrame->layout()->addWidget(m_projectCenter);
    m_projectCenter->setDashboardNames(m_dashboardNames);
    m_projectCenter->setDevices(m_configuredDevices);
    m_projectCenter->show();

    slotKeepAlive(m_settings.keepAlive);
    openOstrivaneDevices();
    writeDevice();
    m_writeDeviceTimer->start(qMax(shortestPollMs, dataIntervalMs));
    if (m_settings.autoRecord)
        slotToggleRecord();
}

void SorvantoMain::slotCloseProject()
{
    closeProject();
    deleteProjectCenter();
}

/// What every way out of a project has in common; the screen is the caller's.
void SorvantoMain::closeProject()
{
    closeDiscoverySockets();
    m_writeDeviceTimer->stop();
    m_alarmSound->stop();
    m_bIsProjectOpen = false;
    m_form->label_projectname->clear();
    m_form->label_interval->clear();
    if (m_bIsRecordStart)
        slotStopRecord();
    deleteInsertSerialData();
    for (ConfiguredDevice *device : std::as_const(m_configuredDevices)) {
        device->detachViews();
        device->closeDevice();
        delete device;
    }
    m_configuredDevices.clear();
    m_projectFile.clear();
    m_databasePath.clear();
    dataIntervalMs = defaultDataIntervalMs;
    refreshActions();
}

/// Deleted later, because this may run inside one of its signals.
void SorvantoMain::deleteProjectCenter()
{
    if (!m_projectCenter)
        return;
    m_projectCenter->hide();
    m_form->centralFrame->layout()->removeWidget(m_projectCenter);
    m_projectCenter->deleteLater();
    m_projectCenter = nullptr;
    m_menus->expansionMode->setChecked(false);
}

void SorvantoMain::slotUpdateProjectFile()
{
    QList<DeviceEntry> entries;
    for (const ConfiguredDevice *device : std::as_const(m_configuredDevices))
        entries.append(entryOf(*device));
    if (!ProjectFile(m_projectFile).saveDevices(entries))
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Unable to save the project file."));
}

void SorvantoMain::showProjectLabels()
{
    m_form->label_projectname->setText(shortened(QFileInfo(m_projectFile).path()) + QLatin1Char('/') + m_projectName +
                                       QStringLiteral(".tpc"));
    m_form->label_interval->setText(QStringLiteral("Interval : ") + intervalText(dataIntervalMs));
}
