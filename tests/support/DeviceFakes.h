#pragma once

#include "device/DeviceViews.h"

#include <QStringList>
#include <functional>

/// Notes what a device told it, in order: "connected A1", "disconnected A1", "value 21.50".
class FakeTile : public ChannelTile
{
public:
    QStringList calls;
    /// Runs at the end of every call.
    std::function<void()> onCall;

    void setConnected(const QString &serialNumber) override { note(QStringLiteral("connected ") + serialNumber); }
    void setDisconnected(const QString &serialNumber) override { note(QStringLiteral("disconnected ") + serialNumber); }
    void setValue(const QString &text) override { note(QStringLiteral("value ") + text); }

private:
    void note(const QString &call)
    {
        calls << call;
        if (onCall)
            onCall();
    }
};

/// Keeps the newest arrays and texts; calls as in FakeTile, with "data 21.50 45.10" for updateData().
class FakeChart : public LiveChart
{
public:
    QStringList calls;
    History times{};
    History channel1{};
    History channel2{};

    void setConnected(const QString &serialNumber) override { calls << QStringLiteral("connected ") + serialNumber; }
    void setDisconnected(const QString &serialNumber) override
    {
        calls << QStringLiteral("disconnected ") + serialNumber;
    }
    void updateData(const History &newTimes, const History &newChannel1, const History &newChannel2,
                    const QString &text1, const QString &text2) override
    {
        times = newTimes;
        channel1 = newChannel1;
        channel2 = newChannel2;
        calls << QStringLiteral("data %1 %2").arg(text1, text2);
    }
};

/// Keeps every connection state it was given, in order.
class FakeListEntry : public ListEntry
{
public:
    QList<bool> states;

    void setConnectionState(bool connected) override { states << connected; }
};
