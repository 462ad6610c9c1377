#include "Operator.h"

#include "dialogs/ManualConfigDeviceDialog.h"
#include "support/LogCapture.h"
#include "support/ScriptedLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"

#include <QLineEdit>
#include <QSpinBox>

namespace {

enum class WayOut { Confirm, CloseProject, CloseWindow, Destroy };

} // namespace
Q_DECLARE_METATYPE(WayOut)

/// Who owns a device on its way through the device manager, and what becomes of it.
class tst_ManagedDevices : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_op = std::make_unique<Operator>(); }
    void cleanup() { m_op.reset(); }

    void aRefusedDeviceIsFreed_data() { waysOut(); }
    void aRefusedDeviceIsFreed();
    void aRemovedDeviceIsFreed_data() { waysOut(); }
    void aRemovedDeviceIsFreed();
    void anUnconfirmedDeviceIsFreed_data() { waysOut(); }
    void anUnconfirmedDeviceIsFreed();
    void aDeviceThatLeavesTheProjectIsFreed();
    void aDeviceAddedAgainTakesItsNewAddress();
    void closingWhileEditingFreesTheProjectsDevices();
    void aTestUnderWayEndsWithTheManager();
    void aMessageOfTheManagerGoesWithIt();
    void editingWhileAChartIsOpen();
    void aScreenThatWasLeftIsHeardNoMore();

private:
    static void waysOut();
    void leave(WayOut way);

    std::unique_ptr<Operator> m_op;
};

void tst_ManagedDevices::waysOut()
{
    QTest::addColumn<WayOut>("way");
    QTest::newRow("confirmed") << WayOut::Confirm;
    QTest::newRow("project closed") << WayOut::CloseProject;
    QTest::newRow("window closed") << WayOut::CloseWindow;
    QTest::newRow("station destroyed") << WayOut::Destroy;
}

void tst_ManagedDevices::leave(WayOut way)
{
    switch (way) {
    case WayOut::Confirm:
        m_op->confirm();
        break;
    case WayOut::CloseProject:
        m_op->close();
        break;
    case WayOut::CloseWindow:
        m_op->station->close();
        break;
    case WayOut::Destroy:
        m_op->station.reset();
        break;
    }
}

void tst_ManagedDevices::aRefusedDeviceIsFreed()
{
    QFETCH(WayOut, way);
    m_op->createProject();
    const DeviceEntry entry = m_op->fixture.addLogger();
    const QPointer<ConfiguredDevice> placed = m_op->addByHand(entry);
    DeviceEntry inOtherCase = entry;
    inOtherCase.serialNumber = entry.serialNumber.toLower();
    const QPointer<ConfiguredDevice> refused = m_op->addByHand(inOtherCase);
    QCOMPARE(shownMessages(), QStringList{QStringLiteral("the mac address already exists.")});
    leave(way);
    QVERIFY(!refused);
    QCOMPARE(placed.isNull(), way != WayOut::Confirm);
}

void tst_ManagedDevices::aRemovedDeviceIsFreed()
{
    QFETCH(WayOut, way);
    m_op->createProject();
    const QPointer<ConfiguredDevice> removed = m_op->addByHand();
    const QPointer<ConfiguredDevice> kept = m_op->addByHand();
    m_op->remove(0);
    leave(way);
    QVERIFY(!removed);
    QCOMPARE(kept.isNull(), way != WayOut::Confirm);
    QTRY_COMPARE(m_op->fixture.logger(0).openConnections(), 0);
}

void tst_ManagedDevices::anUnconfirmedDeviceIsFreed()
{
    QFETCH(WayOut, way);
    QVERIFY(m_op->openProject(1));
    m_op->edit();
    const QPointer<ConfiguredDevice> added = m_op->addByHand();
    leave(way);
    QCOMPARE(added.isNull(), way != WayOut::Confirm);
    if (way == WayOut::Confirm)
        QCOMPARE(m_op->station->configuredDevices().size(), 2);
    else
        QTRY_COMPARE(m_op->fixture.logger(1).openConnections(), 0);
}

void tst_ManagedDevices::aDeviceThatLeavesTheProjectIsFreed()
{
    QVERIFY(m_op->openProject(2));
    const QPointer<ConfiguredDevice> leaving = m_op->station->configuredDevices().at(0);
    const QPointer<ConfiguredDevice> staying = m_op->station->configuredDevices().at(1);
    m_op->edit();
    m_op->remove(0);
    m_op->confirm();
    QVERIFY(!leaving);
    QCOMPARE(m_op->station->configuredDevices(), QList<ConfiguredDevice *>{staying});
    QCOMPARE(m_op->projectFile().readDevices()->size(), 1);
    const int before = m_op->fixture.logger(0).accepted();
    QTRY_COMPARE(staying->ch2Value(), QStringLiteral("45.10"));
    m_op->station->writeDevice();
    QCOMPARE(m_op->fixture.logger(0).accepted(), before);
}

