#pragma once

#include <QProcess>
#include <QString>

#include <functional>

/// A program beside the benchmark that ends with it, however it ends. Its diagnostics go to a file or are watched for
/// lines.
class StationRun
{
public:
    StationRun();
    ~StationRun();
    StationRun(const StationRun &) = delete;
    StationRun &operator=(const StationRun &) = delete;

    /// With a @p logFile waitForLine() never succeeds.
    bool start(const QStringList &program, const QProcessEnvironment &environment, const QString &logFile = {});
    bool isRunning() const;
    qint64 processId() const { return m_process.processId(); }
    /// Lets the loggers of this process serve until a line begins like this.
    bool waitForLine(const QByteArray &begin, int timeoutMs);
    /// Asks the program to end and lets the loggers serve meanwhile. False when it did not end well in time.
    bool end();
    /// What it said last, where that is known.
    QString lastWords() const;

private:
    QProcess m_process;
    QByteArray m_output;
};

/// Runs this process' event loop until the condition holds; false when it does not in time.
bool waitUntil(const std::function<bool()> &condition, int timeoutMs);
/// Runs this process' event loop for so long.
void letPass(int milliseconds);
