#include "ManagerFixture.h"
#include "ManagerPictures.h"
#include "device/DataInterval.h"
#include "support/LogCapture.h"
#include "support/TemporaryInterval.h"

#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString boardFull = QStringLiteral("ERROR: cannot add more than 16 devices to the dashboard.");

} // namespace

class tst_ProjectManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QList<ConfiguredDevice *>>(); }
    void init() { m_manager = std::make_unique<ManagerFixture>(); }
    void cleanup() { m_manager.reset(); }

    void formIsAsDesigned();
    void tabsAreAsDesigned();
    void iconButtonsAreNamed();
    void buttonsCarryTheirIcons_data();
    void buttonsCarryTheirIcons();
    void keyboardStartsInTheSearchedList();
    void configuredDevicesAreListed();
    void devicesBeyondADashboardAreSkipped();
    void sixtyFourConfiguredDevicesAreReported();
    void dashboardNames_data();
    void dashboardNames();
    void longDashboardNamesCannotBeTyped();

    void severalDevicesMoveAtOnce();
    void doubleClickMovesOne();
    void sixteenthRowByButton();
    void sixteenthRowByDoubleClick();
    void sixtyFourRowsEndTheAdding_data();
    void sixtyFourRowsEndTheAdding();

    void intervalMenu_data();
    void intervalMenu();
    void chosenIntervalCountsAtOnce();
    void intervalMenuOpensByItsButton();
    void intervalCanBeDisabled();

private:
    QMenu *intervalMenuOf() const { return m_manager->panel.findChild<QMenu *>(); }

    std::unique_ptr<ManagerFixture> m_manager;
};

void tst_ProjectManager::formIsAsDesigned()
{
    const auto text = [this](const char *name) {
        return m_manager->child<QLabel>(name)->text();
    };
    QCOMPARE(m_manager->panel.font().family(), QStringLiteral("Segoe UI"));
    QCOMPARE(text("label"), QStringLiteral("Move devices to the right to configure them on the project."));
    QCOMPARE(text("label_2"), QStringLiteral("Searched Device List"));
    QCOMPARE(text("label_3"), QStringLiteral("Selected Device List"));
    QCOMPARE(m_manager->button("btn_confirm")->toolTip(), QStringLiteral("Create Project"));
    QCOMPARE(m_manager->button("btn_timeInterval")->toolTip(), QStringLiteral("Change time Interval"));
    QCOMPARE(m_manager->button("pushButton_refresh")->text(), QStringLiteral("Refresh Deivce"));
    QCOMPARE(m_manager->button("pushButton_refresh")->toolTip(), QStringLiteral("Broadcast Network Devices"));
    QVERIFY(!m_manager->button("pushButton_refresh")->icon().isNull());
    QCOMPARE(m_manager->button("btn_manual")->text(), QStringLiteral("Manual Add"));
    QCOMPARE(m_manager->button("btn_manual")->toolTip(), QStringLiteral("Manual Add Device"));
    QCOMPARE(m_manager->child<QLabel>("label_interval")->minimumWidth(), 116);
    QCOMPARE(m_manager->child<QLabel>("label_interval")->maximumWidth(), 116);
    QCOMPARE(m_manager->available()->toolTip(), QStringLiteral("Searched Devices"));
    QCOMPARE(m_manager->available()->minimumWidth(), 330);
    QVERIFY(m_manager->button("btn_add")->isEnabled());
    QVERIFY(m_manager->button("btn_manual")->isEnabled());
}

void tst_ProjectManager::tabsAreAsDesigned()
{
    const auto *tabs = m_manager->child<QTabWidget>("tabWidget");
    QCOMPARE(tabs->count(), 4);
    QCOMPARE(tabs->currentIndex(), 0);
    for (int i = 0; i < 4; ++i) {
        const QString number = QString::number(i + 1);
        QCOMPARE(tabs->widget(i)->objectName(), QStringLiteral("dash") + number);
        QCOMPARE(tabs->tabText(i), QStringLiteral("Dashboard ") + number);
        const auto *name = tabs->widget(i)->findChild<QLineEdit *>(QStringLiteral("lineEdit_dashboard_") + number);
        QCOMPARE(name->text(), QStringLiteral("Dashboard ") + number);
        QCOMPARE(tabs->widget(i)->findChild<QLabel *>(QStringLiteral("label_%1").arg(i + 4))->text(),
                 QStringLiteral("Name :"));
        QCOMPARE(m_manager->board(i)->toolTip(), QStringLiteral("Selected Devices"));
        QCOMPARE(m_manager->board(i)->minimumWidth(), 330);
    }
}

