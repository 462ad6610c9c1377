#include "device/ConfiguredDevice.h"
#include "dialogs/NetworkSettingDialog.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"
#include "views/DashboardTab.h"
#include "views/ProjectCenter.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <memory>

/// What the board shows, and what clicks, keys and dialogs make of it.
class tst_ProjectCenter_board : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }
    void init();
    void cleanup();

    void startsWithTheDashboards();
    void eitherTileOpensTheChart();
    void rowOpensTheChart();
    void keyOnARowOpensTheChart_data();
    void keyOnARowOpensTheChart();
    void openingTheShownChartAgainDoesNothing();
    void dashboardsAndBackShowsTheSameChartAgain();
    void anotherDeviceTakesTheChartOver();
    void dashboardsLetTheChartGoAndReadNamesAgain();
    void rowsWithoutADeviceOpenNothing();
    void networkButtonShowsTheAddress();
    void networkButtonIsForNetworkLoggersOnly_data();
    void networkButtonIsForNetworkLoggersOnly();
    void networkDialogsDoNotPileUp();
    void changedOptionsAreShownAndSaved();
    void emptyCellsHide();
    void aThousandSwitchesLeaveNothingBehind();
    void clicksOnADyingPanelDoNothing();
    void listRowsStayWithinTheList();

private:
    std::unique_ptr<ConfiguredDevice> makeDevice(const QString &name, int kind);
    ChartView *chart() const { return m_center->findChild<ChartView *>(); }
    DashboardTab *dashboards() const { return m_center->findChild<DashboardTab *>(); }
    QWidget *firstPage() const { return m_center->findChild<QTabWidget *>(QStringLiteral("tabWidget"))->widget(0); }
    QListWidget *list() const { return m_center->findChild<QListWidget *>(QStringLiteral("list_project")); }
    QString chartText(const char *label) const { return chart()->findChild<QLabel *>(QLatin1String(label))->text(); }
    bool chartShows() const { return chart()->isVisible() && !dashboards()->isVisible(); }
    bool dashboardsShow() const { return dashboards()->isVisible() && !chart()->isVisible(); }
    void clickTile(int number);
    void clickRow(int row);
    void clickProject();
    NetworkSettingDialog *networkDialog() const { return m_center->findChild<NetworkSettingDialog *>(); }

    std::unique_ptr<ConfiguredDevice> m_cold;
    std::unique_ptr<ConfiguredDevice> m_oven;
    std::unique_ptr<ConfiguredDevice> m_none;
    std::unique_ptr<ProjectCenter> m_center;
};

std::unique_ptr<ConfiguredDevice> tst_ProjectCenter_board::makeDevice(const QString &name, int kind)
{
    auto device = std::make_unique<ConfiguredDevice>(QStringLiteral("key of ") + name, kind);
    device->setDeviceInfo(name, QStringLiteral("Air"), QStringLiteral("Damp"), QStringLiteral("10.0.0.7"), 4001);
    return device;
}

void tst_ProjectCenter_board::init()
{
    m_cold = makeDevice(QStringLiteral("Cold room"), NetworkInterface);
    m_oven = makeDevice(QStringLiteral("Oven"), UsbInterface);
    m_none = makeDevice(QStringLiteral("Nowhere"), NoInterface);
    m_center = std::make_unique<ProjectCenter>(QStringLiteral("/data/Kitchen.tpc"));
    m_center->setDashboardNames({QStringLiteral("North"), QStringLiteral("South")});
    m_center->setDevices({m_cold.get(), m_oven.get(), m_none.get()});
    m_center->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_center.get()));
}

void tst_ProjectCenter_board::cleanup()
{
    for (ConfiguredDevice *device : {m_cold.get(), m_oven.get(), m_none.get()}) {
        if (device)
            device->detachViews();
    }
    m_center.reset();
    m_cold.reset();
    m_oven.reset();
    m_none.reset();
}

void tst_ProjectCenter_board::clickTile(int number)
{
    const QString cell = QStringLiteral("widget_%1").arg(number, 2, 10, QLatin1Char('0'));
    QTest::mouseClick(firstPage()->findChild<QWidget *>(cell)->findChild<DashBoardDeviceItem *>(), Qt::LeftButton);
}

void tst_ProjectCenter_board::clickRow(int row)
{
    QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, list()->visualItemRect(list()->item(row)).center());
}

void tst_ProjectCenter_board::clickProject()
{
    QTest::mouseClick(m_center->findChild<QPushButton *>(QStringLiteral("button_project")), Qt::LeftButton);
}

