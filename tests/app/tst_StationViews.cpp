#include "StationFixture.h"

#include "app/SorvantoMain.h"
#include "device/ConfiguredDevice.h"
#include "support/ScriptedLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"

#include <QAbstractButton>
#include <QFrame>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>

/// The panel of a project in the station's window, with loggers on real sockets.
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

    void dashboardsCarryTheProjectsNames();
    void aClosedProjectsPanelIsDead();
    void aProjectInPlaceOfAnotherLeavesNoView();
    void tilesNeverOverlap_data();
    void tilesNeverOverlap();
    void windowShrinksAgainAfterAFullScreen();
    void expansionModeHidesTheList();
    void everyButtonHasANameAndAKeyboardsFocus_data();
    void everyButtonHasANameAndAKeyboardsFocus();
    void keyboardFocusIsVisible_data();
    void keyboardFocusIsVisible();

private:
    void open(int devices);
    void poll() { m_station->writeDevice(); }
    QWidget *page(int index) const { return child<QTabWidget>(*m_station, "tabWidget")->widget(index); }
    QList<DashBoardDeviceItem *> tiles() const { return page(0)->findChildren<DashBoardDeviceItem *>(); }

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

void tst_StationViews::everyButtonHasANameAndAKeyboardsFocus_data()
{
    QTest::addColumn<bool>("onChart");
    QTest::newRow("dashboard") << false;
    QTest::newRow("chart") << true;
}

void tst_StationViews::everyButtonHasANameAndAKeyboardsFocus()
{
    QFETCH(bool, onChart);
    open(1);
    if (onChart)
        QTest::mouseClick(tiles().first(), Qt::LeftButton);
    int seen = 0;
    for (const auto *button : m_station->findChildren<QAbstractButton *>()) {
        if (!button->isVisible())
            continue;
        ++seen;
        const QByteArray name = button->objectName().toUtf8();
        QVERIFY2(!button->text().isEmpty() || !button->accessibleName().isEmpty(), name.constData());
        QVERIFY2(button->focusPolicy() & Qt::TabFocus, name.constData());
    }
    QVERIFY(seen >= 6);
}

void tst_StationViews::keyboardFocusIsVisible_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("onChart");
    for (const char *name : {"command_project", "command_record", "command_screen", "command_help", "button_project",
                             "list_project", "qt_tabwidget_tabbar", "btn_record"})
        QTest::newRow(name) << name << false;
    for (const char *name : {"btn_setting", "btn_network"})
        QTest::newRow(name) << name << true;
}

void tst_StationViews::keyboardFocusIsVisible()
{
    QFETCH(QString, name);
    QFETCH(bool, onChart);
    open(2);
    if (onChart)
        QTest::mouseClick(tiles().first(), Qt::LeftButton);
    m_station->activateWindow();
    QTRY_VERIFY(m_station->isActiveWindow());
    auto *widget = child<QWidget>(*m_station, name.toUtf8().constData());
    if (QApplication::focusWidget())
        QApplication::focusWidget()->clearFocus();
    const QImage without = widget->grab().toImage();
    constexpr int stopsAtMost = 40;
    for (int i = 0; i < stopsAtMost && !widget->hasFocus(); ++i)
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : m_station.get(), Qt::Key_Tab);
    QVERIFY(widget->hasFocus());
    QVERIFY(widget->grab().toImage() != without);
}

STATION_TEST_MAIN(tst_StationViews)
#include "tst_StationViews.moc"
