#include "device/ConfiguredDevice.h"
#include "views/DashBoard.h"
#include "views/DashBoardDeviceItem.h"

#include <QGridLayout>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <vector>

namespace {

/// Devices "Room 1", "Room 2", … that forget their tiles before they go.
class Rooms
{
public:
    explicit Rooms(int count)
    {
        for (int i = 1; i <= count; ++i) {
            m_devices.push_back(
                std::make_unique<ConfiguredDevice>(QStringLiteral("0200AA%1").arg(i, 6, 10, QLatin1Char('0')), 2));
            m_devices.back()->setDeviceInfo(QStringLiteral("Room %1").arg(i), QStringLiteral("Air"),
                                            QStringLiteral("Damp"), QStringLiteral("10.0.0.%1").arg(i), 23);
        }
    }
    ~Rooms()
    {
        for (const auto &device : m_devices)
            device->detachViews();
    }
    ConfiguredDevice *at(int index) const { return m_devices.at(size_t(index)).get(); }
    QList<ConfiguredDevice *> all() const
    {
        QList<ConfiguredDevice *> list;
        for (const auto &device : m_devices)
            list << device.get();
        return list;
    }

private:
    std::vector<std::unique_ptr<ConfiguredDevice>> m_devices;
};

QWidget *cell(const QWidget &board, int number)
{
    return board.findChild<QWidget *>(QStringLiteral("widget_%1").arg(number, 2, 10, QLatin1Char('0')));
}

/// "Room 1 Air", or nothing for an empty cell.
QString shownIn(const QWidget *cell)
{
    const auto *device = cell->findChild<QLabel *>(QStringLiteral("label_device"));
    const auto *channel = cell->findChild<QLabel *>(QStringLiteral("label_desc"));
    return device ? device->text() + QLatin1Char(' ') + channel->text() : QString();
}

int visibleCells(const QWidget &board)
{
    int count = 0;
    for (int number = 1; number <= 32; ++number)
        count += cell(board, number)->isVisibleTo(&board);
    return count;
}

} // namespace

