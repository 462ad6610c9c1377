#include "device/AttachedViews.h"

#include "device/ChannelHistory.h"

void AttachedViews::setListItem(ListEntry *entry)
{
    m_listItem = entry;
    if (entry)
        entry->setConnectionState(false);
}

void AttachedViews::setChart(LiveChart *chart)
{
    m_chart = chart;
}

void AttachedViews::setTiles(ChannelTile *channel1, ChannelTile *channel2)
{
    m_tile1 = channel1;
    m_tile2 = channel2;
}

void AttachedViews::detach()
{
    m_listItem = nullptr;
    m_chart = nullptr;
    m_tile1 = nullptr;
    m_tile2 = nullptr;
}

void AttachedViews::showConnected(const QString &serialNumber)
{
    const std::weak_ptr<char> life = m_life;
    if (m_listItem)
        m_listItem->setConnectionState(true);
    if (!life.expired() && m_chart)
        m_chart->setConnected(serialNumber);
    if (!life.expired() && m_tile1)
        m_tile1->setConnected(serialNumber);
    if (!life.expired() && m_tile2)
        m_tile2->setConnected(serialNumber);
}

void AttachedViews::showDisconnected(const QString &serialNumber)
{
    const std::weak_ptr<char> life = m_life;
    if (m_listItem)
        m_listItem->setConnectionState(false);
    if (!life.expired() && m_chart)
        m_chart->setDisconnected(serialNumber);
    if (!life.expired() && m_tile1)
        m_tile1->setDisconnected(serialNumber);
    if (!life.expired() && m_tile2)
        m_tile2->setDisconnected(serialNumber);
}

void AttachedViews::showReading(const ChannelHistory &history, const QString &text1, const QString &text2)
{
    const std::weak_ptr<char> life = m_life;
    if (m_chart)
        m_chart->updateData(history.times(), history.channel1(), history.channel2(), text1, text2);
    if (!life.expired() && m_tile1)
        m_tile1->setValue(text1);
    if (!life.expired() && m_tile2)
        m_tile2->setValue(text2);
}
