#pragma once

#include "ServedReadings.h"
#include "StationProcess.h"
#include "support/NullSinkServer.h"

#include "loggersim/NetworkLogger.h"
#include "loggersim/SerialLogger.h"
#include "loggersim/UsbTree.h"

#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

/// A station with everything around it: network loggers in this process, a project and settings that make it open that
/// project and record, both in a folder of their own, and a sound server.
class E2eFixture
{
public:
    /// @p projectFolder is for the project and its recording; empty: somewhere of its own.
    explicit E2eFixture(const QString &projectFolder = {});
    ~E2eFixture();

    /// Without a @p key it gets one of its own.
    loggersim::NetworkLogger &addLogger(const QString &fault = QStringLiteral("none"), const QString &key = {});
    loggersim::NetworkLogger &logger(int index) { return *m_loggers.at(size_t(index)); }
    int loggerCount() const { return int(m_loggers.size()); }
    /// Plugged in; served() and the like do not count it.
    loggersim::SerialLogger &addUsbLogger();
    loggersim::SerialLogger &usbLogger(int index) { return *m_usbLoggers.at(size_t(index)); }
    int usbLoggerCount() const { return int(m_usbLoggers.size()); }
    ServedReadings &servedByUsb(int index) { return *m_servedByUsb.at(size_t(index)); }
    void setFault(int index, const QString &fault);
    /// Gives every logger this fault.
    void setFaults(const QString &fault);
    /// Lets the first @p loggers fall silent until the station has twice asked them in vain: then no reading of theirs
    /// is on its way any more.
    bool fallSilent(int loggers);
    bool fallSilent() { return fallSilent(loggerCount()); }

    ServedReadings &served(int index) { return *m_served.at(size_t(index)); }
    const ServedReadings &served(int index) const { return *m_served.at(size_t(index)); }
    /// Whether each of the first @p loggers has served so many readings.
    bool haveServed(int readings, int loggers) const;
    bool haveServed(int readings) const { return haveServed(readings, loggerCount()); }

    /// Starts this, in this folder, in place of the program of this build. No project loads by itself then, so that the
    /// command has to name it.
    void setCommand(const QStringList &command, const QString &folder = {});
    /// Starts the station on a project with the loggers added so far, polled every interval. Only the first start
    /// writes the project. False, with a reason, when something cannot be set up.
    bool start();
    QByteArray startError() const { return m_error.toLocal8Bit(); }
    StationProcess &station() { return m_station; }
    const StationProcess &station() const { return m_station; }
    /// Which diagnostic lines the station prints; the wire is silent unless asked for.
    void setLogRules(const QString &rules) { m_logRules = rules; }
    /// Between polls; a second without it.
    void setInterval(int milliseconds) { m_intervalMs = milliseconds; }
    /// Puts a variable into the environment of the stations that are started from now on, in place of what it has
    /// there.
    void setVariable(const QString &name, const QString &value) { m_variables.insert(name, value); }

    /// Each time the station waits for the disk it waits so long at most, at random, on top.
    void setSlowDisk(int mostMs) { m_slowDiskMs = mostMs; }

    /// Lets the loggers serve until the condition holds. False when the station ends before, or after minutes.
    bool waitUntil(const std::function<bool()> &condition) const;

    QString projectFile() const { return m_projectFolder + QStringLiteral("/Kitchen.tpc"); }
    QString recordingFile() const { return m_projectFolder + QStringLiteral("/Kitchen.dat"); }
    QString spool() const { return recordingFile() + QStringLiteral(".spool"); }
    QString projectValue(const QString &key) const;
    QList<RecordedRow> rows() const;
    /// Rows in the recording that carry values, of all loggers.
    int readingCount() const;
    QString integrity() const;

    /// ServedReadings::differences() of the first @p loggers, one a line.
    QByteArray differences(int loggers, bool lastMayMiss = true) const;
    QByteArray differences(bool lastMayMiss = true) const { return differences(loggerCount(), lastMayMiss); }

private:
    bool writeFiles();
    QProcessEnvironment environment() const;

    QTemporaryDir m_folder;
    QString m_projectFolder;
    QString m_logRules;
    int m_slowDiskMs = 0;
    int m_intervalMs = 1000;
    QProcessEnvironment m_variables;
    QString m_error;
    NullSinkServer m_soundServer;
    std::vector<std::unique_ptr<ServedReadings>> m_served;
    std::vector<std::unique_ptr<loggersim::NetworkLogger>> m_loggers;
    std::unique_ptr<loggersim::UsbTree> m_usbTree;
    std::vector<std::unique_ptr<ServedReadings>> m_servedByUsb;
    std::vector<std::unique_ptr<loggersim::SerialLogger>> m_usbLoggers;
    StationProcess m_station;
    bool m_isSetUp = false;
    bool m_loadsByItself = true;
};