void tst_ManagedDevices::aDeviceAddedAgainTakesItsNewAddress()
{
    QVERIFY(m_op->openProject(1));
    const QPointer<ConfiguredDevice> before = m_op->station->configuredDevices().first();
    DeviceEntry moved = m_op->fixture.addLogger();
    moved.serialNumber = before->serialNumber();
    m_op->edit();
    m_op->remove(0);
    const QPointer<ConfiguredDevice> added = m_op->addByHand(moved);
    m_op->confirm();
    QVERIFY(!before);
    QCOMPARE(m_op->station->configuredDevices(), QList<ConfiguredDevice *>{added});
    QCOMPARE(m_op->projectFile().readDevices()->first().port, moved.port);
}

void tst_ManagedDevices::closingWhileEditingFreesTheProjectsDevices()
{
    QVERIFY(m_op->openProject(2));
    const QPointer<ConfiguredDevice> removed = m_op->station->configuredDevices().at(0);
    const QPointer<ConfiguredDevice> kept = m_op->station->configuredDevices().at(1);
    m_op->edit();
    m_op->remove(0);
    m_op->close();
    QVERIFY(!removed);
    QVERIFY(!kept);
    // Nothing was confirmed.
    QCOMPARE(m_op->projectFile().readDevices()->size(), 2);
}

void tst_ManagedDevices::aTestUnderWayEndsWithTheManager()
{
    m_op->createProject();
    m_op->fixture.addLogger();
    ScriptedLogger &logger = m_op->fixture.logger(0);
    logger.setSilent();
    child<QPushButton>(*m_op->manager(), "btn_manual")->click();
    const QPointer<ManualConfigDeviceDialog> dialog = m_op->manager()->findChild<ManualConfigDeviceDialog *>();
    child<QLineEdit>(*dialog, "lineEdit_devicename")->setText(QStringLiteral("Attic"));
    child<QLineEdit>(*dialog, "lineEdit_macaddr")->setText(QStringLiteral("0A0B0C0D0E0F"));
    const QStringList octets = logger.address().split(QLatin1Char('.'));
    for (int i = 0; i < octets.size(); ++i)
        dialog->findChild<QSpinBox *>(QStringLiteral("spinBox_ipaddr%1").arg(i + 1))->setValue(octets.at(i).toInt());
    child<QSpinBox>(*dialog, "spinBox_port")->setValue(logger.port());
    child<QPushButton>(*dialog, "pushButton_confirm")->click();
    QTRY_COMPARE(logger.openConnections(), 1);
    m_op->close();
    QVERIFY(!QApplication::activeModalWidget());
    QTRY_COMPARE(logger.openConnections(), 0);
    QTRY_VERIFY(!dialog);
    QCOMPARE(shownMessages(), QStringList());
}

void tst_ManagedDevices::aMessageOfTheManagerGoesWithIt()
{
    m_op->createProject();
    m_op->confirm();
    QCOMPARE(shownMessages(),
             QStringList{QStringLiteral("You must add at least one device to the dashboard.\nPlease retry.")});
    QVERIFY(m_op->manager());
    m_op->station->slotCloseProject();
    QTRY_COMPARE(shownMessages(), QStringList());
    QVERIFY(m_op->startScreen()->isVisible());
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_ManagedDevices::editingWhileAChartIsOpen()
{
    QVERIFY(m_op->openProject(2));
    QTest::mouseClick(m_op->project()->findChild<DashBoardDeviceItem *>(), Qt::LeftButton);
    const QPointer<ChartView> chart = m_op->project()->findChild<ChartView *>();
    QVERIFY(chart->isVisible());
    const QPointer<ConfiguredDevice> shown = m_op->station->configuredDevices().first();
    m_op->edit();
    // A reading that was on its way when the links were closed.
    shown->readData(QStringLiteral("21.50,45.10"));
    QTRY_VERIFY(!chart);
    shown->readData(QStringLiteral("21.60,45.10"));
    m_op->remove(0);
    m_op->confirm();
    QVERIFY(!shown);
    QVERIFY(!m_op->project()->findChild<ChartView *>()->isVisible());
    QTRY_VERIFY(m_op->station->configuredDevices().first()->isConnected());
}

void tst_ManagedDevices::aScreenThatWasLeftIsHeardNoMore()
{
    m_op->createProject();
    m_op->addByHand();
    const QPointer<ProjectManager> left = m_op->manager();
    m_op->confirm();
    const LogCapture log;
    emit left->refreshAvailDeviceList();
    emit left->projectListConfirm({}, {});
    QVERIFY(left);
    QCOMPARE(log.count(QStringLiteral("SorvantoMain::broadcastDevice")), 0);
    QCOMPARE(m_op->station->configuredDevices().size(), 1);
    QTRY_VERIFY(!left);
}

STATION_TEST_MAIN(tst_ManagedDevices)
#include "tst_ManagedDevices.moc"
