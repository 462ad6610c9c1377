#include "ManagerFixture.h"
#include "dialogs/ManualConfigDeviceDialog.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"

#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>

namespace {

const QString ovenKey = QStringLiteral("0200AA00000F");
const QString newAddress = QStringLiteral("10.0.0.99");

} // namespace

class tst_ProjectManagerDevices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<QList<ConfiguredDevice *>>(); }
    void init();
    void cleanup();

    void signalsAreAsRequired();
    void foundDevicesBecomeDevices_data();
    void foundDevicesBecomeDevices();
    void confirmedOrderIsThatOfTheRows();
    void configuredDeviceIsHandedBack();
    void vanishedDevicesAreSkipped();
    void nothingToConfirm();
    void deviceFoundElsewhereIsTakenFromThere();

    void handAddedDeviceGetsARow();
    void handAddedTwiceIsRefused_data();
    void handAddedTwiceIsRefused();
    void handAddedToAFullDashboardIsRefused();
    void sixtyFourthConfiguredDeviceEndsTheAdding();
    void handAddedHidesTheFoundRow();
    void addedAgainTakesTheNewAddress_data();
    void addedAgainTakesTheNewAddress();
    void removedHandAddedDeviceIsClosed();

    void unconfirmedDevicesAreHandedOut();
    void confirmedDevicesAreNot();
    void dialogHandsItsDeviceToTheManager();
    void closedDialogsDoNotPileUp();
    void testUnderWayEndsWithTheManager_data();
    void testUnderWayEndsWithTheManager();

private:
    QList<ConfiguredDevice *> confirm();
    void addByHand(ConfiguredDevice *device) { m_manager->panel.slotManualConfigDevice(device); }
    /// Opens the manual dialog and confirms an entry for @p logger.
    ManualConfigDeviceDialog *startDialog(const ScriptedLogger &logger) const;

    std::unique_ptr<ManagerFixture> m_manager;
    std::unique_ptr<QSignalSpy> m_confirmed;
    std::vector<std::unique_ptr<ConfiguredDevice>> m_new;
};

void tst_ProjectManagerDevices::init()
{
    m_manager = std::make_unique<ManagerFixture>();
    m_confirmed = std::make_unique<QSignalSpy>(&m_manager->panel, &ProjectManager::projectListConfirm);
}

void tst_ProjectManagerDevices::cleanup()
{
    m_confirmed.reset();
    m_manager.reset();
    m_new.clear();
}

QList<ConfiguredDevice *> tst_ProjectManagerDevices::confirm()
{
    m_manager->button("btn_confirm")->click();
    return m_confirmed->isEmpty() ? QList<ConfiguredDevice *>()
                                  : m_confirmed->takeFirst().at(0).value<QList<ConfiguredDevice *>>();
}

ManualConfigDeviceDialog *tst_ProjectManagerDevices::startDialog(const ScriptedLogger &logger) const
{
    m_manager->button("btn_manual")->click();
    auto *dialog = m_manager->panel.findChild<ManualConfigDeviceDialog *>();
    dialog->findChild<QLineEdit *>(QStringLiteral("lineEdit_devicename"))->setText(QStringLiteral("Oven"));
    dialog->findChild<QLineEdit *>(QStringLiteral("lineEdit_macaddr"))->setText(ovenKey);
    const int loopback[] = {127, 0, 0, 1};
    for (int i = 0; i < 4; ++i)
        dialog->findChild<QSpinBox *>(QStringLiteral("spinBox_ipaddr%1").arg(i + 1))->setValue(loopback[i]);
    dialog->findChild<QSpinBox *>(QStringLiteral("spinBox_port"))->setValue(logger.port());
    dialog->findChild<QPushButton *>(QStringLiteral("pushButton_confirm"))->click();
    return dialog;
}

void tst_ProjectManagerDevices::signalsAreAsRequired()
{
    const QMetaObject &meta = ProjectManager::staticMetaObject;
    QVERIFY(meta.indexOfSignal("projectListConfirm(QList<ConfiguredDevice*>,QStringList)") >= 0);
    QVERIFY(meta.indexOfSignal("refreshAvailDeviceList()") >= 0);
    for (const char *slot :
         {"slotProjectAddDevice()", "slotDblProjectAddDevice(QListWidgetItem*)", "slotProjectRemoveDevice()",
          "slotManualConfigDeviceDlg()", "slotManualConfigDevice(ConfiguredDevice*)", "slotProjectListConfirm()",
          "slotCommandInterval()", "slotIntervalChange()", "slotRefresh()"})
        QVERIFY2(meta.indexOfSlot(slot) >= 0, slot);
}

