#include "device/ConfiguredDevice.h"
#include "views/DashBoard.h"
#include "views/DashBoardDeviceItem.h"
#include "views/DashboardTab.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <climits>
#include <memory>
#include <vector>

class tst_DashboardTab : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }
    void init() { m_tab = std::make_unique<DashboardTab>(); }
    void cleanup();

    void formIsAsDesigned();
    void emptyProjectHasFourEmptyPages();
    void namesTitleTheTabs_data();
    void namesTitleTheTabs();
    void titlesArePlainTextAndInTheToolTip();
    void longTitlesStayWithinTheWindow();
    void seventeenthDeviceIsShownNowhere();
    void eachDeviceIsOnItsPage();
    void numberBeyondTheDashboardsIsShownNowhere_data();
    void numberBeyondTheDashboardsIsShownNowhere();
    void eitherTileOpensItsDevice();
    void emptyCellsHideOnEveryPage();
    void refreshReachesEveryPage();

private:
    QTabWidget *tabs() const { return m_tab->findChild<QTabWidget *>(QStringLiteral("tabWidget")); }
    QWidget *cell(int page, int number) const
    {
        return tabs()->widget(page)->findChild<QWidget *>(
            QStringLiteral("widget_%1").arg(number, 2, 10, QLatin1Char('0')));
    }
    int tilesOn(int page) const { return tabs()->widget(page)->findChildren<DashBoardDeviceItem *>().size(); }
    QString deviceIn(int page, int number) const
    {
        const auto *label = cell(page, number)->findChild<QLabel *>(QStringLiteral("label_device"));
        return label ? label->text() : QString();
    }
    void show(const QList<int> &dashboardNumbers);

    std::vector<std::unique_ptr<ConfiguredDevice>> m_devices;
    std::unique_ptr<DashboardTab> m_tab;
};

void tst_DashboardTab::cleanup()
{
    for (const auto &device : m_devices)
        device->detachViews();
    m_tab.reset();
    m_devices.clear();
}

/// Gives the tabs a device for each number: "1", "2", …
void tst_DashboardTab::show(const QList<int> &dashboardNumbers)
{
    QList<ConfiguredDevice *> list;
    for (const int number : dashboardNumbers) {
        const QString name = QString::number(m_devices.size() + 1);
        m_devices.push_back(std::make_unique<ConfiguredDevice>(QStringLiteral("key") + name, NetworkInterface));
        m_devices.back()->setDeviceInfo(name, {}, {}, {}, 23);
        m_devices.back()->setDashboardNumber(number);
        list << m_devices.back().get();
    }
    m_tab->setDevices(list);
}

void tst_DashboardTab::formIsAsDesigned()
{
    QCOMPARE(m_tab->objectName(), QStringLiteral("DashboardTab"));
    QCOMPARE(m_tab->windowTitle(), QStringLiteral("Dashboard"));
    auto *title = m_tab->findChild<QLabel *>(QStringLiteral("label_title"));
    QCOMPARE(title->minimumSize(), QSize(99, 16));
    QCOMPARE(title->maximumSize(), QSize(99, 16));
    QCOMPARE(title->pixmap(Qt::ReturnByValue).size() / title->devicePixelRatioF(), QSize(99, 16));
    QCOMPARE(tabs()->tabPosition(), QTabWidget::North);
    QVERIFY(!tabs()->usesScrollButtons());
    for (const char *rule :
         {"border: 0px solid black;", "background: white;", "color: rgb(49, 49, 49);", "lightgrey", "silver", "#999",
          "margin-top: 3px;", "min-width: 8ex;", "margin-right: -1px;", "padding: 5px 10px 5px 10px;"})
        QVERIFY2(tabs()->styleSheet().contains(QLatin1String(rule)), rule);
}

void tst_DashboardTab::emptyProjectHasFourEmptyPages()
{
    m_tab->setDashboardNames({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")});
    show({});
    QCOMPARE(tabs()->count(), 4);
    for (int page = 0; page < 4; ++page) {
        QCOMPARE(tabs()->tabText(page), QString(QChar('A' + page)));
        QCOMPARE(tilesOn(page), 0);
        for (int number = 1; number <= 32; ++number)
            QVERIFY(!cell(page, number)->isHidden());
    }
}

void tst_DashboardTab::namesTitleTheTabs_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("titles");
    const QStringList provisional{QStringLiteral("Dashboard 1"), QStringLiteral("Dashboard 2"),
                                  QStringLiteral("Dashboard 3"), QStringLiteral("Dashboard 4")};
    QTest::newRow("none") << QStringList() << provisional;
    QTest::newRow("two") << QStringList{"name 1", "name 2"}
                         << QStringList{"name 1", "name 2", "Dashboard 3", "Dashboard 4"};
    QTest::newRow("four") << QStringList{"N", "E", "S", "W"} << QStringList{"N", "E", "S", "W"};
    QTest::newRow("six") << QStringList{"N", "E", "S", "W", "up", "down"} << QStringList{"N", "E", "S", "W"};
}

void tst_DashboardTab::namesTitleTheTabs()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, titles);
    m_tab->setDashboardNames(names);
    QCOMPARE(tabs()->count(), 4);
    for (int page = 0; page < 4; ++page)
        QCOMPARE(tabs()->tabText(page), titles.at(page));
}

