#include "Operator.h"

#include "app/AudioOutput.h"
#include "device/DataInterval.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTcpSocket>
#include <QTimer>

namespace {

const QStringList actionsWithoutAProject{QStringLiteral("Auto Load Recent Project"),
                                         QStringLiteral("Auto Start Record"), QStringLiteral("Keep Socket Connection"),
                                         QStringLiteral("Exit"), QStringLiteral("FullScreen")};
const QStringList actionsWhileChoosing = QStringList{QStringLiteral("Close")} + actionsWithoutAProject;

} // namespace

/// The way of an operator from screen to screen: start screen, device manager, project and back.
class tst_ScreenFlow : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_op = std::make_unique<Operator>(); }
    void cleanup()
    {
        m_op.reset();
        QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
    }

    void beginsWithTheStartScreen();
    void keyboardFollowsTheScreens();
    void aNewProjectLeadsToTheManager();
    void aNewProjectIsConfirmed();
    void aConfirmedProjectIsLoadedAgain();
    void aProjectThatCannotBeWrittenIsNotCreated();
    void aRecentProjectOpensFromTheStartScreen();
    void aRecentProjectThatIsGoneLeavesTheStartScreen();
    void aDeletedProjectIsNotOfferedAtTheNextStart();
    void theDeviceSetIsEdited();
    void editingGivesTheManagerWhatTheProjectHas();
    void editingIsNoWayOutOfARecording();
    void editingSilencesTheAlarm();
    void closingFromTheManager_data();
    void closingFromTheManager();
    void closingWhileRecordingLeavesNoActionOn();
    void anIntervalThatWasNotConfirmedIsForgotten();
    void theWindowClosesFromEveryScreen_data();
    void theWindowClosesFromEveryScreen();

private:
    std::unique_ptr<Operator> m_op;
};

void tst_ScreenFlow::beginsWithTheStartScreen()
{
    QVERIFY(m_op->startScreen()->isVisible());
    QCOMPARE(m_op->startScreen()->parentWidget()->objectName(), QStringLiteral("centralFrame"));
    QCOMPARE(m_op->actions(), actionsWithoutAProject);
}

void tst_ScreenFlow::keyboardFollowsTheScreens()
{
    QCOMPARE(m_op->station->focusWidget(), child<QWidget>(*m_op->startScreen(), "btn_create"));
    m_op->createProject();
    QCOMPARE(m_op->station->focusWidget(), child<QWidget>(*m_op->manager(), "availlable_list"));
    m_op->addByHand();
    m_op->confirm();
    QCOMPARE(m_op->station->focusWidget(), child<QWidget>(*m_op->project(), "list_project"));
}