void tst_ProjectManagerDevices::foundDevicesBecomeDevices_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    QTest::newRow("USB") << "12345678"
                         << "ttyACM0" << 23 << int(UsbInterface) << "12345678";
    QTest::newRow("network") << "0200AA000001"
                             << "10.0.0.7" << 4001 << int(NetworkInterface) << "0200AA000001";
    QTest::newRow("blanks in the key") << "SN 12 34"
                                       << "ttyACM0" << 23 << int(UsbInterface) << "SN1234";
    QTest::newRow("bracket in the key") << "SN[12]"
                                        << "ttyACM0" << 23 << int(UsbInterface) << "SN";
}

void tst_ProjectManagerDevices::foundDevicesBecomeDevices()
{
    QFETCH(QString, key);
    QFETCH(QString, address);
    QFETCH(int, port);
    QFETCH(int, kind);
    QFETCH(QString, name);
    const LogCapture log;
    m_manager->find(key, address, static_cast<quint16>(port), kind);
    m_manager->giveFound();
    m_manager->move(1, 1);
    const QList<ConfiguredDevice *> devices = confirm();
    QCOMPARE(devices.size(), 1);
    m_new.emplace_back(devices.first());
    QCOMPARE(devices.first()->serialNumber(), key);
    QCOMPARE(devices.first()->interfaceKind(), kind);
    QCOMPARE(devices.first()->deviceName(), name);
    QCOMPARE(devices.first()->ch1Name(), QStringLiteral("CH1"));
    QCOMPARE(devices.first()->ch2Name(), QStringLiteral("CH2"));
    QCOMPARE(devices.first()->address(), address);
    QCOMPARE(int(devices.first()->port()), port);
    QCOMPARE(devices.first()->dashboardNumber(), 1);
    QCOMPARE(log.count(QStringLiteral("ProjectManager::slotProjectListConfirm : 1")), 1);
}

void tst_ProjectManagerDevices::confirmedOrderIsThatOfTheRows()
{
    m_manager->findNetworkLoggers(4);
    m_manager->giveFound();
    m_manager->move(1, 3);
    m_manager->move(2, 0);
    m_manager->move(1, 3);
    QStringList order;
    for (ConfiguredDevice *device : confirm()) {
        m_new.emplace_back(device);
        order << QStringLiteral("%1 on %2").arg(device->serialNumber()).arg(device->dashboardNumber());
    }
    const auto key = &ManagerFixture::networkKey;
    QCOMPARE(order, (QStringList{key(1) + " on 0", key(2) + " on 0", key(0) + " on 3", key(3) + " on 3"}));
}

void tst_ProjectManagerDevices::configuredDeviceIsHandedBack()
{
    ConfiguredDevice *oven = m_manager->configure(QStringLiteral("Oven"), ovenKey, NetworkInterface, 0);
    ConfiguredDevice *other = m_manager->configure(QStringLiteral("Other"), ovenKey.toLower(), NetworkInterface, 1);
    m_manager->giveConfigured();
    QCOMPARE(confirm(), (QList<ConfiguredDevice *>{oven, other}));
    QCOMPARE(oven->deviceName(), QStringLiteral("Oven"));
    QCOMPARE(oven->ch1Name(), QStringLiteral("Air"));
    QCOMPARE(oven->address(), QStringLiteral("10.1.0.1"));
    QCOMPARE(other->dashboardNumber(), 1);
}

void tst_ProjectManagerDevices::vanishedDevicesAreSkipped()
{
    const LogCapture log;
    m_manager->findNetworkLoggers(1);
    m_manager->find(QStringLiteral("12345678"), QStringLiteral("ttyACM0"), 23, UsbInterface);
    m_manager->giveFound();
    m_manager->move(2, 0);
    m_manager->forgetFound();
    m_manager->findNetworkLoggers(1);
    m_manager->giveFound();
    const QList<ConfiguredDevice *> devices = confirm();
    QCOMPARE(devices.size(), 1);
    m_new.emplace_back(devices.first());
    QCOMPARE(devices.first()->serialNumber(), m_manager->networkKey(0));
    QCOMPARE(log.count(QStringLiteral("slotProjectListConfirm [12345678] is not found")), 1);
}

