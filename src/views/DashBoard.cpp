#include "views/DashBoard.h"

#include "device/ConfiguredDevice.h"
#include "ui_DashBoard.h"
#include "views/DashBoardDeviceItem.h"

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
}

DashBoard::~DashBoard() = default;

void DashBoard::setDevices(const QList<ConfiguredDevice *> &devices)
{
    using Channel = DashBoardDeviceItem::Channel;
    int row = 0;
    int column = 0;
    for (ConfiguredDevice *device : devices) {
        if (row == rowCount) {
            row = 0;
            column = (column + columnsPerDevice) % columnCount;
        }
        DashBoardDeviceItem *tile1 = addTile(std::make_unique<DashBoardDeviceItem>(device, Channel::One), row, column);
        DashBoardDeviceItem *tile2 =
            addTile(std::make_unique<DashBoardDeviceItem>(device, Channel::Two), row, column + 1);
        device->setTiles(tile1, tile2);
        ++row;
    }
}

DashBoardDeviceItem *DashBoard::addTile(std::unique_ptr<DashBoardDeviceItem> tile, int row, int column)
{
    connect(tile.get(), &DashBoardDeviceItem::clicked, this, &DashBoard::slotClicked);
    m_form->gridLayout_2->itemAtPosition(row, column)->widget()->layout()->addWidget(tile.get());
    m_tiles.push_back(std::move(tile));
    return m_tiles.back().get();
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