void tst_ScreenFlow::aNewProjectLeadsToTheManager()
{
    const QPointer<ProjectMain> left = m_op->startScreen();
    child<QPushButton>(*left, "btn_create")->click();
    auto *dialog = left->findChild<QFileDialog *>();
    dialog->setDirectory(m_op->fixture.path({}));
    auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    edit->setText(m_op->name);
    QTest::keyClick(edit, Qt::Key_Return);

    QVERIFY(m_op->manager()->isVisible());
    QVERIFY(!m_op->station->isProjectOpen());
    QCOMPARE(m_op->actions(), actionsWhileChoosing);
    QVERIFY(m_op->status("label_projectname").endsWith(QStringLiteral("/Kitchen.tpc")));
    QCOMPARE(m_op->status("label_interval"), QString());
    const ProjectFile file = m_op->projectFile();
    QCOMPARE(file.projectName(), m_op->name);
    QCOMPARE(file.dataInterval(), defaultDataIntervalMs);
    QCOMPARE(QFileInfo(file.databasePath()).fileName(), QStringLiteral("Kitchen.dat"));
    QVERIFY(child<QPushButton>(*m_op->manager(), "btn_timeInterval")->isEnabled());
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::aNewProjectIsConfirmed()
{
    m_op->createProject();
    const QPointer<ProjectManager> left = m_op->manager();
    const QPointer<ConfiguredDevice> first = m_op->addByHand();
    child<QTabWidget>(*left, "tabWidget")->setCurrentIndex(2);
    const QPointer<ConfiguredDevice> second = m_op->addByHand();
    child<QLineEdit>(*left, "lineEdit_dashboard_3")->setText(QStringLiteral("Cellar"));
    left->findChild<QMenu *>()->actions().first()->trigger();
    m_op->confirm();

    QVERIFY(m_op->project()->isVisible());
    QVERIFY(m_op->station->isProjectOpen());
    QCOMPARE(m_op->station->configuredDevices(), QList<ConfiguredDevice *>({first, second}));
    QCOMPARE(m_op->status("label_interval"), QStringLiteral("Interval : 1 sec"));
    QCOMPARE(
        m_op->actions(),
        QStringList({QStringLiteral("Add/Delete"), QStringLiteral("Close"), QStringLiteral("Auto Load Recent Project"),
                     QStringLiteral("Auto Start Record"), QStringLiteral("Keep Socket Connection"),
                     QStringLiteral("Refresh Devices"), QStringLiteral("Exit"), QStringLiteral("Lookback"),
                     QStringLiteral("Report"), QStringLiteral("FullScreen"), QStringLiteral("Expansion Mode")}));
    QVERIFY(child<QTimer>(*m_op->station, "writeDeviceTimer")->isActive());
    QCOMPARE(child<QTimer>(*m_op->station, "writeDeviceTimer")->interval(), 1000);
    QTRY_COMPARE(second->ch2Value(), QStringLiteral("45.10"));

    const ProjectFile file = m_op->projectFile();
    QCOMPARE(file.dataInterval(), 1000);
    QCOMPARE(file.dashboardNames(), QStringList({QStringLiteral("Dashboard 1"), QStringLiteral("Dashboard 2"),
                                                 QStringLiteral("Cellar"), QStringLiteral("Dashboard 4")}));
    QCOMPARE(file.readDevices()->size(), 2);
    QCOMPARE(file.readDevices()->at(1), entryOf(*second));
    QCOMPARE(second->dashboardNumber(), 2);
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::aConfirmedProjectIsLoadedAgain()
{
    m_op->createProject();
    m_op->addByHand();
    m_op->confirm();
    m_op->station->slotCloseProject();
    const QListWidget *recent = child<QListWidget>(*m_op->startScreen(), "listWidget");
    QCOMPARE(recent->count(), 1);
    emit m_op->startScreen()->slotRecentProject(recent->item(0));
    QVERIFY(m_op->station->isProjectOpen());
    QCOMPARE(m_op->station->configuredDevices().size(), 1);
    QTRY_VERIFY(m_op->station->configuredDevices().first()->isConnected());
}

void tst_ScreenFlow::aProjectThatCannotBeWrittenIsNotCreated()
{
    const QString path = m_op->projectPath();
    QVERIFY(QDir().mkpath(path)); // a folder in the file's place refuses even the superuser
    emit m_op->startScreen()->projectCreated(path);
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("Unable to save the project file.")});
    QVERIFY(m_op->startScreen());
    QVERIFY(!m_op->manager());
    QCOMPARE(m_op->actions(), actionsWithoutAProject);
}

void tst_ScreenFlow::aRecentProjectOpensFromTheStartScreen()
{
    m_op->fixture.writeProject(m_op->name, {m_op->fixture.addLogger()});
    m_op->fixture.listProject(m_op->name, false);
    m_op->startStation();
    const QPointer<ProjectMain> left = m_op->startScreen();
    QListWidget *recent = child<QListWidget>(*left, "listWidget");
    emit recent->itemActivated(recent->item(0));
    QVERIFY(m_op->project()->isVisible());
    QVERIFY(!m_op->startScreen());
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::aRecentProjectThatIsGoneLeavesTheStartScreen()
{
    m_op->fixture.writeProject(m_op->name, {});
    m_op->fixture.listProject(m_op->name, false);
    m_op->startStation();
    QVERIFY(QFile::remove(m_op->projectPath()));
    QListWidget *recent = child<QListWidget>(*m_op->startScreen(), "listWidget");
    emit recent->itemActivated(recent->item(0));
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("There is no device information!")});
    QVERIFY(m_op->startScreen());
    QVERIFY(!m_op->station->isProjectOpen());
}

