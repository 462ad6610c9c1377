#pragma once

#include "project/ProjectFile.h"
#include "support/RecordedRows.h"

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <vector>

class ScriptedLogger;
class SorvantoMain;

/// A folder with projects and recordings of its own, loggers on the loopback address that answer a new reading to every
/// poll, and user settings that start out empty.
class StationFixture
{
public:
    StationFixture();
    ~StationFixture();

    QString path(const QString &fileName) const;
    QString projectPath(const QString &name) const { return path(name + QStringLiteral(".tpc")); }
    QString recordingPath(const QString &name) const { return path(name + QStringLiteral(".dat")); }

    /// A new logger and the entry that reaches it.
    DeviceEntry addLogger();
    ScriptedLogger &logger(int index) { return *m_loggers.at(size_t(index)); }
    /// Readings answered by all loggers so far.
    int served() const { return m_served; }

    void writeProject(const QString &name, const QList<DeviceEntry> &devices, int intervalMs = 10000);
    /// The project as the most recent one, to be loaded at start.
    void listProject(const QString &name, bool autoLoad = true, bool autoRecord = false, bool keepAlive = false);

    /// The rows of a recording in the order they were stored.
    QList<RecordedRow> rows(const QString &name) const;
    int readingCount(const QString &name) const;

private:
    QByteArray nextReading();

    QTemporaryDir m_folder;
    std::vector<std::unique_ptr<ScriptedLogger>> m_loggers;
    int m_served = 0;
};

/// The window's widget or other child of that name; fails the program when there is none.
template <typename T>
T *child(const QObject &parent, const char *name)
{
    T *found = parent.findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("no object named %s", name);
    return found;
}

/// Texts of the messages that the window shows at present.
QStringList shownMessages();

class NullSinkServer;
/// What the stations of this program play to.
NullSinkServer &soundServer();

/// A test of the whole station needs a sound server before the application exists; the machine's own is left alone.
int runStationTest(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &createTest);

#define STATION_TEST_MAIN(TestClass)                                                                                   \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        return runStationTest(argc, argv, [] { return std::make_unique<TestClass>(); });                               \
    }
