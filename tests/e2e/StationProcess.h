#pragma once

#include <QProcess>
#include <QStringList>
#include <csignal>

/// The station as a program of its own, with a window that nobody sees. It ends with the test however the test ends.
class StationProcess
{
public:
    StationProcess();
    ~StationProcess();
    StationProcess(const StationProcess &) = delete;
    StationProcess &operator=(const StationProcess &) = delete;

    /// What to start, with its arguments, in place of the program of this build; and the folder that it starts in.
    void setCommand(const QStringList &command, const QString &folder);
    /// False when the program cannot be started. An ended station can be started again; its lines begin anew.
    bool start(const QProcessEnvironment &environment);
    bool isRunning() const;
    qint64 processId() const { return m_process.processId(); }
    /// Sends a signal and returns once the program has ended, while this process' event loop runs on. False when it
    /// does not end in time.
    bool end(int signalNumber = SIGTERM);
    /// Whether the last run returned from its main() with success.
    bool hasSucceeded() const;

    /// Everything the program has said since its start.
    const QStringList &lines() const { return m_lines; }
    /// How many lines begin with @p start.
    int count(const QString &start) const;
    /// How it ended and what it said last, for the message of a failing test.
    QByteArray lastWords() const;

private:
    void slotOutput();

    QStringList m_command;
    QProcess m_process;
    QStringList m_lines;
    QByteArray m_rest;
};
