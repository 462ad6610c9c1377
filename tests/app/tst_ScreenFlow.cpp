#include "StationParts.h"

#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "dialogs/ProjectMain.h"
#include "dialogs/ProjectManager.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"
#include "views/ProjectCenter.h"

#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
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
    void init()
    {
        m_fixture = std::make_unique<StationFixture>();
        m_station = std::make_unique<SorvantoMain>();
        m_station->show();
    }
    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
        QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
    }

    void beginsWithTheStartScreen();
    void aNewProjectLeadsToTheManager();
    void aNewProjectIsConfirmed();
    void aConfirmedProjectIsLoadedAgain();
    void aProjectThatCannotBeWrittenIsNotCreated();
    void aRecentProjectOpensFromTheStartScreen();
    void aRecentProjectThatIsGoneLeavesTheStartScreen();
    void theDeviceSetIsEdited();
    void editingGivesTheManagerWhatTheProjectHas();
    void editingIsNoWayOutOfARecording();
    void closingFromTheManager_data();
    void closingFromTheManager();
    void closingWhileRecordingLeavesNoActionOn();
    void anIntervalThatWasNotConfirmedIsForgotten();
    void theWindowClosesFromEveryScreen_data();
    void theWindowClosesFromEveryScreen();

private:
    ProjectMain *startScreen() const { return shownScreen<ProjectMain>(*m_station); }
    ProjectManager *manager() const { return shownScreen<ProjectManager>(*m_station); }
    ProjectCenter *project() const { return shownScreen<ProjectCenter>(*m_station); }
    void create(const QString &name);
    /// A logger, added by hand to the dashboard in front.
    QPointer<ConfiguredDevice> addByHand();
    void confirm() const { child<QPushButton>(*manager(), "btn_confirm")->click(); }
    void openProject(int loggers, int intervalMs = 10000);
    void edit() const { action(*m_station, "menu_project", QStringLiteral("Add/Delete"))->trigger(); }

    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

void tst_ScreenFlow::create(const QString &name)
{
    QVERIFY(QFile(m_fixture->projectPath(name)).open(QIODevice::WriteOnly));
    emit startScreen()->projectCreated(m_fixture->projectPath(name));
}

QPointer<ConfiguredDevice> tst_ScreenFlow::addByHand()
{
    const DeviceEntry entry = m_fixture->addLogger();
    auto *device = new ConfiguredDevice(entry.serialNumber, NetworkInterface);
    device->setDeviceInfo(entry.name, QStringLiteral("CH1"), QStringLiteral("CH2"), entry.address, entry.port);
    device->openDevice();
    manager()->slotManualConfigDevice(device);
    return device;
}

void tst_ScreenFlow::openProject(int loggers, int intervalMs)
{
    QList<DeviceEntry> entries;
    for (int i = 0; i < loggers; ++i)
        entries << m_fixture->addLogger();
    m_fixture->writeProject(m_name, entries, intervalMs);
    emit startScreen()->projectLoaded(m_fixture->projectPath(m_name));
    QVERIFY(project());
    for (const ConfiguredDevice *device : m_station->configuredDevices())
        QTRY_VERIFY(device->isConnected());
}

void tst_ScreenFlow::beginsWithTheStartScreen()
{
    QVERIFY(startScreen()->isVisible());
    QCOMPARE(startScreen()->parentWidget()->objectName(), QStringLiteral("centralFrame"));
    QCOMPARE(enabledActions(*m_station), actionsWithoutAProject);
}