void tst_ScreenFlow::aDeletedProjectIsNotOfferedAtTheNextStart()
{
    for (const QString &project : {QStringLiteral("Kitchen"), QStringLiteral("Lab")}) {
        m_op->fixture.writeProject(project, {});
        m_op->fixture.listProject(project, false);
    }
    QVERIFY(QFile::remove(m_op->projectPath()));
    m_op->startStation();
    const QStringList offered = rowTexts(*child<QListWidget>(*m_op->startScreen(), "listWidget"));
    QCOMPARE(offered.size(), 1);
    QVERIFY(offered.first().startsWith(QStringLiteral("Lab\t[")));
}

void tst_ScreenFlow::theDeviceSetIsEdited()
{
    QVERIFY(m_op->openProject(2, 1000)); // its links stay open
    const QPointer<ProjectCenter> left = m_op->project();
    const QList<ConfiguredDevice *> before = m_op->station->configuredDevices();
    for (const ConfiguredDevice *device : before)
        QVERIFY(device->isOpen());
    m_op->trigger("menu_view", QStringLiteral("Expansion Mode"));
    const LogCapture log;
    m_op->edit();

    QCOMPARE(log.count(QStringLiteral("SorvantoMain::deleteInsertSerialData()")), 1);
    QVERIFY(!m_op->station->isProjectOpen());
    QVERIFY(!action(*m_op->station, "menu_view", QStringLiteral("Expansion Mode"))->isChecked());
    QVERIFY(!child<QTimer>(*m_op->station, "writeDeviceTimer")->isActive());
    QCOMPARE(m_op->actions(), actionsWhileChoosing);
    for (const ConfiguredDevice *device : before)
        QVERIFY(!device->isOpen());
    m_op->station->writeDevice();
    QTRY_VERIFY(!left);

    const QPointer<ConfiguredDevice> added = m_op->addByHand();
    m_op->confirm();
    QVERIFY(m_op->station->isProjectOpen());
    QCOMPARE(m_op->station->configuredDevices(), before + QList<ConfiguredDevice *>{added});
    for (const ConfiguredDevice *device : m_op->station->configuredDevices())
        QTRY_COMPARE(device->ch2Value(), QStringLiteral("45.10"));
    QCOMPARE(m_op->projectFile().readDevices()->size(), 3);
    QVERIFY(m_op->actions().contains(QStringLiteral("Add/Delete")));
}

void tst_ScreenFlow::editingGivesTheManagerWhatTheProjectHas()
{
    QVERIFY(m_op->openProject(2, 300000));
    m_op->edit();
    QCOMPARE(rowTexts(*child<QListWidget>(*m_op->manager(), "configured_list_1")).size(), 2);
    QVERIFY(child<QListWidget>(*m_op->manager(), "configured_list_1")
                ->item(0)
                ->text()
                .startsWith(QStringLiteral("Room 1\t[")));
    QCOMPARE(child<QLineEdit>(*m_op->manager(), "lineEdit_dashboard_2")->text(), QStringLiteral("South"));
    QCOMPARE(m_op->status("label_interval"), QStringLiteral("Interval : 5 min"));
    QVERIFY(!child<QPushButton>(*m_op->manager(), "btn_timeInterval")->isEnabled());
    QVERIFY(!m_op->actions().contains(QStringLiteral("Keep Socket Connection")));
}

