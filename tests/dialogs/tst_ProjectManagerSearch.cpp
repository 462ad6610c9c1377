#include "ManagerFixture.h"
#include "ManagerPictures.h"

#include <QSignalSpy>
#include <QTest>

/// The device manager's list of found loggers, which the search fills anew at every answer.
class tst_ProjectManagerSearch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QList<ConfiguredDevice *>>(); }
    void init() { m_manager = std::make_unique<ManagerFixture>(); }
    void cleanup() { m_manager.reset(); }

    void foundDevicesAreListed();
    void placedDevicesAreLeftOutOfTheSearch();
    void searchKeepsTheSelectionAndNoRecord();
    void searchKeepsThePlaceInTheList_data();
    void searchKeepsThePlaceInTheList();
    void searchTakesWhatIsGone();
    void removedDevicesGoBackIfFound();
    void refreshAsksForASearch();

private:
    std::unique_ptr<ManagerFixture> m_manager;
};

void tst_ProjectManagerSearch::foundDevicesAreListed()
{
    m_manager->find(QStringLiteral("12345678"), QStringLiteral("COM5"), 23, UsbInterface);
    m_manager->find(QStringLiteral("02AA00000001"), QStringLiteral("10.0.0.7"), 4001, NetworkInterface);
    m_manager->giveFound();
    QListWidget *list = m_manager->available();
    QCOMPARE(m_manager->texts(list),
             (QStringList{QStringLiteral("12345678\t[COM5]"), QStringLiteral("02AA00000001\t[10.0.0.7:4001]")}));
    QCOMPARE(m_manager->keys(list), (QStringList{QStringLiteral("12345678"), QStringLiteral("02AA00000001")}));
    QVERIFY(shows(list->item(0), usbPicture));
    QVERIFY(shows(list->item(1), lanPicture));
}

void tst_ProjectManagerSearch::placedDevicesAreLeftOutOfTheSearch()
{
    m_manager->configure(QStringLiteral("Oven"), QStringLiteral("02aa00000000"), NetworkInterface, 3);
    m_manager->giveConfigured();
    m_manager->findNetworkLoggers(3);
    m_manager->giveFound();
    // The first is on the fourth dashboard, written in the other case.
    QCOMPARE(m_manager->keys(m_manager->available()),
             (QStringList{m_manager->networkKey(1), m_manager->networkKey(2)}));
    m_manager->move(1, 1);
    m_manager->giveFound();
    QCOMPARE(m_manager->keys(m_manager->available()), QStringList{m_manager->networkKey(2)});
}

void tst_ProjectManagerSearch::searchKeepsTheSelectionAndNoRecord()
{
    m_manager->findNetworkLoggers(3);
    m_manager->giveFound();
    m_manager->available()->item(1)->setSelected(true);
    m_manager->forgetFound();
    m_manager->findNetworkLoggers(4);
    m_manager->giveFound();
    QCOMPARE(m_manager->available()->count(), 4);
    QCOMPARE(m_manager->available()->selectedItems(), QList<QListWidgetItem *>{m_manager->available()->item(1)});

    m_manager->forgetFound();
    m_manager->move(1, 0);
    QSignalSpy confirmed(&m_manager->panel, &ProjectManager::projectListConfirm);
    m_manager->button("btn_confirm")->click();
    const auto devices = confirmed.takeFirst().at(0).value<QList<ConfiguredDevice *>>();
    QCOMPARE(devices.size(), 1);
    QCOMPARE(devices.first()->address(), QStringLiteral("10.0.0.1"));
    qDeleteAll(devices);
}

void tst_ProjectManagerSearch::searchKeepsThePlaceInTheList_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("behind");
    QTest::newRow("no news") << 0 << 0;
    QTest::newRow("one more") << 0 << 1;
    QTest::newRow("one more above") << 1 << 0;
}

void tst_ProjectManagerSearch::searchKeepsThePlaceInTheList()
{
    QFETCH(int, before);
    QFETCH(int, behind);
    m_manager->panel.resize(1010, 464);
    m_manager->panel.show();
    m_manager->findNetworkLoggers(60);
    m_manager->giveFound();
    QListWidget *list = m_manager->available();
    list->item(29)->setSelected(true);
    list->setCurrentRow(31, QItemSelectionModel::Select);
    list->scrollToItem(list->item(25), QAbstractItemView::PositionAtTop);
    const auto isAtTop = [list](int row) {
        return list->visualItemRect(list->item(row)).top() == 0;
    };
    QVERIFY(isAtTop(25));

    m_manager->forgetFound();
    for (int i = 0; i < before; ++i)
        m_manager->find(QStringLiteral("12345678"), QStringLiteral("COM5"), 23, UsbInterface);
    m_manager->findNetworkLoggers(60 + behind);
    m_manager->giveFound();
    QCOMPARE(list->count(), 60 + before + behind);
    QVERIFY(list->item(before)->text().startsWith(m_manager->networkKey(0)));
    QCOMPARE(list->currentRow(), 31 + before);
    QCOMPARE(list->selectedItems().size(), 2);
    QVERIFY(list->item(29 + before)->isSelected());
    QVERIFY(isAtTop(25 + before));
    QCoreApplication::processEvents();
    QVERIFY(isAtTop(25 + before));
    QTest::keyClick(list, Qt::Key_Down);
    QCOMPARE(list->currentRow(), 32 + before);
}

void tst_ProjectManagerSearch::searchTakesWhatIsGone()
{
    m_manager->find(QStringLiteral("12345678"), QStringLiteral("COM5"), 23, UsbInterface);
    m_manager->findNetworkLoggers(3);
    m_manager->giveFound();
    QListWidget *list = m_manager->available();
    list->setCurrentRow(2);
    m_manager->forgetFound();
    m_manager->find(m_manager->networkKey(2), QStringLiteral("10.0.0.9"), 4001, NetworkInterface);
    m_manager->find(m_manager->networkKey(0), QStringLiteral("10.0.0.1"), 23, NetworkInterface);
    m_manager->giveFound();
    QCOMPARE(m_manager->texts(list), (QStringList{m_manager->networkKey(2) + QStringLiteral("\t[10.0.0.9:4001]"),
                                                  m_manager->networkKey(0) + QStringLiteral("\t[10.0.0.1:23]")}));
}

void tst_ProjectManagerSearch::removedDevicesGoBackIfFound()
{
    m_manager->configure(QStringLiteral("Gone"), QStringLiteral("02AA99999999"), NetworkInterface, 0);
    m_manager->giveConfigured();
    m_manager->findNetworkLoggers(2);
    m_manager->giveFound();
    m_manager->move(2, 0);
    m_manager->board(0)->selectAll();
    m_manager->button("btn_remove")->click();
    QCOMPARE(m_manager->board(0)->count(), 0);
    QCOMPARE(m_manager->keys(m_manager->available()),
             (QStringList{m_manager->networkKey(0), m_manager->networkKey(1)}));
}

void tst_ProjectManagerSearch::refreshAsksForASearch()
{
    QSignalSpy refresh(&m_manager->panel, &ProjectManager::refreshAvailDeviceList);
    m_manager->button("pushButton_refresh")->click();
    QCOMPARE(refresh.count(), 1);
}

QTEST_MAIN(tst_ProjectManagerSearch)
#include "tst_ProjectManagerSearch.moc"
