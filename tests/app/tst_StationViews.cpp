#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "support/ScriptedLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"
#include "views/StateBackground.h"

#include <QFrame>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>

namespace {

bool showsPicture(const QListWidgetItem *item, const char *picture)
{
    const QIcon expected(QStringLiteral(":/img/%1.png").arg(QLatin1String(picture)));
    return item->icon().pixmap(16, 16).toImage() == expected.pixmap(16, 16).toImage();
}

} // namespace

/// What the operator sees while loggers come and go on real sockets.
class tst_StationViews : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture = std::make_unique<StationFixture>(); }
    void cleanup()
    {
        m_station.reset();
        m_fixture.reset();
    }

    void viewsFollowALogger();
    void dashboardsCarryTheProjectsNames();
    void aClosedProjectsPanelIsDead();
    void aProjectInPlaceOfAnotherLeavesNoView();
    void tilesNeverOverlap_data();
    void tilesNeverOverlap();
    void windowShrinksAgainAfterAFullScreen();
    void expansionModeHidesTheList();

private:
    void open(int devices);
    void poll() { m_station->writeDevice(); }
    QWidget *page(int index) const { return child<QTabWidget>(*m_station, "tabWidget")->widget(index); }
    QList<DashBoardDeviceItem *> tiles() const { return page(0)->findChildren<DashBoardDeviceItem *>(); }
    QListWidgetItem *row(int index) const { return child<QListWidget>(*m_station, "list_project")->item(index); }
    QString chartText(const char *label) const
    {
        return child<QLabel>(*m_station->findChild<ChartView *>(), label)->text();
    }
    void expectTile(int index, StateBackground background, const QString &value);
    void expectChart(int channel, StateBackground background, const QString &value);

    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<SorvantoMain> m_station;
};

void tst_StationViews::open(int devices)
{
    QList<DeviceEntry> entries;
    for (int i = 0; i < devices; ++i)
        entries << m_fixture->addLogger();
    entries[0].range = {2, 8, 0, 0};
    m_fixture->writeProject(QStringLiteral("Freezer"), entries, 600000);
    m_fixture->logger(0).setReply("ATDC 5.00,45.10\r\n");
    m_station = std::make_unique<SorvantoMain>();
    m_station->show();
    m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Freezer")));
    QTRY_VERIFY(m_station->configuredDevices().first()->isConnected());
}

void tst_StationViews::expectTile(int index, StateBackground background, const QString &value)
{
    const DashBoardDeviceItem *tile = tiles().at(index);
    QTRY_COMPARE(child<QFrame>(*tile, "frame_value")->styleSheet(), styleSheetOf(background));
    QTRY_COMPARE(child<QLabel>(*tile, "label_number")->text(), value);
}

void tst_StationViews::expectChart(int channel, StateBackground background, const QString &value)
{
    const auto *chart = m_station->findChild<ChartView *>();
    const bool first = channel == 1;
    const auto *frame = child<QFrame>(*chart, first ? "frame_ch1_value" : "frame_ch2_value");
    QTRY_COMPARE(frame->styleSheet(), styleSheetOf(background));
    QTRY_COMPARE(chartText(first ? "label_ch1_number" : "label_ch2_number"), value);
}

void tst_StationViews::viewsFollowALogger()
{
    open(1);
    expectTile(0, StateBackground::Normal, QStringLiteral("5.00"));
    expectTile(1, StateBackground::Normal, QStringLiteral("45.10"));
    QVERIFY(showsPicture(row(0), "DeviceConnectingSymbol"));

    QTest::mouseClick(tiles().first(), Qt::LeftButton);
    QVERIFY(m_station->findChild<ChartView *>()->isVisible());
    QCOMPARE(chartText("label_device"), QStringLiteral("Room 1"));
    expectChart(1, StateBackground::Normal, QStringLiteral("5.00"));

    m_fixture->logger(0).setReply("ATDC 9.00,45.10\r\n");
    poll();
    expectChart(1, StateBackground::Alarm, QStringLiteral("9.00"));
    expectChart(2, StateBackground::Normal, QStringLiteral("45.10"));
    expectTile(0, StateBackground::Alarm, QStringLiteral("9.00"));
    expectTile(1, StateBackground::Normal, QStringLiteral("45.10"));

    m_fixture->logger(0).setSilent();
    QSignalSpy asked(&m_fixture->logger(0), &ScriptedLogger::commandReceived);
    for (int i = 1; i <= 2; ++i) {
        poll();
        QTRY_COMPARE(asked.count(), i);
    }
    poll();
    for (const int tile : {0, 1})
        expectTile(tile, StateBackground::NoData, {});
    for (const int channel : {1, 2})
        expectChart(channel, StateBackground::NoData, {});
    QVERIFY(showsPicture(row(0), "DeviceDisconnectedSymbol"));

    m_fixture->logger(0).setReply("ATDC 5.50,45.10\r\n");
    poll();
    expectTile(0, StateBackground::Normal, QStringLiteral("5.50"));
    expectChart(1, StateBackground::Normal, QStringLiteral("5.50"));
    QVERIFY(showsPicture(row(0), "DeviceConnectingSymbol"));
}

