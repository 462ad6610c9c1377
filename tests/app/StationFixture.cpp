#include "StationFixture.h"

#include "app/StartUp.h"
#include "project/AppSettings.h"
#include "support/NullSinkServer.h"
#include "support/ScriptedLogger.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextBrowser>
#include <QUuid>

namespace {

NullSinkServer *theSoundServer = nullptr;

} // namespace

NullSinkServer &soundServer()
{
    return *theSoundServer;
}

StationFixture::StationFixture()
{
    QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite")).clear();
}

StationFixture::~StationFixture() = default;

QString StationFixture::path(const QString &fileName) const
{
    return m_folder.filePath(fileName);
}

DeviceEntry StationFixture::addLogger()
{
    auto logger = std::make_unique<ScriptedLogger>();
    logger->setScript([this](const QByteArray &command) {
        QList<QByteArray> replies;
        for (int i = 0; i < command.count("ATDC"); ++i)
            replies << nextReading();
        return replies;
    });
    DeviceEntry entry;
    const int number = int(m_loggers.size()) + 1;
    entry.name = QStringLiteral("Room %1").arg(number);
    entry.ch1Name = QStringLiteral("Temperature");
    entry.ch2Name = QStringLiteral("Humidity");
    entry.serialNumber = QStringLiteral("0200AA%1").arg(number, 6, 10, QLatin1Char('0'));
    entry.address = logger->address();
    entry.port = logger->port();
    m_loggers.push_back(std::move(logger));
    return entry;
}

QByteArray StationFixture::nextReading()
{
    ++m_served;
    return "ATDC " + QByteArray::number(20 + m_served * 0.01, 'f', 2) + ",45.10\r\n";
}

void StationFixture::writeProject(const QString &name, const QList<DeviceEntry> &devices, int intervalMs)
{
    ProjectFile file(projectPath(name));
    file.create(name, intervalMs);
    file.saveDevices(devices);
    file.saveLayout(intervalMs, {QStringLiteral("North"), QStringLiteral("South")});
}

void StationFixture::listProject(const QString &name, bool autoLoad, bool autoRecord, bool keepAlive)
{
    AppSettings settings;
    settings.load();
    settings.autoLoad = autoLoad;
    settings.autoRecord = autoRecord;
    settings.keepAlive = keepAlive;
    settings.saveAutoFlags();
    settings.addRecentProject(name, projectPath(name));
}

QList<RecordedRow> StationFixture::rows(const QString &name) const
{
    const QString connection = QUuid::createUuid().toString();
    QList<RecordedRow> all;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setDatabaseName(recordingPath(name));
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (database.open()) {
            QSqlQuery query(QStringLiteral("select serialno, channel1, channel2, pointDate from ostrivane order by id"),
                            database);
            while (query.next())
                all.append({query.value(0).toString(), query.value(1), query.value(2), query.value(3).toUInt()});
        }
    }
    QSqlDatabase::removeDatabase(connection);
    return all;
}

int StationFixture::readingCount(const QString &name) const
{
    const QList<RecordedRow> all = rows(name);
    return int(std::count_if(all.cbegin(), all.cend(), [](const RecordedRow &row) { return !row.isGap(); }));
}

QStringList shownMessages()
{
    QStringList texts;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        const auto *text = window->findChild<QTextBrowser *>(QStringLiteral("textBrowser"));
        if (text && text->window() == window && window->isVisible())
            texts << text->toPlainText();
    }
    return texts;
}

int runStationTest(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &createTest)
{
    NullSinkServer server;
    if (!server.start()) {
        qCritical("%s", qUtf8Printable(server.errorString()));
        return 1;
    }
    server.useHere();
    theSoundServer = &server;
    installMessagePattern();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return QTest::qExec(createTest().get(), argc, argv);
}
