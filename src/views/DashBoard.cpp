#include "views/DashBoard.h"

#include "device/ConfiguredDevice.h"
#include "ui_DashBoard.h"
#include "views/WindowIcon.h"

#include <algorithm>

namespace {

constexpr int rowCount = 4;
constexpr int columnCount = 8;
constexpr int columnsPerDevice = 2;

bool isOccupied(const QWidget *cell)
{
    const QObjectList &children = cell->children();
    return std::any_of(children.cbegin(), children.cend(), [](const QObject *child) {
        return child->objectName() == QLatin1String("DashBoardDeviceItem");
    });
}

} // namespace

DashBoard::DashBoard(QWidget *parent) : QWidget(parent), m_form(std::make_unique<Ui::DashBoard>())
{
    m_form->setupUi(this);
    ensureWindowIcon(this);
}

DashBoard::~DashBoard() = default;

void DashBoard::setDevices(const QList<ConfiguredDevice *> &devices)
{
    using Channel = DashBoardDeviceItem::Channel;
    // Before the tiles come, so that each of them looks up its styles when it is first shown, not with this page.
    ensurePolished();
    int row = 0;
    int column = 0;
    for (ConfiguredDevice *device : devices) {
        if (row == rowCount) {
            row = 0;
            column = (column + columnsPerDevice) % columnCount;
        }
        DashBoardDeviceItem *tile1 = addTile(device, Channel::One, row, column);
        DashBoardDeviceItem *tile2 = addTile(device, Channel::Two, row, column + 1);
        device->setTiles(tile1, tile2);
        ++row;
    }
}

/// A tile is made within its cell: put there later, it would look up all its styles again.
DashBoardDeviceItem *DashBoard::addTile(ConfiguredDevice *device, DashBoardDeviceItem::Channel channel, int row,
                                        int column)
{
    QWidget *cell = m_form->gridLayout_2->itemAtPosition(row, column)->widget();
    m_tiles.push_back(std::make_unique<DashBoardDeviceItem>(device, channel, cell));
    DashBoardDeviceItem *tile = m_tiles.back().get();
    connect(tile, &DashBoardDeviceItem::clicked, this, &DashBoard::slotClicked);
    cell->layout()->addWidget(tile);
    return tile;
}

void DashBoard::showEmptyCells(bool show)
{
    for (int i = 0; i < m_form->gridLayout_2->count(); ++i) {
        QWidget *cell = m_form->gridLayout_2->itemAt(i)->widget();
        if (!isOccupied(cell))
            cell->setVisible(show);
    }
}

void DashBoard::refreshTiles()
{
    for (const auto &tile : m_tiles)
        tile->refresh();
}

void DashBoard::slotClicked(ConfiguredDevice *device)
{
    emit dashboardClicked(device);
}
