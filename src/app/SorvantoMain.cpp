#include "app/SorvantoMain.h"

#include "app/AlarmSound.h"
#include "app/Logging.h"
#include "app/MainMenus.h"
#include "app/PollPhase.h"
#include "app/StartUp.h"
#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "dialogs/SharpPixmap.h"
#include "store/InsertSerialData.h"
#include "store/RecordedRange.h"
#include "ui_SorvantoMain.h"
#include "views/ContentMinimum.h"
#include "views/ProjectCenter.h"

#include <QAction>
#include <QCloseEvent>
#include <QDateTime>
#include <QTimer>
#include <QUdpSocket>
#include <QUuid>
#include <algorithm>
#include <utility>

namespace {

constexpr int stdTimerMs = 1000;
constexpr int checkTimerMs = 1500;

// However short the stored interval, no logger is asked more often.
constexpr int shortestPollMs = 1000;

// Of the two seconds that an end may take.
constexpr int longestAwaitMs = 1000;

} // namespace

SorvantoMain::SorvantoMain(const StartOptions &start, QWidget *parent)
    : QWidget(parent),
      m_form(std::make_unique<Ui::SorvantoMain>()),
      m_devices(this),
      m_dbConnectionName(QString::fromLatin1(QUuid::createUuid().toString().toUtf8().toBase64())),
      m_isEndRequested(start.isEndRequested),
      m_showOnSplash(start.showOnSplash)
{
    buildForm();
    connect(&m_journal, &StationJournal::told, this,
            [this](const QString &sentence) { showTimedMessage(QStringLiteral("WARNING"), sentence); });
    connectMenus();
    m_settings.load();
    m_menus->autoProject->setChecked(m_settings.autoLoad);
    m_menus->autoRecord->setChecked(m_settings.autoRecord);
    m_menus->keepAlive->setChecked(m_settings.keepAlive);
    m_settings.pruneRecentProjects();
    createTimers();
    setUpAlarmSound();

    QString first = start.projectFile;
    if (first.isEmpty() && start.autoLoad)
        first = m_settings.autoLoadPath();
    if (!first.isEmpty() && !m_isEndRequested())
        projectLoaded(first);
    // Not before: a project takes its place at once.
    if (m_state.name() == StationState::StartScreen)
        showStartScreen();
    m_showOnSplash = nullptr;
    m_bIsBuilt = true;
}

SorvantoMain::~SorvantoMain()
{
    m_settings.saveAutoFlags();
    m_journal.programEnds();
    closeProject();
    stopTimers();
    closeOstrivaneDevices();
    // Some sound backends run the event loop while their output is destroyed, and the sockets report that they are
    // gone; that must not wait for the children's turn, when this window is no longer whole.
    m_alarmSound.reset();
    qDeleteAll(findChildren<QUdpSocket *>(QString(), Qt::FindDirectChildrenOnly));
}

