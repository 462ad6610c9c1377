#pragma once

#include "app/StartOptions.h"
#include "device/AvailDevice.h"
#include "device/ConfiguredDevice.h"
#include "device/UsbLoggers.h"
#include "project/AppSettings.h"

#include <QAudio>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QPixmap>
#include <QStringList>
#include <QWidget>
#include <memory>
#include <utility>

class AlarmSound;
class InsertSerialData;
class MainMenus;
class ProjectCenter;
class ProjectLock;
class ProjectMain;
class ProjectManager;
class QMenu;
class QTimer;
class QUdpSocket;
struct DeviceEntry;
struct DiscoveryReply;

namespace Ui {
class SorvantoMain;
}

/// The main window and controller: owns the open project's devices, the loggers in reach, the timers, the recording and
/// the screen in its centre.
class SorvantoMain : public QWidget
{
    Q_OBJECT

public:
    /// Does all the loading work; with auto-load on or a project file named, a project is open and recorded when this
    /// returns.
    explicit SorvantoMain(const StartOptions &start = {}, QWidget *parent = nullptr);
    ~SorvantoMain() override;

    /// Whether the program is to end: the recording could not be created, or endProgram() was called. An event loop
    /// that is not running yet must not be started any more.
    bool isEnding() const;
    bool isProjectOpen() const;
    bool isRecording() const;
    /// Every logger in reach; the records belong to the controller and change with every scan.
    QList<AvailDevice *> availDevices() const;
    QList<ConfiguredDevice *> configuredDevices() const;

    /// Asks the network's loggers to announce themselves; answers join availDevices().
    void broadcastDevice();

    /// Stops a running recording so that everything read so far is in the file.
    void stopRunningRecording();
    /// Stops a running recording, closes the window and ends the event loop.
    void endProgram();

public slots:
    void topDblClick();
    void slotCommandProject();
    void slotCommandRecord();
    void slotCommandScreen();
    void slotCommandHelp();
    void slotViewFull(bool on);
    void slotShowHideItem(bool on);
    void slotCloseProject();
    void slotAddDeviceProject();
    void slotRefreshDevice();
    void slotAutoProject(bool on);
    void slotAutoRecord(bool on);
    void slotKeepAlive(bool on);
    void slotLookbackRecord();
    void slotReportDaily();
    void slotUpdateProjectFile();
    void slotRefreshAvailDeviceList();
    void slotToggleRecord();
    void slotStartRecord();
    void slotStopRecord();
    void projectCreated(const QString &path);
    void projectLoaded(const QString &path);
    void projectListConfirm(const QList<ConfiguredDevice *> &devices, const QStringList &dashboardNames);
    void checkConnection();
    void slotStdTimer();
    void writeDevice();
    void writeDb();
    void slotSndUdpSocketDeleted();
    void slotRcvUdpSocketDeleted();
    void readPendingDatagrams();
    void handleStateChanged(QAudio::State state);

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    // Life cycle
    void buildForm();
    void connectMenus();
    void createTimers();
    void stopTimers();
    void setUpAlarmSound();
    void checkAlarmSound();
    ConfiguredDevice *deviceOf(const QString &key) const;
    AvailDevice *availDeviceOf(const QString &key) const;
    AvailDevice *addAvailDevice(const QString &key, InterfaceKind kind);
    void refreshActions();

    // USB loggers
    ConfiguredDevice *usbDeviceOf(const QString &key) const;
    void dropVanishedLoggers(const QList<UsbLogger> &found);
    void mergeUsbLoggers(const QList<UsbLogger> &found);
    void openOstrivaneDevices();
    void openUsbDevicesAnew();
    void openUsbDevice(ConfiguredDevice *device, const AvailDevice &record);
    void reopenClosedUsbDevices();
    void closeSerialDevices();
    void closeOstrivaneDevices();

    // Recording
    bool createInsertSerialData(const QString &path);
    void deleteInsertSerialData();
    void toggleRecordState(bool on);
    void writeRowsLeftOver();
    void saveRecordRange(quint32 start, quint32 end);
    void showRecordRange(quint32 start, quint32 end);
    void updateRecordRange(const QString &now);
    void slotWritingFailed(const QString &reason);
    void slotWritingRestored();

    // Discovery
    bool prepareSendSocket(const QHostAddress &local);
    void closeDiscoverySockets();
    void mergeDiscovered(const DiscoveryReply &reply);

    // Project flow
    std::unique_ptr<ProjectLock> lockProject(const QString &path);
    void adoptDevices(const QList<DeviceEntry> &entries);
    void adoptConfirmed(const QList<ConfiguredDevice *> &devices);
    QList<ConfiguredDevice *> unconfirmedDevices();
    void freeDevices(const QList<ConfiguredDevice *> &devices);
    void openProjectView();
    void leaveProject();
    void closeProject();
    void showProjectName();
    void showInterval();
    void reportUnsavedProject();

    // Screens
    void showStartScreen();
    ProjectManager *showProjectManager();
    void refreshFoundDevices();
    void showScreen(QWidget *screen);
    template <typename Screen>
    void discard(Screen *&screen);
    void discardScreens();

    // Shell
    void openSibling(const QString &program);
    void dropDown(QMenu *menu, const QWidget *button);
    void reportUnsavedSettings(bool saved);
    /// While the station is built it waits for the window: before that nobody would have the time to read it.
    void showTimedMessage(const QString &title, const QString &text);

    std::unique_ptr<Ui::SorvantoMain> m_form;
    AppSettings m_settings;
    bool m_bSettingsSaved = true;
    QString m_projectName;
    QString m_projectFile; ///< empty while no project is open or being created
    std::unique_ptr<ProjectLock> m_projectLock;
    QList<ConfiguredDevice *> m_configuredDevices;
    QList<AvailDevice *> m_availDeviceList;
    QHash<QString, AvailDevice *> m_availDeviceIndex; // of m_availDeviceList, by key
    QList<AvailDevice *> m_serialDeviceList;          // the USB records of m_availDeviceList
    QStringList m_dashboardNames;
    QString m_databasePath;
    QString m_dbConnectionName;

    bool m_bIsProjectOpen = false;
    bool m_bIsRecordStart = false;
    bool m_usbPresent = false;
    bool m_usbPresentBefore = false;
    bool m_bIsEnding = false;
    bool m_bIsBuilt = false;
    QList<std::pair<QString, QString>> m_messagesOfTheStart; ///< title and text

    MainMenus *m_menus = nullptr;
    QTimer *m_stdTimer = nullptr;
    QTimer *m_checkTimer = nullptr;
    QTimer *m_writeDeviceTimer = nullptr;
    QTimer *m_writeDbTimer = nullptr;
    InsertSerialData *m_insertSerialData = nullptr;
    QUdpSocket *m_sndUdpSocket = nullptr;
    QUdpSocket *m_rcvUdpSocket = nullptr;
    AlarmSound *m_alarmSound = nullptr;
    // The screen in the centre; the others are null.
    ProjectMain *m_projectMain = nullptr;
    ProjectManager *m_projectManager = nullptr;
    ProjectCenter *m_projectCenter = nullptr;
    QPixmap m_readyPixmap;
    QPixmap m_recordingPixmap;
};
