#include "StationParts.h"

#include "device/ConfiguredDevice.h"
#include "device/DataInterval.h"
#include "dialogs/ProjectManager.h"
#include "project/IniFile.h"
#include "support/ScriptedLogger.h"

#include <QDir>
#include <QListWidget>
#include <QMessageBox>
#include <QScopeGuard>
#include <QSettings>
#include <QTcpSocket>
#include <QTimer>

/// Loading, showing and closing projects in the real window, against loggers on real sockets.
class tst_ProjectFlow : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<StationFixture>(); }

    void cleanup()
    {
        m_fixture.reset();
        QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
    }

    void startsWithoutAProject()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        m_fixture->listProject(QStringLiteral("Kitchen"), false);
        SorvantoMain station;
        QVERIFY(!station.isProjectOpen());
        QCOMPARE(station.windowTitle(), QStringLiteral("Sorvanto Lite"));
        QCOMPARE(labelText(station, "label_version"), QStringLiteral("V3.54"));
        QVERIFY(QDateTime::fromString(labelText(station, "label_datetime"), QStringLiteral("dd/MM/yyyy HH:mm:ss"))
                    .isValid());
        QCOMPARE(labelText(station, "label_projectname"), QString());
        QCOMPARE(enabledActions(station),
                 QStringList({QStringLiteral("Auto Load Recent Project"), QStringLiteral("Auto Start Record"),
                              QStringLiteral("Keep Socket Connection"), QStringLiteral("Exit"),
                              QStringLiteral("FullScreen")}));
        QTRY_VERIFY(QDateTime::fromString(labelText(station, "label_datetime"), QStringLiteral("yyyy-MM-dd HH:mm:ss"))
                        .isValid());
    }

    void loadsTheMostRecentProject()
    {
        const QList<DeviceEntry> devices{m_fixture->addLogger(), m_fixture->addLogger()};
        m_fixture->writeProject(QStringLiteral("Older"), {});
        m_fixture->listProject(QStringLiteral("Older"));
        m_fixture->writeProject(QStringLiteral("Kitchen"), devices);
        m_fixture->listProject(QStringLiteral("Kitchen"));
        SorvantoMain station;
        QVERIFY(station.isProjectOpen());
        QVERIFY(!station.isRecording());
        QCOMPARE(station.configuredDevices().size(), 2);
        QCOMPARE(labelText(station, "label_interval"), QStringLiteral("Interval : 10 sec"));
        QVERIFY(labelText(station, "label_projectname").endsWith(QStringLiteral("/Kitchen.tpc")));
        QVERIFY(QFile::exists(m_fixture->recordingPath(QStringLiteral("Kitchen"))));
        // Every device is polled at once, not only after the first interval.
        QTRY_COMPARE(station.configuredDevices().at(1)->ch2Value(), QStringLiteral("45.10"));
        QVERIFY(station.configuredDevices().at(0)->isConnected());
    }

    void keepsThePlaceOfAListedProject()
    {
        for (const char *name : {"First", "Second"}) {
            m_fixture->writeProject(QLatin1String(name), {});
            m_fixture->listProject(QLatin1String(name), false);
        }
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("First")));
        QCOMPARE(recentList(), QStringList({QStringLiteral("Second"), QStringLiteral("First")}));
        station.slotCloseProject();
        m_fixture->writeProject(QStringLiteral("Third"), {});
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Third")));
        QCOMPARE(recentList(),
                 QStringList({QStringLiteral("Third"), QStringLiteral("Second"), QStringLiteral("First")}));
    }

    void refusesAFileWithoutDevices()
    {
        const QString path = m_fixture->projectPath(QStringLiteral("Empty"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General]\nDeviceList=not json\n");
        file.close();
        SorvantoMain station;
        station.projectLoaded(path);
        QVERIFY(!station.isProjectOpen());
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("There is no device information!")});
        QVERIFY(recentList().isEmpty());
    }

    /// It would put a table into any database that a crafted project names.
    void aRecordingElsewhereIsNeverOpened()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        const QString path = m_fixture->projectPath(QStringLiteral("Kitchen"));
        const QString other = QFileInfo(path).absolutePath() + QStringLiteral("/sub/other.db");
        QVERIFY(QDir().mkpath(QFileInfo(other).absolutePath()));
        QVERIFY(rewriteIniFile(path, {{QStringLiteral("databaseName"), IniValue::fromText("sub/other.db")}}));
        SorvantoMain station;
        station.projectLoaded(path);
        QVERIFY(!station.isProjectOpen());
        QCOMPARE(shownMessages(), QStringList("The project is not opened: the name of its recording, \"sub/other.db\", "
                                              "is a path."));
        QVERIFY(!QFile::exists(other));
        QVERIFY(recentList().isEmpty());
    }

    /// Rows stored under another name than the device's would be lost to everybody.
    void aDeviceThatCannotBeRecordedIsLeftOutAndKept()
    {
        DeviceEntry entry = m_fixture->addLogger();
        m_fixture->writeProject(QStringLiteral("Kitchen"), {entry});
        const QString path = m_fixture->projectPath(QStringLiteral("Kitchen"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray text = file.readAll();
        const QByteArray refused =
            R"({\"DeviceName\": \"<b>Oven\",\"DeviceNumber\": \"\\uFEFF7\",\"DeviceType\": \"TELNET\"},)";
        text.replace("{\\\"devices\\\": [", "{\\\"devices\\\": [" + refused);
        file.seek(0);
        file.write(text);
        file.close();
        {
            SorvantoMain station;
            station.projectLoaded(path);
            QVERIFY(station.isProjectOpen());
            QCOMPARE(station.configuredDevices().size(), 1);
            const QString told("The device \"<b>Oven\" is left out: its number contains a byte-order mark.");
            QCOMPARE(shownMessages(), QStringList{told});
            station.slotUpdateProjectFile();
        }
        QCOMPARE(ProjectFile(path).readDevices()->size(), 1);
        QCOMPARE(ProjectFile(path).refusedDevices().size(), 1);
    }

    void devicesTooManyAreToldAndStayInTheFile()
    {
        QList<DeviceEntry> devices;
        for (int i = 0; i < 70; ++i) {
            DeviceEntry entry;
            entry.name = QStringLiteral("Room %1").arg(i);
            entry.serialNumber = QStringLiteral("0200AB%1").arg(i, 6, 10, QLatin1Char('0'));
            entry.address = QStringLiteral("127.0.0.1");
            entry.port = 9;
            entry.dashboardNumber = i % 6; // two of which there are not
            devices << entry;
        }
        const auto keysInFile = [this] {
            QStringList keys;
            const auto entries = ProjectFile(m_fixture->projectPath(QStringLiteral("Kitchen"))).readDevices();
            for (const DeviceEntry &entry : entries.value_or(QList<DeviceEntry>()))
                keys << entry.serialNumber;
            keys.sort();
            return keys;
        };
        m_fixture->writeProject(QStringLiteral("Kitchen"), devices, 600000);
        const QStringList before = keysInFile();
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QCOMPARE(shownMessages().size(), 1);
        QVERIFY(shownMessages().first().startsWith(QStringLiteral("The project lists 70 devices, and 64 can be")));
        QCOMPARE(station.configuredDevices().size(), 70);
        station.slotUpdateProjectFile();
        QCOMPARE(keysInFile(), before);
        station.slotAddDeviceProject();
        manager(station).slotProjectListConfirm();
        QCOMPARE(station.configuredDevices().size(), 70);
        QCOMPARE(keysInFile(), before);
        station.slotAddDeviceProject();
        station.slotCloseProject();
        QCOMPARE(keysInFile(), before);
        // What is removed by hand goes, and nothing else.
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        station.slotAddDeviceProject();
        child<QListWidget>(manager(station), "configured_list_1")->setCurrentRow(0);
        manager(station).slotProjectRemoveDevice();
        manager(station).slotProjectListConfirm();
        QStringList after = before;
        QVERIFY(after.removeOne(QStringLiteral("0200AB000000")));
        QCOMPARE(keysInFile(), after);
    }

    void aRefusedFileLeavesTheOpenProjectAlone()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        station.slotStartRecord();
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("absent")));
        QVERIFY(station.isProjectOpen());
        QVERIFY(station.isRecording());
        QCOMPARE(station.configuredDevices().size(), 1);
    }

    void anotherProjectReplacesTheOpenOne()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        m_fixture->writeProject(QStringLiteral("Lab"), {m_fixture->addLogger(), m_fixture->addLogger()});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        station.slotStartRecord();
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Lab")));
        QCOMPARE(station.configuredDevices().size(), 2);
        QVERIFY(!station.isRecording());
        QVERIFY(labelText(station, "label_projectname").endsWith(QStringLiteral("/Lab.tpc")));
    }

    void aKeyListedTwiceIsOneDevice()
    {
        const DeviceEntry network = m_fixture->addLogger();
        DeviceEntry usb = network;
        usb.interfaceKind = UsbInterface;
        m_fixture->writeProject(QStringLiteral("Kitchen"), {network, usb});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QCOMPARE(station.configuredDevices().size(), 1);
        // It stays what it was first, and is not treated as a USB logger that has to be found.
        QCOMPARE(station.configuredDevices().first()->interfaceKind(), int(NetworkInterface));
        QTRY_COMPARE(m_fixture->served(), 1);
    }

    void showsTheStoredName()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {});
        QVERIFY(QFile::rename(m_fixture->projectPath(QStringLiteral("Kitchen")),
                              m_fixture->projectPath(QStringLiteral("Copy"))));
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Copy")));
        QVERIFY(labelText(station, "label_projectname").endsWith(QStringLiteral("/Kitchen.tpc")));
    }

    void shortensALongFolder()
    {
        const QString folder = QString(60, QLatin1Char('f'));
        QVERIFY(QDir(m_fixture->path({})).mkdir(folder));
        m_fixture->writeProject(QStringLiteral("Kitchen"), {});
        const QString path = m_fixture->projectPath(folder + QStringLiteral("/Kitchen"));
        QVERIFY(QFile::rename(m_fixture->projectPath(QStringLiteral("Kitchen")), path));
        SorvantoMain station;
        station.projectLoaded(path);
        QCOMPARE(labelText(station, "label_projectname").section(QLatin1String(".../"), 0, 0), path.left(40));
    }

    void aMissingIntervalPollsOnceASecond()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        QSettings(m_fixture->projectPath(QStringLiteral("Kitchen")), QSettings::IniFormat)
            .remove(QStringLiteral("DataInterval"));
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QCOMPARE(dataIntervalMs, 0);
        QCOMPARE(labelText(station, "label_interval"), QStringLiteral("Interval : "));
        QCOMPARE(child<QTimer>(station, "writeDeviceTimer")->interval(), 1000);
    }

    void pollsWithAPreciseTimer()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {}, 5000);
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        const auto *timer = child<QTimer>(station, "writeDeviceTimer");
        QVERIFY(timer->isActive());
        QCOMPARE(timer->interval(), 5000);
        QCOMPARE(timer->timerType(), Qt::PreciseTimer);
        QCOMPARE(child<QTimer>(station, "stdTimer")->interval(), 1000);
        QCOMPARE(child<QTimer>(station, "checkTimer")->interval(), 1500);
        QVERIFY(!child<QTimer>(station, "writeDbTimer")->isActive());
    }

    void fiveMinutesHideKeepConnection()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {}, 300000);
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        const QAction *keepAlive = action(station, "menu_project", QStringLiteral("Keep Socket Connection"));
        QVERIFY(!keepAlive->isEnabled());
        station.slotCloseProject();
        QVERIFY(keepAlive->isEnabled());
    }

    void flagsAreKept_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        QTest::newRow("load") << "Auto Load Recent Project"
                              << "autoLoad";
        QTest::newRow("record") << "Auto Start Record"
                                << "autoRecord";
        QTest::newRow("keep") << "Keep Socket Connection"
                              << "keepAlive";
    }

    void flagsAreKept()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        {
            SorvantoMain station;
            QVERIFY(!action(station, "menu_project", text)->isChecked());
            action(station, "menu_project", text)->trigger();
            QCOMPARE(storedFlag(key), true);
        }
        SorvantoMain again;
        QVERIFY(action(again, "menu_project", text)->isChecked());
        action(again, "menu_project", text)->trigger();
        QCOMPARE(storedFlag(key), false);
    }

    void keepConnectionReachesTheLinks()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        m_fixture->listProject(QStringLiteral("Kitchen"), true, false, true);
        SorvantoMain station;
        QVERIFY(station.configuredDevices().first()->keepConnection());
        QTRY_VERIFY(station.configuredDevices().first()->isConnected());
        QVERIFY(station.configuredDevices().first()->isOpen());
        action(station, "menu_project", QStringLiteral("Keep Socket Connection"))->trigger();
        QVERIFY(!station.configuredDevices().first()->keepConnection());
        station.writeDevice();
        QTRY_VERIFY(!station.configuredDevices().first()->isOpen());
    }

    void closingLeavesNothingBehind()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger(), m_fixture->addLogger()}, 1000);
        SorvantoMain station;
        station.show();
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QTRY_COMPARE(m_fixture->logger(0).openConnections(), 1);
        QTRY_COMPARE(m_fixture->logger(1).openConnections(), 1);
        station.slotStartRecord();
        station.slotCloseProject();
        QVERIFY(!station.isProjectOpen());
        QVERIFY(!station.isRecording());
        QVERIFY(station.configuredDevices().isEmpty());
        QCOMPARE(dataIntervalMs, defaultDataIntervalMs);
        QCOMPARE(labelText(station, "label_projectname"), QString());
        QCOMPARE(labelText(station, "label_interval"), QString());
        QVERIFY(!child<QTimer>(station, "writeDeviceTimer")->isActive());
        QVERIFY(!child<QTimer>(station, "writeDbTimer")->isActive());
        QVERIFY(station.findChildren<QTcpSocket *>().isEmpty());
        QTRY_VERIFY(!station.findChild<QWidget *>(QStringLiteral("ProjectCenter")));
        QTRY_COMPARE(m_fixture->logger(0).openConnections(), 0);
        QTRY_COMPARE(m_fixture->logger(1).openConnections(), 0);
        QVERIFY(!enabledActions(station).contains(QStringLiteral("Close")));
    }

    void closesFromItsOwnMenu()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        action(station, "menu_project", QStringLiteral("Close"))->trigger();
        QVERIFY(!station.isProjectOpen());
    }

    void expansionModeHidesTheDeviceList()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        station.show();
        QAction *expansion = action(station, "menu_view", QStringLiteral("Expansion Mode"));
        expansion->trigger();
        QVERIFY(!child<QWidget>(station, "widget_list")->isVisible());
        expansion->trigger();
        QVERIFY(child<QWidget>(station, "widget_list")->isVisible());
        expansion->trigger();
        station.slotCloseProject();
        QVERIFY(!expansion->isChecked());
    }

    void doubleClickTogglesFullScreen()
    {
        SorvantoMain station;
        station.show();
        auto *band = child<QWidget>(station, "menuFrame");
        const QAction *fullScreen = action(station, "menu_view", QStringLiteral("FullScreen"));
        QTest::mouseDClick(band, Qt::LeftButton);
        QVERIFY(station.isFullScreen());
        QVERIFY(fullScreen->isChecked());
        QTest::mouseDClick(band, Qt::LeftButton);
        QVERIFY(!station.isFullScreen());
        QVERIFY(!fullScreen->isChecked());
    }

    void refreshAsksWithoutRecording()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()}, 600000);
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QTRY_COMPARE(m_fixture->served(), 1);
        QTRY_VERIFY(station.configuredDevices().first()->isConnected());
        station.slotStartRecord();
        action(station, "menu_project", QStringLiteral("Refresh Devices"))->trigger();
        QTRY_COMPARE(station.configuredDevices().first()->ch1Value(), QStringLiteral("20.02"));
        station.slotStopRecord();
        QCOMPARE(m_fixture->readingCount(QStringLiteral("Kitchen")), 0);
    }

    void saysWhenTheProjectCannotBeSaved()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        SorvantoMain station;
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        const QString path = m_fixture->projectPath(QStringLiteral("Kitchen"));
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path)); // a folder in the file's place refuses even the superuser
        station.slotUpdateProjectFile();
        QCOMPARE(shownMessages(), QStringList{QStringLiteral("Unable to save the project file.")});
    }

    void saysOnceWhenTheSettingsCannotBeSaved()
    {
        const QStringList message{QStringLiteral("Unable to save the settings.")};
        const QString path = QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite")).fileName();
        QFile::remove(path);
        QVERIFY(QDir().mkpath(path)); // a folder in the file's place refuses even the superuser
        const auto cleanUp = qScopeGuard([&path] { QDir().rmdir(path); });
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        SorvantoMain station;
        const auto toggle = [&station](const char *text) {
            action(station, "menu_project", QLatin1String(text))->trigger();
        };
        toggle("Auto Load Recent Project");
        QCOMPARE(shownMessages(), message);
        toggle("Auto Start Record");
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QVERIFY(station.isProjectOpen());
        QCOMPARE(shownMessages(), message);

        QVERIFY(QDir().rmdir(path));
        toggle("Auto Start Record");
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::remove(path));
        QVERIFY(QDir().mkpath(path));
        toggle("Keep Socket Connection");
        QCOMPARE(shownMessages(), message + message);
    }

    void aRecordingThatCannotBeCreatedEndsTheOpening()
    {
        m_fixture->writeProject(QStringLiteral("Kitchen"), {m_fixture->addLogger()});
        QVERIFY(QDir().mkpath(m_fixture->recordingPath(QStringLiteral("Kitchen"))));
        SorvantoMain station;
        QStringList boxes;
        QTimer boxWatch;
        connect(&boxWatch, &QTimer::timeout, this, [&boxes] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                boxes << box->windowTitle() + QLatin1Char('|') + box->text();
                box->accept();
            }
        });
        boxWatch.start(10);
        station.projectLoaded(m_fixture->projectPath(QStringLiteral("Kitchen")));
        QCOMPARE(boxes, QStringList{QStringLiteral("ERROR|Create database error!\nExit program.")});
        QVERIFY(station.isEnding());
        QVERIFY(!station.isProjectOpen());
        QVERIFY(station.configuredDevices().isEmpty());
        QCOMPARE(m_fixture->logger(0).accepted(), 0);
    }

private:
    static ProjectManager &manager(SorvantoMain &station)
    {
        // Those that were there before are still to be deleted.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return *station.findChild<ProjectManager *>();
    }

    static QStringList recentList()
    {
        return QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"))
            .value(QStringLiteral("RecentProjects/list"))
            .toStringList();
    }

    static bool storedFlag(const QString &key)
    {
        return QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite"))
            .value(QStringLiteral("RecentProjects/") + key)
            .toBool();
    }

    std::unique_ptr<StationFixture> m_fixture;
};

STATION_TEST_MAIN(tst_ProjectFlow)
#include "tst_ProjectFlow.moc"