void SorvantoMain::buildForm()
{
    m_form->setupUi(this);
    new QVBoxLayout(m_form->centralFrame);
    m_form->centralFrame->layout()->setContentsMargins(0, 0, 0, 0);
    new ContentMinimum(m_form->centralFrame);
    setWindowTitle(QStringLiteral("Sorvanto Lite"));
    m_form->label_version->setText(versionText());
    m_form->label_datetime->setText(QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yyyy HH:mm:ss")));
    m_readyPixmap = sharpPixmap(QStringLiteral(":/img/StateReady.png"));
    m_recordingPixmap = sharpPixmap(QStringLiteral(":/img/StateRecording.png"));
    m_form->label_top_logo->setPixmap(sharpPixmap(QStringLiteral(":/img/SorvantoLogoLite.png")));
    m_form->label_bottom_logo->setPixmap(sharpPixmap(QStringLiteral(":/img/OstrivaneLogo.png")));
    m_form->label_record_state->setPixmap(m_readyPixmap);

    connect(m_form->menuFrame, &TopCustomFrame::customDoubleClick, this, &SorvantoMain::topDblClick);
    connect(m_form->command_project, &QAbstractButton::clicked, this, &SorvantoMain::slotCommandProject);
    connect(m_form->command_record, &QAbstractButton::clicked, this, &SorvantoMain::slotCommandRecord);
    connect(m_form->command_screen, &QAbstractButton::clicked, this, &SorvantoMain::slotCommandScreen);
    connect(m_form->command_help, &QAbstractButton::clicked, this, &SorvantoMain::slotCommandHelp);
}

void SorvantoMain::connectMenus()
{
    m_menus = new MainMenus(this);
    connect(m_menus->addDelete, &QAction::triggered, this, &SorvantoMain::slotAddDeviceProject);
    connect(m_menus->close, &QAction::triggered, this, &SorvantoMain::slotCloseProject);
    connect(m_menus->autoProject, &QAction::triggered, this, &SorvantoMain::slotAutoProject);
    connect(m_menus->autoRecord, &QAction::triggered, this, &SorvantoMain::slotAutoRecord);
    connect(m_menus->keepAlive, &QAction::triggered, this, &SorvantoMain::slotKeepAlive);
    connect(m_menus->refreshDevices, &QAction::triggered, this, &SorvantoMain::slotRefreshDevice);
    connect(m_menus->exit, &QAction::triggered, this, &SorvantoMain::close);
    connect(m_menus->lookback, &QAction::triggered, this, &SorvantoMain::slotLookbackRecord);
    connect(m_menus->dailyReport, &QAction::triggered, this, &SorvantoMain::slotReportDaily);
    connect(m_menus->fullScreen, &QAction::triggered, this, &SorvantoMain::slotViewFull);
    connect(m_menus->expansionMode, &QAction::triggered, this, &SorvantoMain::slotShowHideItem);
    enter(StationState::StartScreen);
}

void SorvantoMain::createTimers()
{
    const auto createTimer = [this](const QString &name, void (SorvantoMain::*slot)()) {
        auto *timer = new QTimer(this);
        timer->setObjectName(name);
        connect(timer, &QTimer::timeout, this, slot);
        return timer;
    };
    m_stdTimer = createTimer(QStringLiteral("stdTimer"), &SorvantoMain::slotStdTimer);
    m_checkTimer = createTimer(QStringLiteral("checkTimer"), &SorvantoMain::checkConnection);
    m_writeDeviceTimer = createTimer(QStringLiteral("writeDeviceTimer"), &SorvantoMain::writeDevice);
    m_writeDbTimer = createTimer(QStringLiteral("writeDbTimer"), &SorvantoMain::writeDb);
    // A reading's time is the poll's, so polls must neither drift nor come early; the clock keeps their pace.
    m_stdTimer->setTimerType(Qt::PreciseTimer);
    m_writeDeviceTimer->setTimerType(Qt::PreciseTimer);
    m_pollPhase = new PollPhase(m_writeDeviceTimer, this);
    connect(m_pollPhase, &PollPhase::pollDue, this, &SorvantoMain::writeDevice);
    m_stdTimer->start(stdTimerMs);
    m_checkTimer->start(checkTimerMs);
}

void SorvantoMain::setUpAlarmSound()
{
    m_alarmSound = std::make_unique<AlarmSound>(this);
    connect(m_alarmSound.get(), &AlarmSound::stateChanged, this, &SorvantoMain::handleStateChanged);
    connect(m_alarmSound.get(), &AlarmSound::setUpFailed, this, &SorvantoMain::showCriticalBox);
    m_alarmSound->setUp();
}

void SorvantoMain::stopTimers()
{
    for (QTimer *timer : {m_writeDeviceTimer, m_checkTimer, m_stdTimer, m_writeDbTimer})
        timer->stop();
}

/// Every change of state goes through here: which actions are on follows from it.
void SorvantoMain::enter(StationState::Name state)
{
    m_state.become(state);
    m_journal.setRecording(isRecording());
    m_menus->setEnabledStates(actionStates(m_state, dataIntervalMs));
}

void SorvantoMain::setClock(const ConfiguredDevice::Clock &clock)
{
    m_pollPhase->setClock(clock);
    m_devices.setClock(clock);
    m_journal.setClock(clock);
}

void SorvantoMain::startPolls()
{
    m_pollPhase->start(qMax(shortestPollMs, dataIntervalMs));
}

void SorvantoMain::writeDevice()
{
    if (!isProjectOpen())
        return;
    if (m_insertSerialData)
        m_insertSerialData->saveQueuedRows();
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices)
        device->pollForRecord();
}

void SorvantoMain::slotStdTimer()
{
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    m_form->label_datetime->setText(now);
    m_journal.lookAtClock();
    writeRowsLeftOver();
    if (m_projectCenter)
        updateRecordRange(now);
    checkAlarmSound();
}

void SorvantoMain::slotRefreshDevice()
{
    if (!isProjectOpen())
        return;
    // A poll opens a closed port by the name it last had, which must be the present one.
    checkConnection();
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices)
        device->pollForDisplay();
}

void SorvantoMain::slotRefreshAvailDeviceList()
{
    checkConnection();
    refreshFoundDevices();
    broadcastDevice();
}

void SorvantoMain::slotKeepAlive(bool on)
{
    m_settings.keepAlive = on;
    reportUnsavedSettings(m_settings.saveAutoFlags());
    if (!isProjectOpen())
        return;
    const QList<ConfiguredDevice *> devices = m_devices.all();
    for (ConfiguredDevice *device : devices)
        device->setKeepConnection(on);
}

void SorvantoMain::stopRunningRecording()
{
    if (!isRecording())
        return;
    m_writeDeviceTimer->stop();
    awaitReadings();
    if (isRecording())
        slotStopRecord();
    if (isProjectOpen())
        startPolls();
}

/// Those on their way, which belong to the recording.
void SorvantoMain::awaitReadings()
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(longestAwaitMs);
    const auto isAwaited = [this] {
        const QList<ConfiguredDevice *> devices = m_devices.all();
        return std::any_of(devices.cbegin(), devices.cend(),
                           [](const ConfiguredDevice *device) { return device->awaitsReading(); });
    };
    // After a splash that nobody could interrupt the answers lie there, unread.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    while (isRecording() && limit.isActive() && isAwaited())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

void SorvantoMain::endProgram()
{
    if (std::exchange(m_endsProgram, true))
        return;
    stopRunningRecording();
    enter(StationState::Ending);
    close();
    QCoreApplication::exit(0);
}

void SorvantoMain::closeEvent(QCloseEvent *event)
{
    if (isRecording()) {
        event->ignore();
        return;
    }
    m_journal.programEnds();
    slotCloseProject();
    stopTimers();
    closeOstrivaneDevices();
    event->accept();
}