void tst_ProjectCenter_board::startsWithTheDashboards()
{
    QVERIFY(dashboardsShow());
    const auto *tabs = m_center->findChild<QTabWidget *>(QStringLiteral("tabWidget"));
    QCOMPARE(tabs->tabText(0), QStringLiteral("North"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("South"));
    QCOMPARE(tabs->tabText(2), QStringLiteral("Dashboard 3"));
}

void tst_ProjectCenter_board::eitherTileOpensTheChart()
{
    for (const int number : {9, 10}) {
        clickTile(number);
        QVERIFY(chartShows());
        QCOMPARE(chartText("label_device"), QStringLiteral("Oven"));
        QVERIFY(list()->item(1)->isSelected());
        m_oven->readData(QStringLiteral("21.50,45.10"));
        QCOMPARE(chartText("label_ch1_number"), QStringLiteral("21.50"));
        clickProject();
    }
}

void tst_ProjectCenter_board::rowOpensTheChart()
{
    clickRow(0);
    QVERIFY(chartShows());
    QCOMPARE(chartText("label_device"), QStringLiteral("Cold room"));
}

void tst_ProjectCenter_board::keyOnARowOpensTheChart_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Enter") << Qt::Key_Enter;
}

void tst_ProjectCenter_board::keyOnARowOpensTheChart()
{
    QFETCH(Qt::Key, key);
    QVERIFY(QTest::qWaitForWindowActive(m_center.get()));
    list()->setFocus();
    list()->setCurrentRow(1);
    QTest::keyClick(list(), key);
    QVERIFY(chartShows());
    QCOMPARE(chartText("label_device"), QStringLiteral("Oven"));
}

void tst_ProjectCenter_board::openingTheShownChartAgainDoesNothing()
{
    clickTile(1);
    list()->clearSelection();
    emit m_center->findChild<DashboardTab *>()->deviceClicked(m_cold.get());
    QVERIFY(chartShows());
    // Opening a chart would have selected its row.
    QVERIFY(list()->selectedItems().isEmpty());
}

void tst_ProjectCenter_board::dashboardsAndBackShowsTheSameChartAgain()
{
    clickTile(1);
    clickProject();
    QVERIFY(dashboardsShow());
    QVERIFY(chartText("label_ch1_number").isEmpty());
    clickRow(0);
    QVERIFY(chartShows());
    QCOMPARE(chartText("label_device"), QStringLiteral("Cold room"));
    m_cold->readData(QStringLiteral("3.50,45.10"));
    QCOMPARE(chartText("label_ch1_number"), QStringLiteral("3.50"));
}

void tst_ProjectCenter_board::anotherDeviceTakesTheChartOver()
{
    clickRow(0);
    clickRow(1);
    QVERIFY(chartShows());
    QCOMPARE(chartText("label_device"), QStringLiteral("Oven"));
    m_oven->readData(QStringLiteral("180.00,5.00"));
    m_cold->readData(QStringLiteral("3.50,45.10"));
    QCOMPARE(chartText("label_ch1_number"), QStringLiteral("180.00"));
    QCOMPARE(list()->selectedItems(), QList<QListWidgetItem *>{list()->item(1)});
}

void tst_ProjectCenter_board::dashboardsLetTheChartGoAndReadNamesAgain()
{
    clickRow(0);
    m_cold->setDeviceInfo(QStringLiteral("Freezer"), {}, {}, QStringLiteral("10.0.0.7"), 4001);
    clickProject();
    QCOMPARE(
        firstPage()->findChild<DashBoardDeviceItem *>()->findChild<QLabel *>(QStringLiteral("label_device"))->text(),
        QStringLiteral("Freezer"));
    m_cold->readData(QStringLiteral("3.50,45.10"));
    QVERIFY(chartText("label_ch1_number").isEmpty());
}

void tst_ProjectCenter_board::rowsWithoutADeviceOpenNothing()
{
    QListWidgetItem stray;
    emit list()->itemClicked(&stray);
    QVERIFY(dashboardsShow());
}

void tst_ProjectCenter_board::networkButtonShowsTheAddress()
{
    clickTile(1);
    emit chart()->popupNetworkSetting();
    QVERIFY(networkDialog() && networkDialog()->isVisible());
    QCOMPARE(networkDialog()->findChild<QLabel *>(QStringLiteral("label_ipaddr"))->text(), QStringLiteral("10.0.0.7"));
    QCOMPARE(networkDialog()->findChild<QLabel *>(QStringLiteral("label_port"))->text(), QStringLiteral("4001"));
}