void tst_ScreenFlow::editingSilencesTheAlarm()
{
    QVERIFY(m_op->openProject(1));
    ConfiguredDevice *device = m_op->station->configuredDevices().first();
    device->setAlarmRange(90, 91, 0, 0);
    device->checkAlarmAll();
    m_op->station->slotStdTimer();
    const auto *sound = m_op->station->findChild<AudioOutput *>();
    QTRY_COMPARE(sound->state(), QAudio::ActiveState);
    m_op->edit();
    QCOMPARE(sound->state(), QAudio::StoppedState);
    // A reading that comes in all the same does not bring it back at the next tick.
    device->readData(QStringLiteral("20.00,45.10"));
    QVERIFY(device->alarmOnChannel1());
    m_op->station->slotStdTimer();
    QCOMPARE(sound->state(), QAudio::StoppedState);
}

void tst_ScreenFlow::editingIsNoWayOutOfARecording()
{
    QVERIFY(m_op->openProject(1));
    m_op->station->slotStartRecord();
    QVERIFY(!action(*m_op->station, "menu_project", QStringLiteral("Add/Delete"))->isEnabled());
    m_op->station->slotAddDeviceProject();
    QVERIFY(m_op->project());
    QVERIFY(m_op->station->isRecording());
    m_op->station->slotStopRecord();
    QVERIFY(action(*m_op->station, "menu_project", QStringLiteral("Add/Delete"))->isEnabled());
}

void tst_ScreenFlow::closingFromTheManager_data()
{
    QTest::addColumn<bool>("editing");
    QTest::newRow("new project") << false;
    QTest::newRow("devices of a project") << true;
}

void tst_ScreenFlow::closingFromTheManager()
{
    QFETCH(bool, editing);
    if (editing) {
        QVERIFY(m_op->openProject(1));
        m_op->edit();
    } else {
        m_op->createProject();
    }
    const QPointer<ProjectManager> left = m_op->manager();
    m_op->close();
    QVERIFY(m_op->startScreen()->isVisible());
    QVERIFY(!m_op->manager());
    QCOMPARE(m_op->actions(), actionsWithoutAProject);
    QCOMPARE(m_op->status("label_projectname"), QString());
    QVERIFY(m_op->station->configuredDevices().isEmpty());
    const auto devices = m_op->projectFile().readDevices();
    QCOMPARE(devices ? devices->size() : -1, editing ? 1 : -1);
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::closingWhileRecordingLeavesNoActionOn()
{
    QVERIFY(m_op->openProject(1));
    m_op->station->slotStartRecord();
    m_op->station->slotCloseProject();
    QCOMPARE(m_op->actions(), actionsWithoutAProject);
    QVERIFY(m_op->station->findChildren<QTcpSocket *>().isEmpty());
}

void tst_ScreenFlow::anIntervalThatWasNotConfirmedIsForgotten()
{
    m_op->createProject();
    const QList<QAction *> intervals = m_op->manager()->findChild<QMenu *>()->actions();
    intervals.at(4)->trigger();
    QCOMPARE(dataIntervalMs, 300000);
    m_op->station->slotCloseProject();
    QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
    QVERIFY(m_op->actions().contains(QStringLiteral("Keep Socket Connection")));
}

void tst_ScreenFlow::theWindowClosesFromEveryScreen_data()
{
    QTest::addColumn<int>("steps");
    QTest::newRow("start screen") << 0;
    QTest::newRow("manager of a new project") << 1;
    QTest::newRow("project") << 2;
    QTest::newRow("manager of a project") << 3;
}

void tst_ScreenFlow::theWindowClosesFromEveryScreen()
{
    QFETCH(int, steps);
    QPointer<ConfiguredDevice> device;
    if (steps > 0) {
        m_op->createProject();
        device = m_op->addByHand();
    }
    if (steps > 1)
        m_op->confirm();
    if (steps > 2)
        m_op->edit();
    QVERIFY(m_op->station->close());
    QVERIFY(!device);
    m_op->station.reset();
}

STATION_TEST_MAIN(tst_ScreenFlow)
#include "tst_ScreenFlow.moc"
