#pragma once

#include "views/DashBoardDeviceItem.h"

#include <QList>
#include <QWidget>
#include <memory>
#include <vector>

class ConfiguredDevice;

namespace Ui {
class DashBoard;
}

/// One dashboard: a grid of 32 cells in which each device has two neighbouring tiles, down a pair of columns first.
class DashBoard : public QWidget
{
    Q_OBJECT

public:
    explicit DashBoard(QWidget *parent = nullptr);
    ~DashBoard() override;

    /// To be called once: the tiles of an earlier call stay. At most 16 devices; each is told its two tiles, which it
    /// must forget before this page goes away.
    void setDevices(const QList<ConfiguredDevice *> &devices);
    void showEmptyCells(bool show);
    void refreshTiles();

signals:
    void dashboardClicked(ConfiguredDevice *device);

private slots:
    void slotClicked(ConfiguredDevice *device);

private:
    DashBoardDeviceItem *addTile(ConfiguredDevice *device, DashBoardDeviceItem::Channel channel, int row, int column);

    std::unique_ptr<Ui::DashBoard> m_form;
    std::vector<std::unique_ptr<DashBoardDeviceItem>> m_tiles;
};
