#pragma once

#include <QString>
#include <array>

/// Samples of the live chart's history.
constexpr int historyLength = 240;
/// Oldest sample first; the newest is the last element.
using History = std::array<double, historyLength>;

// What a device pushes its news into. The views implement these; a device never owns or deletes them. A view
// may have the device deleted inside any of these calls; what it was handed dies with the device.

/// Shows one channel's newest value.
class ChannelTile
{
public:
    virtual ~ChannelTile() = default;
    virtual void setConnected(const QString &serialNumber) = 0;
    virtual void setDisconnected(const QString &serialNumber) = 0;
    virtual void setValue(const QString &text) = 0;
};

/// Charts both channels of the device it is attached to.
class LiveChart
{
public:
    virtual ~LiveChart() = default;
    virtual void setConnected(const QString &serialNumber) = 0;
    virtual void setDisconnected(const QString &serialNumber) = 0;
    virtual void updateData(const History &times, const History &channel1, const History &channel2,
                            const QString &text1, const QString &text2) = 0;
};

/// The device's row in the project list.
class ListEntry
{
public:
    virtual ~ListEntry() = default;
    virtual void setConnectionState(bool connected) = 0;
};
