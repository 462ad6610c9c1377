#pragma once

#include "device/DeviceViews.h"

#include <memory>

class ChannelHistory;

/// The views that one device pushes its news into. They are not owned and may be missing; any of them may have the
/// device deleted inside a call, and this with it: the others are not called any more then.
class AttachedViews
{
public:
    void setListItem(ListEntry *entry);
    void setChart(LiveChart *chart);
    void setTiles(ChannelTile *channel1, ChannelTile *channel2);
    void detach();

    void showConnected(const QString &serialNumber);
    void showDisconnected(const QString &serialNumber);
    void showReading(const ChannelHistory &history, const QString &text1, const QString &text2);

private:
    ListEntry *m_listItem = nullptr;
    LiveChart *m_chart = nullptr;
    ChannelTile *m_tile1 = nullptr;
    ChannelTile *m_tile2 = nullptr;
    const std::shared_ptr<char> m_life = std::make_shared<char>();
};
