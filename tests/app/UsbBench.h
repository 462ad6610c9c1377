#pragma once

#include "StationFixture.h"

#include "loggersim/SerialLogger.h"
#include "loggersim/UsbTree.h"

#include <map>

class AvailDevice;
class ConfiguredDevice;

/// A recording station and USB loggers that a test plugs in and pulls out. Loggers go by a number, and logger N only
/// ever reads values around 10 N on both channels, so that a reading tells where it came from.
/// The test scans and polls by itself; the station's own timers for that rest unless letTimersRun() is called.
class UsbBench
{
public:
    UsbBench();
    ~UsbBench();

    /// Made when first asked for, not plugged in yet.
    loggersim::SerialLogger &logger(int number);
    /// Makes a logger that calls itself like another one; to be called before anything else is asked of it.
    void makeDouble(int number, int of);
    static QString key(int number);
    /// The port a logger gets in that socket; sockets are numbered like the loggers that begin in them.
    static QString port(int socket);
    void plugIn(int number, int socket);
    void plugIn(int number) { plugIn(number, number); }
    void pullOut(int number) { logger(number).pullOut(); }

    /// A device of the project, whose file says that it was last seen in @p socket.
    DeviceEntry entry(int number, int socket);
    /// Writes the project, opens it and starts recording.
    void open(const QList<DeviceEntry> &devices);
    void open(std::initializer_list<int> numbers);
    void letTimersRun(int intervalMs);

    StationFixture &fixture() { return m_fixture; }
    SorvantoMain &station() { return *m_station; }
    QString projectPath() const { return m_fixture.projectPath(m_name); }
    void scan();
    /// Null when it is not in the project.
    ConfiguredDevice *device(int number) const;
    bool isOpen(int number) const;
    /// The keys of the USB loggers that the station sees.
    QStringList keysInReach() const;
    /// Where the project file says that the logger is.
    QString savedPort(int number) const;
    /// Whether one more poll of all devices brings one more reading of this logger.
    bool answers(int number);

    /// Stops recording; what is wrong with the rows, or nothing. Every reading must be its own logger's.
    QString endAndJudgeRows();

private:
    QString m_name = QStringLiteral("Kitchen");
    StationFixture m_fixture;
    loggersim::UsbTree m_tree;
    std::map<int, std::unique_ptr<loggersim::SerialLogger>> m_loggers;
    std::unique_ptr<SorvantoMain> m_station;
};