void tst_ProjectManager::iconButtonsAreNamed()
{
    for (const char *name : {"btn_confirm", "btn_timeInterval", "btn_add", "btn_remove"}) {
        QVERIFY(m_manager->button(name)->text().isEmpty());
        QVERIFY(!m_manager->button(name)->icon().isNull());
        QVERIFY(!m_manager->button(name)->accessibleName().isEmpty());
    }
}

void tst_ProjectManager::buttonsCarryTheirIcons_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("picture");
    QTest::newRow("confirm") << QByteArray("btn_confirm") << ":/img/btn_createProject.png";
    QTest::newRow("interval") << QByteArray("btn_timeInterval") << ":/img/btn_interval.png";
    QTest::newRow("add") << QByteArray("btn_add") << ":/img/btn_addDevice.png";
    QTest::newRow("remove") << QByteArray("btn_remove") << ":/img/btn_removeDevice.png";
    QTest::newRow("refresh") << QByteArray("pushButton_refresh") << lanPicture;
}

void tst_ProjectManager::buttonsCarryTheirIcons()
{
    QFETCH(QByteArray, button);
    QFETCH(QString, picture);
    const QIcon expected(picture);
    QVERIFY(!expected.pixmap(32, 32).isNull());
    QCOMPARE(m_manager->button(button)->icon().pixmap(32, 32).toImage(), expected.pixmap(32, 32).toImage());
}

void tst_ProjectManager::keyboardStartsInTheSearchedList()
{
    m_manager->panel.takeFocus();
    QCOMPARE(m_manager->panel.focusWidget(), m_manager->available());
}

void tst_ProjectManager::configuredDevicesAreListed()
{
    const LogCapture log;
    m_manager->configure(QStringLiteral("Oven"), QStringLiteral("02AA00000001"), NetworkInterface, 0);
    m_manager->configure(QString(), QStringLiteral("12345678"), UsbInterface, 0);
    m_manager->configure(QStringLiteral("<b>Cellar</b>"), QStringLiteral("02AA00000002"), NetworkInterface, 2);
    m_manager->configure(QStringLiteral("Nowhere"), QStringLiteral("02AA00000003"), NetworkInterface, 4);
    m_manager->configure(QStringLiteral("Nowhere"), QStringLiteral("02AA00000004"), NetworkInterface, -1);
    m_manager->giveConfigured();
    QCOMPARE(m_manager->texts(m_manager->board(0)),
             (QStringList{QStringLiteral("Oven\t[10.1.0.1:23]"), QStringLiteral("12345678\t[10.1.0.1]")}));
    QCOMPARE(m_manager->keys(m_manager->board(0)),
             (QStringList{QStringLiteral("02AA00000001"), QStringLiteral("12345678")}));
    QVERIFY(shows(m_manager->board(0)->item(0), lanPicture));
    QVERIFY(shows(m_manager->board(0)->item(1), usbPicture));
    QCOMPARE(m_manager->board(1)->count(), 0);
    QCOMPARE(m_manager->texts(m_manager->board(2)), QStringList{QStringLiteral("<b>Cellar</b>\t[10.1.0.1:23]")});
    QCOMPARE(m_manager->board(3)->count(), 0);
    QCOMPARE(log.count(QStringLiteral("ProjectManager::setConfiguredDeviceList : 5")), 1);
    QVERIFY(m_manager->messages().isEmpty());
}

void tst_ProjectManager::devicesBeyondADashboardAreSkipped()
{
    const LogCapture log;
    for (int i = 0; i < 18; ++i)
        m_manager->configure(QString(), m_manager->networkKey(i), NetworkInterface, 1);
    m_manager->giveConfigured();
    QCOMPARE(m_manager->board(1)->count(), 16);
    QCOMPARE(
        log.count(QStringLiteral("[ERROR] ProjectManager::setConfiguredDeviceList : dashboard item count is over 16.")),
        2);
    QVERIFY(m_manager->messages().isEmpty());
}

void tst_ProjectManager::sixtyFourConfiguredDevicesAreReported()
{
    for (int i = 0; i < 64; ++i)
        m_manager->configure(QString(), m_manager->networkKey(i), NetworkInterface, i / 16);
    m_manager->giveConfigured();
    QCOMPARE(m_manager->messages(), QStringList{QStringLiteral("ERROR: cannot add more than 64 devices.")});
    for (int i = 0; i < 4; ++i)
        QCOMPARE(m_manager->board(i)->count(), 16);
    QVERIFY(!m_manager->button("btn_add")->isEnabled());
    QVERIFY(!m_manager->button("btn_manual")->isEnabled());
}