void tst_ScreenFlow::aNewProjectLeadsToTheManager()
{
    const QPointer<ProjectMain> left = startScreen();
    child<QPushButton>(*left, "btn_create")->click();
    auto *dialog = left->findChild<QFileDialog *>();
    dialog->setDirectory(m_fixture->path({}));
    auto *edit = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    edit->setText(m_name);
    QTest::keyClick(edit, Qt::Key_Return);

    QVERIFY(manager()->isVisible());
    QVERIFY(!m_station->isProjectOpen());
    QCOMPARE(enabledActions(*m_station), actionsWhileChoosing);
    QVERIFY(labelText(*m_station, "label_projectname").endsWith(QStringLiteral("/Kitchen.tpc")));
    QCOMPARE(labelText(*m_station, "label_interval"), QString());
    const ProjectFile file(m_fixture->projectPath(m_name));
    QCOMPARE(file.projectName(), m_name);
    QCOMPARE(file.dataInterval(), defaultDataIntervalMs);
    QCOMPARE(QFileInfo(file.databasePath()).fileName(), QStringLiteral("Kitchen.dat"));
    QVERIFY(child<QPushButton>(*manager(), "btn_timeInterval")->isEnabled());
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::aNewProjectIsConfirmed()
{
    create(m_name);
    const QPointer<ProjectManager> left = manager();
    const QPointer<ConfiguredDevice> first = addByHand();
    child<QTabWidget>(*left, "tabWidget")->setCurrentIndex(2);
    const QPointer<ConfiguredDevice> second = addByHand();
    child<QLineEdit>(*left, "lineEdit_dashboard_3")->setText(QStringLiteral("Cellar"));
    left->findChild<QMenu *>()->actions().first()->trigger();
    confirm();

    QVERIFY(project()->isVisible());
    QVERIFY(m_station->isProjectOpen());
    QCOMPARE(m_station->configuredDevices(), QList<ConfiguredDevice *>({first, second}));
    QCOMPARE(labelText(*m_station, "label_interval"), QStringLiteral("Interval : 1 sec"));
    QCOMPARE(
        enabledActions(*m_station),
        QStringList({QStringLiteral("Add/Delete"), QStringLiteral("Close"), QStringLiteral("Auto Load Recent Project"),
                     QStringLiteral("Auto Start Record"), QStringLiteral("Keep Socket Connection"),
                     QStringLiteral("Refresh Devices"), QStringLiteral("Exit"), QStringLiteral("Lookback"),
                     QStringLiteral("Report"), QStringLiteral("FullScreen"), QStringLiteral("Expansion Mode")}));
    QVERIFY(child<QTimer>(*m_station, "writeDeviceTimer")->isActive());
    QCOMPARE(child<QTimer>(*m_station, "writeDeviceTimer")->interval(), 1000);
    QTRY_COMPARE(second->ch2Value(), QStringLiteral("45.10"));

    const ProjectFile file(m_fixture->projectPath(m_name));
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
    create(m_name);
    addByHand();
    confirm();
    m_station->slotCloseProject();
    const QListWidget *recent = child<QListWidget>(*startScreen(), "listWidget");
    QCOMPARE(recent->count(), 1);
    emit startScreen()->slotRecentProject(recent->item(0));
    QVERIFY(m_station->isProjectOpen());
    QCOMPARE(m_station->configuredDevices().size(), 1);
    QTRY_VERIFY(m_station->configuredDevices().first()->isConnected());
}

void tst_ScreenFlow::aProjectThatCannotBeWrittenIsNotCreated()
{
    const QString path = m_fixture->projectPath(m_name);
    QVERIFY(QDir().mkpath(path)); // a folder in the file's place refuses even the superuser
    emit startScreen()->projectCreated(path);
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("Unable to save the project file.")});
    QVERIFY(startScreen());
    QVERIFY(!manager());
    QCOMPARE(enabledActions(*m_station), actionsWithoutAProject);
}

void tst_ScreenFlow::aRecentProjectOpensFromTheStartScreen()
{
    m_fixture->writeProject(m_name, {m_fixture->addLogger()});
    m_fixture->listProject(m_name, false);
    m_station = std::make_unique<SorvantoMain>();
    m_station->show();
    const QPointer<ProjectMain> left = startScreen();
    QListWidget *recent = child<QListWidget>(*left, "listWidget");
    emit recent->itemActivated(recent->item(0));
    QVERIFY(project()->isVisible());
    QVERIFY(!startScreen());
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::aRecentProjectThatIsGoneLeavesTheStartScreen()
{
    m_fixture->writeProject(m_name, {});
    m_fixture->listProject(m_name, false);
    m_station = std::make_unique<SorvantoMain>();
    QVERIFY(QFile::remove(m_fixture->projectPath(m_name)));
    QListWidget *recent = child<QListWidget>(*startScreen(), "listWidget");
    emit recent->itemActivated(recent->item(0));
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("There is no device information!")});
    QVERIFY(startScreen());
    QVERIFY(!m_station->isProjectOpen());
}

