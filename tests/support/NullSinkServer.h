#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A PulseAudio server of the test's own whose only output is silent: what is played there, SinkMonitor hears.
/// Independent of any server, settings and sound card of the machine.
class NullSinkServer
{
public:
    NullSinkServer();
    ~NullSinkServer();
    NullSinkServer(const NullSinkServer &) = delete;
    NullSinkServer &operator=(const NullSinkServer &) = delete;

    /// Returns when clients can connect; false if the server ended or did not answer in time, see errorString().
    bool start();
    /// The server vanishes without a word to its clients.
    void kill();

    QString errorString() const { return m_error; }
    /// For the environment variable PULSE_SERVER, of this process or of a program under test.
    QString address() const;
    /// What a program needs to play here and nowhere else.
    QProcessEnvironment environment() const;
    /// The same for this process; to be called before the sound classes are first used, which read it once.
    void useHere() const;

    static QString monitorName();

private:
    QString socketPath() const;
    QStringList arguments() const;
    bool waitUntilListening();

    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_error;
};
