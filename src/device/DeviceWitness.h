#pragma once

#include <QString>

class ConfiguredDevice;

/// Why a logger that was connected is so no more.
enum class LossReason {
    NoAnswer,   ///< it missed too many replies
    LinkFailed, ///< its link told so
    Unplugged,  ///< it is no more among the loggers plugged in
    Closed      ///< the station closed the link itself
};

/// A channel that has left its range or is back in it.
struct AlarmChange
{
    int channel; ///< 1 or 2
    bool isOn;
    double value; ///< noValue when the alarm ended because the value went away
    float min;    ///< the limits in force
    float max;
};

/// Hears of what happens to a device once, as it happens, for those who keep account of it. Unlike a view it must not
/// have the device deleted inside a call.
class DeviceWitness
{
public:
    virtual ~DeviceWitness() = default;
    virtual void loggerConnected(const ConfiguredDevice &device) = 0;
    virtual void loggerLost(const ConfiguredDevice &device, LossReason reason) = 0;
    virtual void alarmChanged(const ConfiguredDevice &device, const AlarmChange &change) = 0;
    /// The pending range and rule are not in the logger for all the station knows; the old ones stay in force.
    virtual void exchangeFailed(const ConfiguredDevice &device, const QString &reason) = 0;
};