class tst_DashBoard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }

    void cellsFormTheGrid()
    {
        DashBoard board;
        QCOMPARE(board.objectName(), QStringLiteral("DashBoard"));
        QCOMPARE(board.size(), QSize(810, 404));
        auto *grid = board.findChild<QGridLayout *>(QStringLiteral("gridLayout_2"));
        QCOMPARE(grid->count(), 32);
        QCOMPARE(grid->spacing(), 4);
        QCOMPARE(grid->contentsMargins(), QMargins(4, 4, 4, 4));
        for (int row = 0; row < 4; ++row) {
            for (int column = 0; column < 8; ++column) {
                QWidget *widget = grid->itemAtPosition(row, column)->widget();
                QCOMPARE(widget, cell(board, 8 * row + column + 1));
                QCOMPARE(widget->layout()->spacing(), 0);
                QCOMPARE(widget->layout()->contentsMargins(), QMargins(0, 0, 0, 0));
            }
        }
        QCOMPARE(board.findChild<QWidget *>(QStringLiteral("frame_dashboard"))->styleSheet(),
                 QStringLiteral("background-color: rgb(89, 89, 89);"));
    }

    void emptyCellsAreDarkerThanTheBoard()
    {
        Rooms rooms(1);
        DashBoard board;
        board.setDevices(rooms.all());
        board.show();
        const QImage picture = board.grab().toImage();
        const auto colourAt = [&](const QPoint &at) {
            return picture.pixelColor(at * picture.devicePixelRatio());
        };
        QCOMPARE(colourAt({1, 1}), QColor(89, 89, 89));
        for (int number = 3; number <= 32; ++number) {
            const QWidget *empty = cell(board, number);
            if (!shownIn(empty).isEmpty())
                continue;
            for (const QPoint &at : {empty->rect().topLeft(), empty->rect().center(), empty->rect().bottomRight()})
                QCOMPARE(colourAt(empty->mapTo(&board, at)), QColor(82, 82, 82));
        }
    }

    void devicesFillColumnPairsDownwards()
    {
        Rooms rooms(16);
        DashBoard board;
        board.setDevices(rooms.all());
        for (int k = 0; k < 16; ++k) {
            const int first = 8 * (k % 4) + 2 * (k / 4) + 1;
            QCOMPARE(shownIn(cell(board, first)), QStringLiteral("Room %1 Air").arg(k + 1));
            QCOMPARE(shownIn(cell(board, first + 1)), QStringLiteral("Room %1 Damp").arg(k + 1));
        }
        QCOMPARE(shownIn(cell(board, 3)), QStringLiteral("Room 5 Air"));
    }

    void devicesKnowTheirTiles()
    {
        Rooms rooms(2);
        DashBoard board;
        board.setDevices(rooms.all());
        rooms.at(1)->readData(QStringLiteral("21.50,45.10"));
        QCOMPARE(cell(board, 9)->findChild<QLabel *>(QStringLiteral("label_number"))->text(), QStringLiteral("21.50"));
        QCOMPARE(cell(board, 10)->findChild<QLabel *>(QStringLiteral("label_number"))->text(), QStringLiteral("45.10"));
        QVERIFY(cell(board, 1)->findChild<QLabel *>(QStringLiteral("label_number"))->text().isEmpty());
    }

    void hidingEmptyCellsKeepsTheTiles()
    {
        Rooms rooms(5);
        DashBoard board;
        board.setDevices(rooms.all());
        board.show();
        QCOMPARE(visibleCells(board), 32);
        board.showEmptyCells(false);
        QCOMPARE(visibleCells(board), 10);
        for (const int number : {1, 2, 9, 10, 17, 18, 25, 26, 3, 4})
            QVERIFY(cell(board, number)->isVisible());
        board.showEmptyCells(true);
        QCOMPARE(visibleCells(board), 32);
    }

    void bothTilesClick()
    {
        Rooms rooms(2);
        DashBoard board;
        board.setDevices(rooms.all());
        board.show();
        QSignalSpy clicked(&board, &DashBoard::dashboardClicked);
        for (const int number : {9, 10}) {
            QTest::mouseClick(cell(board, number)->findChild<QLabel *>(QStringLiteral("label_unit")), Qt::LeftButton);
            QCOMPARE(clicked.count(), 1);
            QCOMPARE(clicked.takeFirst().first().value<ConfiguredDevice *>(), rooms.at(1));
        }
        QTest::mouseClick(cell(board, 32), Qt::LeftButton);
        QCOMPARE(clicked.count(), 0);
    }

    void refreshReachesEveryTile()
    {
        Rooms rooms(3);
        DashBoard board;
        board.setDevices(rooms.all());
        for (ConfiguredDevice *device : rooms.all())
            device->setDeviceInfo(QStringLiteral("Hall"), QStringLiteral("A"), QStringLiteral("B"), {}, 23);
        board.refreshTiles();
        for (const int number : {1, 9, 17}) {
            QCOMPARE(shownIn(cell(board, number)), QStringLiteral("Hall A"));
            QCOMPARE(shownIn(cell(board, number + 1)), QStringLiteral("Hall B"));
        }
    }

    void tilesDieWithTheirPage()
    {
        Rooms rooms(16);
        auto board = std::make_unique<DashBoard>();
        board->setDevices(rooms.all());
        QList<QPointer<DashBoardDeviceItem>> tiles;
        for (DashBoardDeviceItem *tile : board->findChildren<DashBoardDeviceItem *>())
            tiles << tile;
        QCOMPARE(tiles.size(), 32);
        board.reset();
        for (const QPointer<DashBoardDeviceItem> &tile : tiles)
            QVERIFY(!tile);
    }

    void nothingClipsOrOverlaps_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("smallest") << QSize();
        QTest::newRow("first size of the window") << QSize(824, 408);
        QTest::newRow("large screen") << QSize(1720, 920);
    }

    void nothingClipsOrOverlaps()
    {
        QFETCH(QSize, size);
        Rooms rooms(16);
        const QString name = QStringLiteral("The second cold room of warehouse North.");
        QCOMPARE(name.size(), 40);
        for (ConfiguredDevice *device : rooms.all()) {
            device->setDeviceInfo(name, name, name, {}, 23);
            device->setUnits(4, 4);
            device->setCustomUnits(QStringLiteral("milligrams per m3"), QStringLiteral("%RH"));
        }
        DashBoard board;
        board.setDevices(rooms.all());
        board.resize(size.isValid() ? size : board.minimumSizeHint());
        board.show();
        for (ConfiguredDevice *device : rooms.all())
            device->readData(QStringLiteral("-1234.56,45.10"));
        QSize tileSize;
        for (int number = 1; number <= 32; ++number) {
            const auto *tile = cell(board, number)->findChild<DashBoardDeviceItem *>();
            QCOMPARE(tile->size(), cell(board, number)->size());
            QVERIFY(tile->width() >= 97 && tile->height() >= 91);
            if (number > 1)
                QVERIFY(qAbs(tile->width() - tileSize.width()) <= 1 && qAbs(tile->height() - tileSize.height()) <= 1);
            tileSize = tile->size();
            for (const QLabel *label : tile->findChildren<QLabel *>()) {
                QVERIFY(label->parentWidget()->rect().contains(label->geometry()));
                const QSizeF text = QFontMetricsF(label->font()).size(Qt::TextSingleLine, label->text());
                QVERIFY2(text.height() <= label->height() + 1, qPrintable(label->objectName()));
                QVERIFY(text.width() <= label->width() || label->inherits("ElidedLabel"));
            }
        }
    }
};

QTEST_MAIN(tst_DashBoard)
#include "tst_DashBoard.moc"