void tst_ProjectManagerDevices::nothingToConfirm()
{
    m_manager->findNetworkLoggers(1);
    m_manager->giveFound();
    m_manager->button("btn_confirm")->click();
    QCOMPARE(m_confirmed->count(), 0);
    QCOMPARE(
        m_manager->messages(),
        QStringList{QStringLiteral("INFORMATION: You must add at least one device to the dashboard.\nPlease retry.")});
}

void tst_ProjectManagerDevices::deviceFoundElsewhereIsTakenFromThere()
{
    ConfiguredDevice *oven = m_manager->configure(QStringLiteral("Oven"), ovenKey, NetworkInterface, 0);
    m_manager->giveConfigured();
    m_manager->find(ovenKey, newAddress, 4001, NetworkInterface);
    m_manager->giveFound();
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{oven});
    QCOMPARE(oven->address(), QStringLiteral("10.1.0.1"));

    // Taken out, it is listed as found after the next search, with the address that counts from then on.
    m_manager->remove(ovenKey, 0);
    m_manager->giveFound();
    QCOMPARE(m_manager->texts(m_manager->available()), QStringList{ovenKey + QStringLiteral("\t[10.0.0.99:4001]")});
    m_manager->move(1, 2);
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{oven});
    QCOMPARE(oven->address(), newAddress);
    QCOMPARE(int(oven->port()), 4001);
    QCOMPARE(oven->deviceName(), QStringLiteral("Oven"));
    QCOMPARE(oven->ch1Name(), QStringLiteral("Air"));
    QCOMPARE(oven->dashboardNumber(), 2);
}

void tst_ProjectManagerDevices::handAddedDeviceGetsARow()
{
    const LogCapture log;
    m_manager->openBoard(2);
    ConfiguredDevice *oven = m_manager->make(QStringLiteral("Oven"), ovenKey, newAddress);
    addByHand(oven);
    QCOMPARE(m_manager->texts(m_manager->board(2)), QStringList{QStringLiteral("Oven\t[10.0.0.99:23]")});
    QCOMPARE(m_manager->keys(m_manager->board(2)), QStringList{ovenKey});
    QCOMPARE(oven->dashboardNumber(), 2);
    QCOMPARE(log.count(QStringLiteral("ProjectManager::slotManualConfigDevice : 1")), 1);
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{oven});
}

void tst_ProjectManagerDevices::handAddedTwiceIsRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("same case") << ovenKey;
    QTest::newRow("other case") << ovenKey.toLower();
}

void tst_ProjectManagerDevices::handAddedTwiceIsRefused()
{
    QFETCH(QString, key);
    ConfiguredDevice *oven = m_manager->configure(QStringLiteral("Oven"), ovenKey, NetworkInterface, 3);
    m_manager->giveConfigured();
    ConfiguredDevice *second = m_manager->make(QStringLiteral("Second"), key, newAddress);
    addByHand(second);
    QCOMPARE(m_manager->messages(), QStringList{QStringLiteral("ERROR: the mac address already exists.")});
    QCOMPARE(m_manager->board(0)->count(), 0);
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{oven});
    QCOMPARE(m_manager->panel.takeUnconfirmedDevices(), QList<ConfiguredDevice *>{second});
}

void tst_ProjectManagerDevices::handAddedToAFullDashboardIsRefused()
{
    m_manager->findNetworkLoggers(16);
    m_manager->giveFound();
    for (int i = 0; i < 16; ++i)
        m_manager->panel.slotDblProjectAddDevice(m_manager->available()->item(0));
    ConfiguredDevice *oven = m_manager->make(QStringLiteral("Oven"), ovenKey, newAddress);
    addByHand(oven);
    QCOMPARE(m_manager->messages(),
             QStringList{QStringLiteral("ERROR: cannot add more than 16 devices to the dashboard.")});
    QCOMPARE(m_manager->board(0)->count(), 16);
    QCOMPARE(m_manager->panel.takeUnconfirmedDevices(), QList<ConfiguredDevice *>{oven});
}