void tst_ProjectManager::dashboardNames_data()
{
    QTest::addColumn<QStringList>("given");
    QTest::addColumn<QStringList>("shown");
    const QStringList four{QStringLiteral("a"), QString(), QStringLiteral("c"), QStringLiteral("d")};
    QTest::newRow("four") << four << four;
    QTest::newRow("more") << four + QStringList{QStringLiteral("e")} << four;
    QTest::newRow("fewer") << QStringList{four.first()}
                           << QStringList{QStringLiteral("a"), QStringLiteral("Dashboard 2"),
                                          QStringLiteral("Dashboard 3"), QStringLiteral("Dashboard 4")};
}

void tst_ProjectManager::dashboardNames()
{
    QFETCH(QStringList, given);
    QFETCH(QStringList, shown);
    m_manager->panel.setDashboardNames(given);
    m_manager->findNetworkLoggers(1);
    m_manager->giveFound();
    m_manager->move(1, 0);
    QSignalSpy confirmed(&m_manager->panel, &ProjectManager::projectListConfirm);
    m_manager->button("btn_confirm")->click();
    QCOMPARE(confirmed.first().at(1).toStringList(), shown);
    qDeleteAll(confirmed.first().at(0).value<QList<ConfiguredDevice *>>());
}

void tst_ProjectManager::longDashboardNamesCannotBeTyped()
{
    for (int number = 1; number <= 4; ++number) {
        auto *name = m_manager->panel.findChild<QLineEdit *>(QStringLiteral("lineEdit_dashboard_%1").arg(number));
        name->clear();
        QTest::keyClicks(name, QStringLiteral("12345678901234"));
        QCOMPARE(name->text(), QStringLiteral("1234567890123"));
    }
}

void tst_ProjectManager::severalDevicesMoveAtOnce()
{
    m_manager->findNetworkLoggers(5);
    m_manager->giveFound();
    m_manager->panel.show();
    QListWidget *list = m_manager->available();
    const auto click = [list](int row, Qt::KeyboardModifiers keys) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, keys, list->visualItemRect(list->item(row)).center());
    };
    click(4, Qt::NoModifier);
    click(0, Qt::ControlModifier);
    click(2, Qt::ControlModifier);
    m_manager->button("btn_add")->click();
    const auto key = &ManagerFixture::networkKey;
    QCOMPARE(m_manager->keys(m_manager->board(0)), (QStringList{key(0), key(2), key(4)}));
    QCOMPARE(m_manager->keys(list), (QStringList{key(1), key(3)}));
}

void tst_ProjectManager::doubleClickMovesOne()
{
    m_manager->findNetworkLoggers(2);
    m_manager->giveFound();
    m_manager->openBoard(2);
    m_manager->panel.show();
    QListWidget *list = m_manager->available();
    const QPoint second = list->visualItemRect(list->item(1)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, second);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, Qt::NoModifier, second);
    QCOMPARE(m_manager->keys(m_manager->board(2)), QStringList{m_manager->networkKey(1)});
    QCOMPARE(m_manager->keys(list), QStringList{m_manager->networkKey(0)});
}

void tst_ProjectManager::sixteenthRowByButton()
{
    m_manager->findNetworkLoggers(20);
    m_manager->giveFound();
    m_manager->move(15, 0);
    QVERIFY(m_manager->messages().isEmpty());
    // Rows that were moved before the limit was reached stay where they are.
    m_manager->move(3, 0);
    QCOMPARE(m_manager->board(0)->count(), 16);
    QCOMPARE(m_manager->available()->count(), 4);
    QCOMPARE(m_manager->messages(), QStringList{boardFull});
    m_manager->move(1, 0);
    QCOMPARE(m_manager->messages(), (QStringList{boardFull, boardFull}));
    QCOMPARE(m_manager->board(0)->count(), 16);
    QVERIFY(m_manager->button("btn_add")->isEnabled());
}

void tst_ProjectManager::sixteenthRowByDoubleClick()
{
    m_manager->findNetworkLoggers(17);
    m_manager->giveFound();
    for (int i = 0; i < 16; ++i)
        m_manager->panel.slotDblProjectAddDevice(m_manager->available()->item(0));
    QCOMPARE(m_manager->board(0)->count(), 16);
    QVERIFY(m_manager->messages().isEmpty());
    m_manager->panel.slotDblProjectAddDevice(m_manager->available()->item(0));
    QCOMPARE(m_manager->board(0)->count(), 16);
    QCOMPARE(m_manager->available()->count(), 1);
    QCOMPARE(m_manager->messages(), QStringList{boardFull});
}