void tst_ProjectCenter_board::networkButtonIsForNetworkLoggersOnly_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("no device yet") << -1;
    QTest::newRow("USB") << 1;
    QTest::newRow("no interface") << 2;
}

void tst_ProjectCenter_board::networkButtonIsForNetworkLoggersOnly()
{
    QFETCH(int, row);
    if (row >= 0)
        clickRow(row);
    emit chart()->popupNetworkSetting();
    QVERIFY(!networkDialog());
}

void tst_ProjectCenter_board::networkDialogsDoNotPileUp()
{
    clickTile(1);
    for (int i = 0; i < 3; ++i) {
        emit chart()->popupNetworkSetting();
        networkDialog()->QWidget::close();
    }
    QCOMPARE(m_center->findChildren<NetworkSettingDialog *>().size(), 1);
}

void tst_ProjectCenter_board::changedOptionsAreShownAndSaved()
{
    QSignalSpy saved(m_center.get(), &ProjectCenter::updateProjectFile);
    clickTile(1);
    m_cold->readData(QStringLiteral("3.50,45.10"));
    m_cold->setDeviceInfo(QStringLiteral("Freezer"), {}, {}, QStringLiteral("10.0.0.8"), 4001);
    m_cold->setAlarmRange(4, 8, 0, 0);
    QVERIFY(QMetaObject::invokeMethod(m_center.get(), "slotSensingConfirm"));
    QVERIFY(m_cold->alarmOnChannel1());
    QCOMPARE(list()->item(0)->text(), QStringLiteral("Freezer"));
    QCOMPARE(chartText("label_device"), QStringLiteral("Freezer"));
    QCOMPARE(saved.count(), 1);
}

void tst_ProjectCenter_board::emptyCellsHide()
{
    const auto *empty = firstPage()->findChild<QWidget *>(QStringLiteral("widget_32"));
    const auto *occupied = firstPage()->findChild<QWidget *>(QStringLiteral("widget_01"));
    m_center->showEmptyCells(false);
    QVERIFY(empty->isHidden() && !occupied->isHidden());
    m_center->showEmptyCells(true);
    QVERIFY(!empty->isHidden());
}

void tst_ProjectCenter_board::aThousandSwitchesLeaveNothingBehind()
{
    const auto switchOnce = [this](int i) {
        clickTile(i % 2 ? 1 : 9);
        m_cold->readData(QStringLiteral("3.50,45.10"));
        clickRow(i % 3);
        m_oven->readData(QStringLiteral("180.00,5.00"));
        m_cold->deviceDisconnected();
        clickProject();
        m_oven->deviceDisconnected();
        QCoreApplication::processEvents();
    };
    for (int i = 0; i < 6; ++i)
        switchOnce(i);
    const int children = m_center->findChildren<QObject *>().size();
    for (int i = 0; i < 1000; ++i)
        switchOnce(i);
    QCOMPARE(m_center->findChildren<QObject *>().size(), children);
    QVERIFY(dashboardsShow());
}

void tst_ProjectCenter_board::clicksOnADyingPanelDoNothing()
{
    clickTile(1);
    m_cold->readData(QStringLiteral("3.50,45.10"));
    for (auto *device : {&m_cold, &m_oven, &m_none}) {
        (*device)->detachViews();
        device->reset();
    }
    clickRow(0);
    clickRow(1);
    emit chart()->popupNetworkSetting();
    QVERIFY(QMetaObject::invokeMethod(m_center.get(), "slotSensingConfirm"));
    clickProject();
    clickTile(1);
    clickTile(10);
    clickRow(1);
    m_center->resize(m_center->size() * 2);
    QCoreApplication::processEvents();
    QVERIFY(dashboardsShow());
    QVERIFY(!networkDialog());
}

void tst_ProjectCenter_board::listRowsStayWithinTheList()
{
    m_cold->setDeviceInfo(QStringLiteral("The second cold room of warehouse North."), {}, {}, {}, 23);
    QVERIFY(QMetaObject::invokeMethod(m_center.get(), "slotSensingConfirm"));
    QCoreApplication::processEvents();
    QVERIFY(list()->visualItemRect(list()->item(0)).width() <= list()->viewport()->width());
    QVERIFY(!list()->horizontalScrollBar()->isVisible());
}

QTEST_MAIN(tst_ProjectCenter_board)
#include "tst_ProjectCenter_board.moc"
