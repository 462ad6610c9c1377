#include "app/SorvantoMain.h"

#include "app/AlarmSound.h"
#include "app/Logging.h"
#include "app/MainMenus.h"
#include "app/PollPhase.h"
#include "device/DataInterval.h"
#include "dialogs/ProjectManager.h"
#include "project/ProjectFile.h"
#include "store/InsertSerialData.h"
#include "store/WriteProtection.h"
#include "ui_SorvantoMain.h"
#include "views/ProjectCenter.h"

#include <QAction>
#include <QFileInfo>
#include <QTimer>

namespace {

constexpr int longestFolderText = 40;

QString shortened(const QString &folder)
{
    return folder.size() > longestFolderText ? folder.left(longestFolderText) + QStringLiteral("...") : folder;
}

} // namespace

/// Keeps a project that is about to be opened to this station; false, with a message, while another has it.
bool SorvantoMain::claimProject(ProjectClaim &claim, const QString &path)
{
    const bool claimed = claim.acquireProject(path, m_claim);
    if (!claimed)
        showTimedMessage(QStringLiteral("ERROR"), claim.refusal());
    return claimed;
}

/// The same for its recording.
bool SorvantoMain::claimRecording(ProjectClaim &claim, const QString &recording)
{
    const bool claimed = claim.acquireRecording(recording, m_claim);
    if (!claimed)
        showTimedMessage(QStringLiteral("ERROR"), claim.refusal());
    return claimed;
}

void SorvantoMain::projectCreated(const QString &path)
{
    const QString name = QFileInfo(path).baseName();
    ProjectClaim claim;
    if (!claimProject(claim, path) || !claimRecording(claim, ProjectFile(path).newDatabasePath(name)))
        return;
    if (!ProjectFile(path).create(name, dataIntervalMs)) {
        reportUnsavedProject();
        return;
    }
    leaveProject();
    m_claim = claim;
    m_projectFile = path;
    m_projectName = name;
    m_databasePath = ProjectFile(path).databasePath();
    showProjectName();
    showProjectManager()->setAvailDeviceList(m_availDevices.all());
    enter(StationState::Creating);
    checkConnection();
    broadcastDevice();
}

void SorvantoMain::projectLoaded(const QString &path)
{
    // First of all: what another station is just writing is not to be read.
    ProjectClaim claim;
    if (!claimProject(claim, path))
        return;
    const auto entries = ProjectFile(path).readDevices();
    if (!entries) {
        showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("There is no device information!"));
        return;
    }
    const QString refusal = ProjectFile(path).refusal();
    if (!refusal.isEmpty()) {
        showTimedMessage(QStringLiteral("ERROR"), refusal);
        return;
    }
    if (!claimRecording(claim, ProjectFile(path).databasePath()))
        return;
    leaveProject();
    m_claim = claim;
    m_devices.load(*entries, m_menus->keepAlive->isChecked());
    m_journal.knowDevices(m_devices.all());

    const ProjectFile file(path);
    m_projectFile = path;
    m_projectName = QFileInfo(path).baseName();
    reportUnsavedSettings(m_settings.addRecentProject(m_projectName, path));
    if (!file.projectName().isEmpty())
        m_projectName = file.projectName();
    dataIntervalMs = file.dataInterval();
    m_dashboardNames = file.dashboardNames();
    m_databasePath = file.databasePath();

    showProjectName();
    showInterval();
    enter(StationState::Open);
    openProjectView();
    reportRefusedDevices(file.refusedDevices());
    reportDevicesTooMany();
}

void SorvantoMain::projectListConfirm(const QList<ConfiguredDevice *> &devices, const QStringList &dashboardNames)
{
    freeUnconfirmedDevices();
    m_devices.adopt(m_projectManager ? devices + m_projectManager->unseenDevices(devices) : devices);
    m_dashboardNames = dashboardNames;
    closeDiscoverySockets();
    discardScreens();
    slotUpdateProjectFile();
    if (!ProjectFile(m_projectFile).saveLayout(dataIntervalMs, m_dashboardNames))
        reportUnsavedProject();
    showInterval();
    reportUnsavedSettings(m_settings.addRecentProject(m_projectName, m_projectFile));
    enter(StationState::Open);
    openProjectView();
}

/// Devices that were added by hand but are in no confirmed list.
void SorvantoMain::freeUnconfirmedDevices()
{
    if (!m_projectManager)
        return;
    const QList<ConfiguredDevice *> devices = m_projectManager->takeUnconfirmedDevices();
    for (ConfiguredDevice *device : devices)
        OwnedDevice{device}.reset();
}