void tst_ProjectManager::sixtyFourRowsEndTheAdding_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("button") << true;
    QTest::newRow("double click") << false;
}

void tst_ProjectManager::sixtyFourRowsEndTheAdding()
{
    QFETCH(bool, byButton);
    m_manager->findNetworkLoggers(65);
    m_manager->giveFound();
    for (int i = 0; i < 4; ++i)
        m_manager->move(i < 3 ? 16 : 15, i);
    QVERIFY(m_manager->button("btn_add")->isEnabled());
    QVERIFY(m_manager->button("btn_manual")->isEnabled());
    if (byButton)
        m_manager->move(1, 3);
    else
        m_manager->panel.slotDblProjectAddDevice(m_manager->available()->item(0));
    QVERIFY(!m_manager->button("btn_add")->isEnabled());
    QVERIFY(!m_manager->button("btn_manual")->isEnabled());
    m_manager->remove(m_manager->networkKey(0), 0);
    QVERIFY(m_manager->button("btn_add")->isEnabled());
    QVERIFY(m_manager->button("btn_manual")->isEnabled());
}

void tst_ProjectManager::intervalMenu_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QString>("text");
    QTest::newRow("default") << 10000 << "10 sec";
    QTest::newRow("ten minutes") << 600000 << "10 min";
    QTest::newRow("none of them") << 0 << "";
}

void tst_ProjectManager::intervalMenu()
{
    QFETCH(int, interval);
    QFETCH(QString, text);
    const TemporaryInterval temporary(interval);
    const ManagerFixture manager;
    const auto *menu = manager.panel.findChild<QMenu *>();
    QCOMPARE(menu->title(), QStringLiteral("Interval"));
    QCOMPARE(menu->styleSheet(), QStringLiteral("background-color: rgb(198, 198, 198);color: rgb(55,55,55);"));
    const QStringList texts{QStringLiteral("1 sec"), QStringLiteral("5 sec"), QStringLiteral("10 sec"),
                            QStringLiteral("1 min"), QStringLiteral("5 min"), QStringLiteral("10 min")};
    QCOMPARE(menu->actions().size(), 6);
    for (int i = 0; i < 6; ++i) {
        const QAction *action = menu->actions().at(i);
        QCOMPARE(action->text(), texts.at(i));
        QVERIFY(action->isCheckable());
        QCOMPARE(action->isChecked(), texts.at(i) == text);
    }
    QCOMPARE(manager.child<QLabel>("label_interval")->text(), text);
}

void tst_ProjectManager::chosenIntervalCountsAtOnce()
{
    const TemporaryInterval temporary(10000);
    {
        const ManagerFixture manager;
        const QList<QAction *> actions = manager.panel.findChild<QMenu *>()->actions();
        const int milliseconds[] = {1000, 5000, 10000, 60000, 300000, 600000};
        for (int i = 5; i >= 0; --i) {
            actions.at(i)->trigger();
            QCOMPARE(dataIntervalMs, milliseconds[i]);
            QCOMPARE(manager.child<QLabel>("label_interval")->text(), actions.at(i)->text());
            for (const QAction *action : actions)
                QCOMPARE(action->isChecked(), action == actions.at(i));
            // Once more: what is checked stays so.
            actions.at(i)->trigger();
            QVERIFY(actions.at(i)->isChecked());
        }
        actions.at(4)->trigger();
    }
    QCOMPARE(dataIntervalMs, 300000);
}

void tst_ProjectManager::intervalMenuOpensByItsButton()
{
    QWidget window;
    auto *panel = new ProjectManager(&window);
    panel->setGeometry(10, 20, 800, 400);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    auto *button = panel->findChild<QPushButton *>(QStringLiteral("btn_timeInterval"));
    button->click();
    const auto *menu = panel->findChild<QMenu *>();
    QVERIFY(menu->isVisible());
    // Where a platform shows a menu that was moved there may differ by its idea of a frame.
    QMenu reference;
    reference.move(panel->mapToGlobal(panel->pos()) + button->pos() + QPoint(5, 46));
    reference.show();
    QCOMPARE(menu->pos(), reference.pos());
}

void tst_ProjectManager::intervalCanBeDisabled()
{
    m_manager->panel.setIntervalDisabled(true);
    QVERIFY(!m_manager->button("btn_timeInterval")->isEnabled());
    QVERIFY(!intervalMenuOf()->isEnabled());
    m_manager->panel.setIntervalDisabled(false);
    QVERIFY(m_manager->button("btn_timeInterval")->isEnabled());
    QVERIFY(intervalMenuOf()->isEnabled());
}

QTEST_MAIN(tst_ProjectManager)
#include "tst_ProjectManager.moc"