void tst_DashboardTab::titlesArePlainTextAndInTheToolTip()
{
    m_tab->setDashboardNames({QStringLiteral("Heat & Cold"), QStringLiteral("<b>South</b>")});
    QCOMPARE(tabs()->tabText(0), QStringLiteral("Heat && Cold"));
    QCOMPARE(tabs()->tabToolTip(0), QStringLiteral("Heat & Cold"));
    QCOMPARE(tabs()->tabText(1), QStringLiteral("<b>South</b>"));
    QVERIFY(tabs()->tabToolTip(1).contains(QStringLiteral("&lt;b&gt;South")));
}

void tst_DashboardTab::longTitlesStayWithinTheWindow()
{
    const QString name = QStringLiteral("Everything that stands north of the yard");
    QCOMPARE(name.size(), 40);
    m_tab->setDashboardNames({name, name, name, name});
    m_tab->resize(824, 440);
    m_tab->show();
    QCOMPARE(m_tab->width(), 824);
    for (int page = 0; page < 4; ++page) {
        const QRect tab = tabs()->tabBar()->tabRect(page);
        QVERIFY(tab.width() > 100);
        QVERIFY(tabs()->rect().contains(tab));
        QCOMPARE(tabs()->tabToolTip(page), name);
    }
}

void tst_DashboardTab::seventeenthDeviceIsShownNowhere()
{
    QList<int> numbers;
    for (int i = 0; i < 17; ++i)
        numbers << 0;
    show(numbers);
    QCOMPARE(tilesOn(0), 32);
    for (int page = 1; page < 4; ++page)
        QCOMPARE(tilesOn(page), 0);
    QCOMPARE(deviceIn(0, 32), QStringLiteral("16"));
    m_devices.at(16)->readData(QStringLiteral("1.00,2.00"));
}

void tst_DashboardTab::eachDeviceIsOnItsPage()
{
    show({0, 1, 0});
    QCOMPARE(deviceIn(0, 1), QStringLiteral("1"));
    QCOMPARE(deviceIn(0, 2), QStringLiteral("1"));
    QCOMPARE(deviceIn(0, 9), QStringLiteral("3"));
    QCOMPARE(deviceIn(0, 10), QStringLiteral("3"));
    QCOMPARE(deviceIn(1, 1), QStringLiteral("2"));
    QCOMPARE(deviceIn(1, 2), QStringLiteral("2"));
    QCOMPARE(tilesOn(0), 4);
    QCOMPARE(tilesOn(1), 2);
}

void tst_DashboardTab::numberBeyondTheDashboardsIsShownNowhere_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("page");
    QTest::newRow("smallest") << INT_MIN << -1;
    QTest::newRow("-1") << -1 << -1;
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("3") << 3 << 3;
    QTest::newRow("4") << 4 << -1;
    QTest::newRow("largest") << INT_MAX << -1;
}

void tst_DashboardTab::numberBeyondTheDashboardsIsShownNowhere()
{
    QFETCH(int, number);
    QFETCH(int, page);
    show({number});
    for (int i = 0; i < 4; ++i)
        QCOMPARE(tilesOn(i), i == page ? 2 : 0);
}

void tst_DashboardTab::eitherTileOpensItsDevice()
{
    show({0, 0, 2});
    m_tab->show();
    QSignalSpy clicked(m_tab.get(), &DashboardTab::deviceClicked);
    const auto tile = [this](int page, int number) {
        return cell(page, number)->findChild<DashBoardDeviceItem *>();
    };
    tabs()->setCurrentIndex(2);
    for (DashBoardDeviceItem *each : {tile(2, 1), tile(2, 2)}) {
        QTest::mouseClick(each, Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(clicked.takeFirst().first().value<ConfiguredDevice *>(), m_devices.at(2).get());
    }
}

void tst_DashboardTab::emptyCellsHideOnEveryPage()
{
    show({0, 3});
    m_tab->showEmptyCells(false);
    for (int page = 0; page < 4; ++page) {
        QCOMPARE(cell(page, 32)->isHidden(), true);
        QCOMPARE(cell(page, 1)->isHidden(), tilesOn(page) == 0);
    }
    m_tab->showEmptyCells(true);
    for (int page = 0; page < 4; ++page)
        QVERIFY(!cell(page, 32)->isHidden());
}

void tst_DashboardTab::refreshReachesEveryPage()
{
    show({0, 1, 2, 3});
    for (const auto &device : m_devices)
        device->setDeviceInfo(QStringLiteral("Hall"), {}, {}, {}, 23);
    m_tab->refreshTiles();
    for (int page = 0; page < 4; ++page)
        QCOMPARE(deviceIn(page, 2), QStringLiteral("Hall"));
}

QTEST_MAIN(tst_DashboardTab)
#include "tst_DashboardTab.moc"
