#pragma once

#include "LoggerProcess.h"
#include "Operator.h"
#include "support/SinkMonitor.h"

#include <QObject>
#include <QProcessEnvironment>
#include <functional>
#include <memory>

/// Everything around one operator: a home folder with settings of its own, loggers in the network, an ear on what the
/// station plays.
class OperatorDesk
{
public:
    /// With so many network loggers.
    explicit OperatorDesk(int loggers);
    ~OperatorDesk();

    /// Runs the station, from its splash to the end of the program, and has @p use called when its window is there.
    /// A station that is still running afterwards is told to end. Returns its exit code.
    static int runStation(const std::function<void()> &use);

    LoggerProcess &loggers() { return m_loggers; }
    SinkMonitor &ear() { return m_ear; }
    /// Whether the alarm is to be heard now.
    bool hearsAlarm();
    static QString home();
    /// Where the file dialogs begin.
    static QString documents() { return home() + QStringLiteral("/Documents"); }
    static QString path(const QString &fileName) { return documents() + QLatin1Char('/') + fileName; }
    /// For a station that runs as a program of its own.
    static QProcessEnvironment environment();

private:
    LoggerProcess m_loggers;
    SinkMonitor m_ear;
};

/// A test whose functions are parts of one operator's day: what follows a failed one is left out.
class OperatorTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

private:
    bool m_hasFailed = false;
};

/// A part of a test function, in a function of its own.
#define STEP(step)                                                                                                     \
    do {                                                                                                               \
        step();                                                                                                        \
        if (QTest::currentTestFailed())                                                                                \
            return;                                                                                                    \
    } while (false)

/// An operator's test: the screen is a real one, see at-a-desk; sound server and home folder are the test's own.
int runOperatorTest(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &createTest);

#define OPERATOR_TEST_MAIN(TestClass)                                                                                  \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        return runOperatorTest(argc, argv, [] { return std::make_unique<TestClass>(); });                              \
    }
