#pragma once

#include "app/ProjectClaim.h"
#include "app/ProjectDevices.h"
#include "app/ReachableLoggers.h"
#include "app/StartOptions.h"
#include "app/StationJournal.h"
#include "app/StationState.h"
#include "project/AppSettings.h"

#include <QAudio>
#include <QHostAddress>
#include <QList>
#include <QPixmap>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

class AlarmSound;
class InsertSerialData;
struct OpeningReport;
class MainMenus;
class PollPhase;
class ProjectCenter;
class ProjectMain;
class ProjectManager;
class RecordedRange;
class QMenu;
class QTimer;
class QUdpSocket;

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
    bool isEnding() const { return m_state.isEnding(); }
    bool isProjectOpen() const { return m_state.isProjectOpen(); }
    bool isRecording() const { return m_state.isRecording(); }
    /// Every logger in reach; the records belong to the controller and change with every scan.
    QList<AvailDevice *> availDevices() const { return m_availDevices.all(); }
    QList<ConfiguredDevice *> configuredDevices() const { return m_devices.all(); }

    /// Asks the network's loggers to announce themselves; answers join availDevices().
    void broadcastDevice();

    /// Replaces the source of the time of polls, for projects opened from then on.
    void setClock(const ConfiguredDevice::Clock &clock);

    /// Stops a running recording so that everything asked so far is in the file: answers on their way are awaited, for
    /// a second at most.
    void stopRunningRecording();
    /// Stops a running recording likewise, closes the window and ends the event loop.
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
    void startPolls();
    void awaitReadings();
    void setUpAlarmSound();
    void checkAlarmSound();
    void enter(StationState::Name state);

    // USB loggers
    void dropVanishedLoggers(const QList<UsbLogger> &found);
    void openOstrivaneDevices();
    void openUsbDevicesAnew();
    void openUsbDevice(ConfiguredDevice *device, const AvailDevice &record);
    void reopenClosedUsbDevices();
    void closeSerialDevices();
    void closeOstrivaneDevices();

    // Recording
    bool createInsertSerialData(const QString &path);
    bool openInsertSerialData();
    bool isRecordingReadOnly() const;
    void deleteInsertSerialData();
    void toggleRecordState(bool on);
    void writeRowsLeftOver();
    void reportSavedRows(const OpeningReport &report);
    void saveRecordRange(quint32 start, quint32 end);
    void showRecordRange(quint32 start, quint32 end);
    void updateRecordRange(const QString &now);
    void slotRangeKnown();
    void slotWritingFailed(const QString &reason);
    void slotWritingRestored();
    void slotReadingsDropped(int count);

    // Discovery
    void closeDiscoverySockets();
    void mergeDiscovered(const DiscoveryReply &reply);

    // Project flow
    bool claimProject(ProjectClaim &claim, const QString &path);
    bool claimRecording(ProjectClaim &claim, const QString &recording);
    void freeUnconfirmedDevices();
    void openProjectView();
    void leaveProject();
    void closeProject();
    void showProjectName();
    void showInterval();
    void reportCancelledExchanges();
    void reportUnsavedProject();
    void reportRefusedDevices(const QStringList &sentences);
    void reportDevicesTooMany();

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
    void showTimedMessage(const QString &title, const QString &text);
    void showCriticalBox(const QString &title, const QString &text);
    /// While the station is built it waits for the window: before that nobody would have the time to read it.
    void tell(const std::function<void()> &show);

    StationState m_state;
    std::unique_ptr<Ui::SorvantoMain> m_form;
    AppSettings m_settings;
    bool m_bSettingsSaved = true;
    QString m_projectName;
    QString m_projectFile;
    ProjectClaim m_claim;
    StationJournal m_journal; ///< the devices report to it until they are gone
    ProjectDevices m_devices;
    ReachableLoggers m_availDevices;
    QStringList m_dashboardNames;
    QString m_databasePath;
    QString m_dbConnectionName;

    bool m_usbPresent = false;
    bool m_usbPresentBefore = false;
    bool m_bIsBuilt = false;
    bool m_endsProgram = false;
    std::function<bool()> m_isEndRequested;
    std::function<void(const QString &text)> m_showOnSplash; ///< null once the station is built
    QList<std::function<void()>> m_toldWithTheWindow;

    MainMenus *m_menus = nullptr;
    QTimer *m_stdTimer = nullptr;
    QTimer *m_checkTimer = nullptr;
    QTimer *m_writeDeviceTimer = nullptr;
    QTimer *m_writeDbTimer = nullptr;
    PollPhase *m_pollPhase = nullptr;
    std::unique_ptr<InsertSerialData> m_insertSerialData;
    std::unique_ptr<RecordedRange> m_recordedRange; ///< while that is open
    QPointer<QUdpSocket> m_sndUdpSocket;
    QPointer<QUdpSocket> m_rcvUdpSocket;
    std::unique_ptr<AlarmSound> m_alarmSound;
    // The screen in the centre; the others are null.
    ProjectMain *m_projectMain = nullptr;
    ProjectManager *m_projectManager = nullptr;
    ProjectCenter *m_projectCenter = nullptr;
    QPixmap m_readyPixmap;
    QPixmap m_recordingPixmap;
};
