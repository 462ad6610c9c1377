#include "loggersim/Fleet.h"
#include "loggersim/NetworkLogger.h"
#include "loggersim/ProjectWriter.h"
#include "loggersim/SerialLogger.h"

#include "device/ChannelUnit.h"
#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QFile>
#include <QMap>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace loggersim;

/// Reads what was written with the station's own classes.
class tst_ProjectWriter : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void projectFitsTheLoggers();
    void readingsAreWithinTheAlarmRange();
    void sixtyFourLoggersFillTheDashboards();
    void sixtyFiveLoggersAreTooMany();
    void folderThatIsNone();
    void earlierProjectIsReplaced();
    void settingsOpenTheProject_data();
    void settingsOpenTheProject();

private:
    void addNetworkLoggers(int count);
    QString path() const { return m_folder->filePath("Demo site.tpc"); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Fleet> m_fleet;
    QString m_error;
};

void tst_ProjectWriter::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_fleet = std::make_unique<Fleet>();
    m_error.clear();
}

void tst_ProjectWriter::addNetworkLoggers(int count)
{
    for (int i = 0; i < count; ++i)
        QVERIFY(m_fleet->addNetworkLogger(QHostAddress::LocalHost, 0, &m_error));
}

void tst_ProjectWriter::projectFitsTheLoggers()
{
    addNetworkLoggers(2);
    QVERIFY(m_fleet->addUsbLogger(&m_error));
    QVERIFY2(writeProject(path(), 5000, m_fleet->loggers(), &m_error), qPrintable(m_error));
    const ProjectFile file(path());
    QCOMPARE(file.projectName(), QString("Demo site"));
    QCOMPARE(file.dataInterval(), 5000);
    QCOMPARE(file.dashboardNames().size(), 4);
    QCOMPARE(file.databasePath(), m_folder->filePath("Demo site.dat"));

    const auto devices = file.readDevices();
    QVERIFY(devices);
    QCOMPARE(devices->size(), 3);
    const DeviceEntry first = devices->first();
    QCOMPARE(first.name, QString("Cold room 1"));
    QCOMPARE(first.serialNumber, m_fleet->loggers().first()->key());
    QCOMPARE(first.interfaceKind, int(NetworkInterface));
    QCOMPARE(first.address, QString("127.0.0.1"));
    QCOMPARE(first.port, m_fleet->loggers().first()->port());
    QCOMPARE(first.ch1Unit, int(CelsiusUnit));
    QCOMPARE(first.ch2Unit, int(HumidityUnit));
    QCOMPARE(first.buzzerAlarm, QString("OFF"));
    const DeviceEntry usb = devices->last();
    QCOMPARE(usb.serialNumber, QString("00001001"));
    QCOMPARE(usb.interfaceKind, int(UsbInterface));
    QCOMPARE(usb.address, QString("ttyACM0"));
    QCOMPARE(usb.port, quint16(23));
}

void tst_ProjectWriter::readingsAreWithinTheAlarmRange()
{
    addNetworkLoggers(16);
    QVERIFY(writeProject(path(), 1000, m_fleet->loggers(), &m_error));
    const auto devices = ProjectFile(path()).readDevices();
    QVERIFY(devices);
    for (int i = 0; i < 16; ++i) {
        const AlarmRange range = devices->at(i).range;
        QVERIFY(range.min1 < range.max1 && range.min2 < range.max2);
        for (int n = 0; n < 2000; ++n) {
            const auto reading = m_fleet->loggers().at(i)->curve().next();
            QVERIFY(reading.temperature > range.min1 * 100 && reading.temperature < range.max1 * 100);
            QVERIFY(reading.humidity > range.min2 * 100 && reading.humidity < range.max2 * 100);
        }
    }
}

void tst_ProjectWriter::sixtyFourLoggersFillTheDashboards()
{
    addNetworkLoggers(64);
    QVERIFY(writeProject(path(), 1000, m_fleet->loggers(), &m_error));
    QMap<int, int> perDashboard;
    QSet<QString> names;
    const auto devices = ProjectFile(path()).readDevices();
    QVERIFY(devices);
    for (const DeviceEntry &device : *devices) {
        ++perDashboard[device.dashboardNumber];
        names.insert(device.name);
    }
    QCOMPARE(perDashboard, (QMap<int, int>{{0, 16}, {1, 16}, {2, 16}, {3, 16}}));
    QCOMPARE(names.size(), 64);
}

void tst_ProjectWriter::sixtyFiveLoggersAreTooMany()
{
    addNetworkLoggers(65);
    QVERIFY(!writeProject(path(), 1000, m_fleet->loggers(), &m_error));
    QCOMPARE(m_error, QString("a project holds at most 64 loggers, not 65"));
    QVERIFY(!QFile::exists(path()));
}

void tst_ProjectWriter::folderThatIsNone()
{
    addNetworkLoggers(1);
    QFile file(m_folder->filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QString nowhere = file.fileName() + "/p.tpc";
    QVERIFY(!writeProject(nowhere, 1000, m_fleet->loggers(), &m_error));
    QCOMPARE(m_error, "cannot write " + nowhere);
}

void tst_ProjectWriter::earlierProjectIsReplaced()
{
    addNetworkLoggers(1);
    QVERIFY(writeProject(path(), 1000, m_fleet->loggers(), &m_error));
    addNetworkLoggers(1);
    QVERIFY(writeProject(path(), 10000, m_fleet->loggers(), &m_error));
    QCOMPARE(ProjectFile(path()).readDevices()->size(), 2);
    QCOMPARE(ProjectFile(path()).dataInterval(), 10000);
}

void tst_ProjectWriter::settingsOpenTheProject_data()
{
    QTest::addColumn<bool>("keepAlive");
    QTest::newRow("connections closed") << false;
    QTest::newRow("connections kept") << true;
}

void tst_ProjectWriter::settingsOpenTheProject()
{
    QFETCH(bool, keepAlive);
    addNetworkLoggers(1);
    QVERIFY(writeProject(path(), 1000, m_fleet->loggers(), &m_error));
    QVERIFY2(writeSettings(m_folder->filePath("config"), path(), keepAlive, &m_error), qPrintable(m_error));
    QVERIFY(QFile::exists(m_folder->filePath("config/SorvantoLite/Sorvanto Lite.conf")));
    AppSettings settings;
    settings.load();
    QCOMPARE(settings.autoLoadPath(), path());
    QVERIFY(settings.autoLoad);
    QVERIFY(settings.autoRecord);
    QCOMPARE(settings.keepAlive, keepAlive);
}

QTEST_GUILESS_MAIN(tst_ProjectWriter)
#include "tst_ProjectWriter.moc"