void tst_ScreenFlow::theDeviceSetIsEdited()
{
    openProject(2);
    const QPointer<ProjectCenter> left = project();
    const QList<ConfiguredDevice *> before = m_station->configuredDevices();
    action(*m_station, "menu_view", QStringLiteral("Expansion Mode"))->trigger();
    const LogCapture log;
    edit();

    QCOMPARE(log.count(QStringLiteral("SorvantoMain::deleteInsertSerialData()")), 1);
    QVERIFY(!m_station->isProjectOpen());
    QVERIFY(!action(*m_station, "menu_view", QStringLiteral("Expansion Mode"))->isChecked());
    QVERIFY(!child<QTimer>(*m_station, "writeDeviceTimer")->isActive());
    QCOMPARE(enabledActions(*m_station), actionsWhileChoosing);
    for (const ConfiguredDevice *device : before)
        QVERIFY(!device->isOpen());
    m_station->writeDevice();
    QTRY_VERIFY(!left);

    const QPointer<ConfiguredDevice> added = addByHand();
    confirm();
    QVERIFY(m_station->isProjectOpen());
    QCOMPARE(m_station->configuredDevices(), before + QList<ConfiguredDevice *>{added});
    for (const ConfiguredDevice *device : m_station->configuredDevices())
        QTRY_COMPARE(device->ch2Value(), QStringLiteral("45.10"));
    QCOMPARE(ProjectFile(m_fixture->projectPath(m_name)).readDevices()->size(), 3);
    QVERIFY(enabledActions(*m_station).contains(QStringLiteral("Add/Delete")));
}

void tst_ScreenFlow::editingGivesTheManagerWhatTheProjectHas()
{
    openProject(2, 300000);
    edit();
    QCOMPARE(rowTexts(*child<QListWidget>(*manager(), "configured_list_1")).size(), 2);
    QVERIFY(
        child<QListWidget>(*manager(), "configured_list_1")->item(0)->text().startsWith(QStringLiteral("Room 1\t[")));
    QCOMPARE(child<QLineEdit>(*manager(), "lineEdit_dashboard_2")->text(), QStringLiteral("South"));
    QCOMPARE(labelText(*m_station, "label_interval"), QStringLiteral("Interval : 5 min"));
    QVERIFY(!child<QPushButton>(*manager(), "btn_timeInterval")->isEnabled());
    QVERIFY(!enabledActions(*m_station).contains(QStringLiteral("Keep Socket Connection")));
}

void tst_ScreenFlow::editingIsNoWayOutOfARecording()
{
    openProject(1);
    m_station->slotStartRecord();
    QVERIFY(!action(*m_station, "menu_project", QStringLiteral("Add/Delete"))->isEnabled());
    m_station->slotAddDeviceProject();
    QVERIFY(project());
    QVERIFY(m_station->isRecording());
    m_station->slotStopRecord();
    QVERIFY(action(*m_station, "menu_project", QStringLiteral("Add/Delete"))->isEnabled());
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
        openProject(1);
        edit();
    } else {
        create(m_name);
    }
    const QPointer<ProjectManager> left = manager();
    action(*m_station, "menu_project", QStringLiteral("Close"))->trigger();
    QVERIFY(startScreen()->isVisible());
    QVERIFY(!manager());
    QCOMPARE(enabledActions(*m_station), actionsWithoutAProject);
    QCOMPARE(labelText(*m_station, "label_projectname"), QString());
    QVERIFY(m_station->configuredDevices().isEmpty());
    const auto devices = ProjectFile(m_fixture->projectPath(m_name)).readDevices();
    QCOMPARE(devices ? devices->size() : -1, editing ? 1 : -1);
    QTRY_VERIFY(!left);
}

void tst_ScreenFlow::closingWhileRecordingLeavesNoActionOn()
{
    openProject(1);
    m_station->slotStartRecord();
    m_station->slotCloseProject();
    QCOMPARE(enabledActions(*m_station), actionsWithoutAProject);
    QVERIFY(m_station->findChildren<QTcpSocket *>().isEmpty());
}

void tst_ScreenFlow::anIntervalThatWasNotConfirmedIsForgotten()
{
    create(m_name);
    const QList<QAction *> intervals = manager()->findChild<QMenu *>()->actions();
    intervals.at(4)->trigger();
    QCOMPARE(dataIntervalMs, 300000);
    m_station->slotCloseProject();
    QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
    QVERIFY(enabledActions(*m_station).contains(QStringLiteral("Keep Socket Connection")));
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
        create(m_name);
        device = addByHand();
    }
    if (steps > 1)
        confirm();
    if (steps > 2)
        edit();
    QVERIFY(m_station->close());
    QVERIFY(!device);
    m_station.reset();
}

STATION_TEST_MAIN(tst_ScreenFlow)
#include "tst_ScreenFlow.moc"