void tst_StationViews::dashboardsCarryTheProjectsNames()
{
    open(1);
    const auto *tabs = child<QTabWidget>(*m_station, "tabWidget");
    QCOMPARE(tabs->tabText(0), QStringLiteral("North"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("South"));
}

void tst_StationViews::aClosedProjectsPanelIsDead()
{
    open(2);
    const QPointer<DashBoardDeviceItem> tile = tiles().first();
    QPushButton *project = child<QPushButton>(*m_station, "button_project");
    QListWidget *list = child<QListWidget>(*m_station, "list_project");
    QTest::mouseClick(tile, Qt::LeftButton);
    poll();
    m_station->slotCloseProject();
    QVERIFY(tile);
    QTest::mouseClick(tile, Qt::LeftButton);
    emit list->itemClicked(list->item(0));
    project->click();
    QTRY_VERIFY(!tile);
    QVERIFY(!m_station->isProjectOpen());
}

void tst_StationViews::aProjectInPlaceOfAnotherLeavesNoView()
{
    open(2);
    for (int i = 0; i < 5; ++i) {
        const QPointer<DashBoardDeviceItem> tile = tiles().first();
        QTest::mouseClick(tile, Qt::LeftButton);
        m_station->projectLoaded(m_fixture->projectPath(QStringLiteral("Freezer")));
        QTRY_VERIFY(!tile);
        QTRY_VERIFY(m_station->configuredDevices().at(1)->isConnected());
    }
    QCOMPARE(m_station->findChildren<ChartView *>().size(), 1);
    QCOMPARE(tiles().size(), 4);
}

void tst_StationViews::tilesNeverOverlap_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("first size of the window") << QSize(1024, 524);
    QTest::newRow("large screen") << QSize(1920, 1080);
}

void tst_StationViews::tilesNeverOverlap()
{
    QFETCH(QSize, size);
    open(16);
    m_station->resize(size);
    QCoreApplication::processEvents();
    QCOMPARE(tiles().size(), 32);
    for (const DashBoardDeviceItem *tile : tiles()) {
        const QWidget *cell = tile->parentWidget();
        QCOMPARE(tile->size(), cell->size());
        QVERIFY(cell->parentWidget()->rect().contains(cell->geometry()));
        for (const DashBoardDeviceItem *other : tiles())
            QVERIFY(other == tile || !other->parentWidget()->geometry().intersects(cell->geometry()));
    }
    const auto *bar = child<QFrame>(*m_station, "bottom_frame");
    const auto *board = child<QWidget>(*m_station, "middle_frame");
    QVERIFY(!bar->geometry().intersects(board->geometry()));
    QVERIFY(bar->parentWidget()->rect().contains(bar->geometry()));
}

void tst_StationViews::windowShrinksAgainAfterAFullScreen()
{
    open(16);
    QCoreApplication::processEvents();
    const QSize smallest = m_station->minimumSize();
    m_station->resize(1920, 1080);
    poll();
    QCoreApplication::processEvents();
    QCOMPARE(m_station->minimumSize(), smallest);
    QTest::mouseClick(tiles().first(), Qt::LeftButton);
    QCoreApplication::processEvents();
    m_station->resize(smallest);
    QCoreApplication::processEvents();
    QCOMPARE(m_station->size(), smallest);
}

void tst_StationViews::expansionModeHidesTheList()
{
    open(1);
    const auto *list = child<QWidget>(*m_station, "widget_list");
    m_station->slotShowHideItem(true);
    QVERIFY(!list->isVisible());
    m_station->slotShowHideItem(false);
    QVERIFY(list->isVisible());
}

STATION_TEST_MAIN(tst_StationViews)
#include "tst_StationViews.moc"