void SorvantoMain::slotAddDeviceProject()
{
    if (m_state.name() != StationState::Open)
        return;
    reportCancelledExchanges();
    m_writeDeviceTimer->stop();
    m_alarmSound->stop();
    enter(StationState::Editing);
    deleteInsertSerialData();
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices)
        device->detachViews();
    discardScreens();

    ProjectManager *manager = showProjectManager();
    manager->setIntervalDisabled(true);
    manager->setConfiguredDeviceList(devices);
    manager->setAvailDeviceList(m_availDevices.all());
    manager->setDashboardNames(m_dashboardNames);
    for (ConfiguredDevice *device : devices)
        device->closeDevice();
    checkConnection();
    broadcastDevice();
}

void SorvantoMain::openProjectView()
{
    // In its place before it is filled: moved there later, all tiles would look up their styles again.
    m_projectCenter = new ProjectCenter(m_projectFile, m_form->centralFrame);
    connect(m_projectCenter, &ProjectCenter::clickRecord, this, &SorvantoMain::slotToggleRecord);
    connect(m_projectCenter, &ProjectCenter::updateProjectFile, this, &SorvantoMain::slotUpdateProjectFile);
    // Before the recording, whose opening may be the first thing to be told.
    if (!isWriteProtected(m_databasePath))
        m_journal.openProject(m_databasePath, m_projectFile);
    if (!createInsertSerialData(m_databasePath))
        return;
    if (!isRecordingReadOnly())
        m_journal.rowsSaved(m_insertSerialData->openingReport());
    m_journal.compareDevices(m_devices.all());
    m_projectCenter->setDashboardNames(m_dashboardNames);
    m_projectCenter->setDevices(m_devices.all());
    showScreen(m_projectCenter);
    m_projectCenter->takeFocus();

    slotKeepAlive(m_settings.keepAlive);
    openUsbDevicesAnew();
    // In this order: a second that begins meanwhile is polled once more rather than not at all.
    startPolls();
    writeDevice();
    if (m_settings.autoRecord && !isRecordingReadOnly())
        slotToggleRecord();
}

void SorvantoMain::slotCloseProject()
{
    reportCancelledExchanges();
    closeProject();
    discardScreens();
    showStartScreen();
}

/// Makes room for another project; the screen that follows is the caller's.
void SorvantoMain::leaveProject()
{
    if (m_state.hasProject())
        closeProject();
    discardScreens();
}

/// What every way out of a project has in common; the screen is the caller's.
void SorvantoMain::closeProject()
{
    closeDiscoverySockets();
    m_writeDeviceTimer->stop();
    m_alarmSound->stop();
    m_form->label_projectname->clear();
    m_form->label_interval->clear();
    if (isRecording())
        slotStopRecord();
    deleteInsertSerialData();
    freeUnconfirmedDevices();
    m_devices.clear();
    m_journal.closeProject();
    m_projectFile.clear();
    m_claim = {};
    m_databasePath.clear();
    dataIntervalMs = defaultDataIntervalMs;
    enter(StationState::StartScreen);
}

/// An exchange whose dialog was closed goes on, but not beyond the closing of its link.
void SorvantoMain::reportCancelledExchanges()
{
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (const ConfiguredDevice *device : devices) {
        if (device->isExchangeRunning())
            showTimedMessage(QStringLiteral("ERROR"),
                             device->deviceName() +
                                 QStringLiteral(": This command has been cancelled.\nPlease retry."));
    }
}

void SorvantoMain::slotUpdateProjectFile()
{
    m_journal.compareDevices(m_devices.all());
    if (!ProjectFile(m_projectFile).saveDevices(m_devices.entries()))
        reportUnsavedProject();
}

void SorvantoMain::reportUnsavedProject()
{
    showTimedMessage(QStringLiteral("ERROR"), QStringLiteral("Unable to save the project file."));
}

/// All of them in the log, one in the window: a file may hold any number.
void SorvantoMain::reportRefusedDevices(const QStringList &sentences)
{
    if (sentences.isEmpty())
        return;
    for (const QString &sentence : sentences)
        qCWarning(lcApp) << "[ERROR] SorvantoMain::projectLoaded :" << sentence;
    const auto others = sentences.size() - 1;
    const QString more = others > 0 ? QStringLiteral("\nSo are %1 more, which the log names.").arg(others) : QString();
    showTimedMessage(QStringLiteral("ERROR"), sentences.first() + more);
}

void SorvantoMain::reportDevicesTooMany()
{
    if (m_devices.size() <= ProjectManager::maxDevices)
        return;
    showTimedMessage(QStringLiteral("WARNING"),
                     QStringLiteral("The project lists %1 devices, and %2 can be chosen. All are polled and recorded, "
                                    "and all stay in its file; those without a place are on no dashboard.")
                         .arg(m_devices.size())
                         .arg(ProjectManager::maxDevices));
}

void SorvantoMain::showProjectName()
{
    m_form->label_projectname->setText(shortened(QFileInfo(m_projectFile).path()) + QLatin1Char('/') + m_projectName +
                                       QStringLiteral(".tpc"));
}

void SorvantoMain::showInterval()
{
    m_form->label_interval->setText(QStringLiteral("Interval : ") + intervalText(dataIntervalMs));
}