void tst_ProjectManagerDevices::sixtyFourthConfiguredDeviceEndsTheAdding()
{
    // Devices taken off the dashboards count here, rows of found devices do not.
    for (int i = 0; i < 62; ++i)
        m_manager->configure(QString(), m_manager->networkKey(i), NetworkInterface, i / 16);
    m_manager->giveConfigured();
    m_manager->remove(m_manager->networkKey(0), 0);
    m_manager->find(QStringLiteral("12345678"), QStringLiteral("ttyACM0"), 23, UsbInterface);
    m_manager->giveFound();
    m_manager->move(1, 0);
    m_manager->openBoard(3);
    addByHand(m_manager->make(QString(), QStringLiteral("0200AA000001"), newAddress));
    QVERIFY(m_manager->button("btn_add")->isEnabled());
    QVERIFY(m_manager->button("btn_manual")->isEnabled());
    m_manager->remove(QStringLiteral("0200AA000001"), 3);
    addByHand(m_manager->make(QString(), QStringLiteral("0200AA000002"), newAddress));
    QVERIFY(!m_manager->button("btn_add")->isEnabled());
    QVERIFY(!m_manager->button("btn_manual")->isEnabled());
    QCOMPARE(m_manager->panel.takeUnconfirmedDevices().size(), 2);
}

void tst_ProjectManagerDevices::handAddedHidesTheFoundRow()
{
    m_manager->find(ovenKey, newAddress, 23, NetworkInterface);
    m_manager->giveFound();
    ConfiguredDevice *oven = m_manager->make(QStringLiteral("Oven"), ovenKey.toLower(), newAddress);
    addByHand(oven);
    QCOMPARE(m_manager->available()->count(), 0);
    m_manager->remove(ovenKey.toLower(), 0);
    QCOMPARE(m_manager->available()->count(), 1);
    m_manager->move(1, 1);
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{oven});
}

void tst_ProjectManagerDevices::addedAgainTakesTheNewAddress_data()
{
    QTest::addColumn<bool>("wasInProject");
    QTest::addColumn<QString>("key");
    QTest::newRow("from the project") << true << ovenKey;
    QTest::newRow("from the project, other case") << true << ovenKey.toLower();
    QTest::newRow("added by hand before") << false << ovenKey;
}

void tst_ProjectManagerDevices::addedAgainTakesTheNewAddress()
{
    QFETCH(bool, wasInProject);
    QFETCH(QString, key);
    ConfiguredDevice *before = nullptr;
    if (wasInProject) {
        before = m_manager->configure(QStringLiteral("Oven"), ovenKey, NetworkInterface, 0);
        m_manager->giveConfigured();
    } else {
        before = m_manager->make(QStringLiteral("Oven"), ovenKey, QStringLiteral("10.1.0.1"));
        addByHand(before);
    }
    m_manager->remove(ovenKey, 0);
    ConfiguredDevice *again = m_manager->make(QStringLiteral("Oven"), key, newAddress);
    addByHand(again);
    QVERIFY(m_manager->messages().isEmpty());
    const QList<ConfiguredDevice *> devices = confirm();
    QCOMPARE(devices, QList<ConfiguredDevice *>{again});
    QCOMPARE(devices.first()->address(), newAddress);
    const QList<ConfiguredDevice *> left =
        wasInProject ? QList<ConfiguredDevice *>() : QList<ConfiguredDevice *>{before};
    QCOMPARE(m_manager->panel.takeUnconfirmedDevices(), left);
}

void tst_ProjectManagerDevices::removedHandAddedDeviceIsClosed()
{
    ScriptedLogger logger;
    logger.setSilent();
    ConfiguredDevice *oven = m_manager->make(QStringLiteral("Oven"), ovenKey, logger.address());
    oven->setDeviceInfo(QStringLiteral("Oven"), {}, {}, logger.address(), logger.port());
    QVERIFY(oven->openDevice());
    addByHand(oven);
    QTRY_VERIFY(oven->isOpen());
    ConfiguredDevice *twice = m_manager->make(QStringLiteral("Oven"), ovenKey, logger.address());
    twice->setDeviceInfo(QStringLiteral("Oven"), {}, {}, logger.address(), logger.port());
    QVERIFY(twice->openDevice());
    QTRY_COMPARE(logger.openConnections(), 2);
    addByHand(twice);
    QTRY_COMPARE(logger.openConnections(), 1);
    m_manager->remove(ovenKey, 0);
    QVERIFY(!oven->isOpen());
    QTRY_COMPARE(logger.openConnections(), 0);
}

void tst_ProjectManagerDevices::unconfirmedDevicesAreHandedOut()
{
    ConfiguredDevice *project = m_manager->configure(QStringLiteral("Lab"), QStringLiteral("01"), NetworkInterface, 0);
    m_manager->giveConfigured();
    ConfiguredDevice *waiting = m_manager->make(QStringLiteral("A"), QStringLiteral("0A"), newAddress);
    ConfiguredDevice *removed = m_manager->make(QStringLiteral("B"), QStringLiteral("0B"), newAddress);
    ConfiguredDevice *refused = m_manager->make(QStringLiteral("C"), QStringLiteral("0a"), newAddress);
    for (ConfiguredDevice *device : {waiting, removed, refused})
        addByHand(device);
    m_manager->remove(QStringLiteral("0B"), 0);
    const QList<ConfiguredDevice *> all{waiting, removed, refused};
    QCOMPARE(m_manager->panel.takeUnconfirmedDevices(), all);
    QVERIFY(m_manager->panel.takeUnconfirmedDevices().isEmpty());
    // What was handed out is not touched any more.
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{project});
}

void tst_ProjectManagerDevices::confirmedDevicesAreNot()
{
    ConfiguredDevice *kept = m_manager->make(QStringLiteral("A"), QStringLiteral("0A"), newAddress);
    ConfiguredDevice *removed = m_manager->make(QStringLiteral("B"), QStringLiteral("0B"), newAddress);
    addByHand(kept);
    addByHand(removed);
    m_manager->remove(QStringLiteral("0B"), 0);
    // The controller asks inside the signal.
    QList<ConfiguredDevice *> handedOut;
    connect(&m_manager->panel, &ProjectManager::projectListConfirm, this,
            [&] { handedOut = m_manager->panel.takeUnconfirmedDevices(); });
    QCOMPARE(confirm(), QList<ConfiguredDevice *>{kept});
    QCOMPARE(handedOut, QList<ConfiguredDevice *>{removed});
}

void tst_ProjectManagerDevices::dialogHandsItsDeviceToTheManager()
{
    const ScriptedLogger logger;
    m_manager->openBoard(1);
    const QPointer<ManualConfigDeviceDialog> dialog = startDialog(logger);
    QCOMPARE(dialog->parentWidget(), &m_manager->panel);
    QTRY_COMPARE(m_manager->board(1)->count(), 1);
    QTRY_VERIFY(!dialog);
    const QList<ConfiguredDevice *> devices = confirm();
    QCOMPARE(devices.size(), 1);
    m_new.emplace_back(devices.first());
    QCOMPARE(devices.first()->serialNumber(), ovenKey);
    QCOMPARE(devices.first()->address(), logger.address());
}

void tst_ProjectManagerDevices::closedDialogsDoNotPileUp()
{
    const auto dialogs = [this] {
        return m_manager->panel.findChildren<ManualConfigDeviceDialog *>();
    };
    for (int i = 0; i < 3; ++i) {
        m_manager->button("btn_manual")->click();
        QCOMPARE(dialogs().size(), 1);
        QVERIFY(dialogs().first()->isVisible());
        dialogs().first()->close();
    }
}

void tst_ProjectManagerDevices::testUnderWayEndsWithTheManager_data()
{
    QTest::addColumn<bool>("destroyed");
    QTest::newRow("devices fetched") << false;
    QTest::newRow("manager destroyed") << true;
}

void tst_ProjectManagerDevices::testUnderWayEndsWithTheManager()
{
    QFETCH(bool, destroyed);
    ScriptedLogger logger;
    logger.setSilent();
    QSignalSpy polled(&logger, &ScriptedLogger::commandReceived);
    const ManualConfigDeviceDialog *dialog = startDialog(logger);
    QVERIFY(polled.wait());
    const LogCapture log;
    if (destroyed) {
        m_confirmed.reset();
        m_manager.reset();
    } else {
        QVERIFY(m_manager->panel.takeUnconfirmedDevices().isEmpty());
        QVERIFY(!dialog->isVisible());
    }
    QCOMPARE(log.count(QStringLiteral("TelnetDevice::~TelnetDevice")), 1);
    QTRY_COMPARE(logger.openConnections(), 0);
}

QTEST_MAIN(tst_ProjectManagerDevices)
#include "tst_ProjectManagerDevices.moc"
