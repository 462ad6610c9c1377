#include "device/ConfiguredDevice.h"
#include "dialogs/SensingOptionTelnetDialog.h"
#include "dialogs/SensingOptionUsbDialog.h"
#include "support/MetaMethods.h"
#include "support/ScriptedLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"
#include "views/ProjectCenter.h"
#include "views/StateBackground.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

template <typename Widget>
Widget *part(const QObject *parent, const char *name)
{
    auto *found = parent->findChild<Widget *>(QLatin1String(name));
    if (!found)
        qFatal("no object named %s", name);
    return found;
}

} // namespace

/// The options of the device whose chart is open, and what the panel makes of them.
class tst_ProjectCenter_options : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qRegisterMetaType<ConfiguredDevice *>(); }
    void init();
    void cleanup();

    void declaresItsMethods();
    void dialogFollowsTheKindOfLogger_data();
    void dialogFollowsTheKindOfLogger();
    void optionButtonOpensTheDialog();
    void withoutAChartThereIsNothingToSet();
    void changesShowEverywhere();
    void changesShowOnTheDashboards();
    void closedDialogsDoNotPileUp();
    void aClosedDialogKeepsItsExchange();

private:
    std::unique_ptr<ConfiguredDevice> makeDevice(const QString &name, int kind, quint16 port = 23);
    void openChart(int row) const { emit list()->itemClicked(list()->item(row)); }
    void popUp() const { emit m_center->findChild<ChartView *>()->popupSensingOption(); }
    QListWidget *list() const { return part<QListWidget>(m_center.get(), "list_project"); }
    QList<SensingOptionDialog *> dialogs() const { return m_center->findChildren<SensingOptionDialog *>(); }
    const QFrame *tileFrame(int index) const
    {
        return part<QFrame>(m_center->findChildren<DashBoardDeviceItem *>().at(index), "frame_value");
    }

    std::unique_ptr<ScriptedLogger> m_logger;
    std::unique_ptr<ConfiguredDevice> m_cold;
    std::unique_ptr<ConfiguredDevice> m_oven;
    std::unique_ptr<ConfiguredDevice> m_none;
    std::unique_ptr<ProjectCenter> m_center;
};

std::unique_ptr<ConfiguredDevice> tst_ProjectCenter_options::makeDevice(const QString &name, int kind, quint16 port)
{
    auto device = std::make_unique<ConfiguredDevice>(QStringLiteral("key of ") + name, kind);
    device->setDeviceInfo(name, QStringLiteral("Air"), QStringLiteral("Damp"), QStringLiteral("127.0.0.1"), port);
    return device;
}

void tst_ProjectCenter_options::init()
{
    m_logger = std::make_unique<ScriptedLogger>();
    m_cold = makeDevice(QStringLiteral("Cold room"), NetworkInterface, m_logger->port());
    m_oven = makeDevice(QStringLiteral("Oven"), UsbInterface);
    m_none = makeDevice(QStringLiteral("Nowhere"), NoInterface);
    m_center = std::make_unique<ProjectCenter>(QStringLiteral("/data/Kitchen.tpc"));
    m_center->setDevices({m_cold.get(), m_oven.get(), m_none.get()});
    m_center->show();
}

void tst_ProjectCenter_options::cleanup()
{
    for (ConfiguredDevice *device : {m_cold.get(), m_oven.get(), m_none.get()})
        device->detachViews();
    m_center.reset();
    m_cold.reset();
    m_oven.reset();
    m_none.reset();
    m_logger.reset();
}

void tst_ProjectCenter_options::declaresItsMethods()
{
    const QMetaObject &meta = ProjectCenter::staticMetaObject;
    QCOMPARE(methodsOf(meta, QMetaMethod::Signal),
             QStringList({QStringLiteral("clickRecord()"), QStringLiteral("updateProjectFile()"),
                          QStringLiteral("changeInterval(int)")}));
    QCOMPARE(
        methodsOf(meta, QMetaMethod::Slot),
        QStringList({QStringLiteral("slotRecord()"), QStringLiteral("slotDashboardClicked()"),
                     QStringLiteral("slotDeviceClicked(ConfiguredDevice*)"), QStringLiteral("slotPopupSensingOption()"),
                     QStringLiteral("slotSensingConfirm()"), QStringLiteral("slotNetworkSetting()")}));
}

void tst_ProjectCenter_options::dialogFollowsTheKindOfLogger_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<QByteArray>("dialog");
    QTest::newRow("network") << 0 << QByteArray("SensingOptionTelnetDialog");
    QTest::newRow("USB") << 1 << QByteArray("SensingOptionUsbDialog");
    QTest::newRow("no interface") << 2 << QByteArray();
}

void tst_ProjectCenter_options::dialogFollowsTheKindOfLogger()
{
    QFETCH(int, row);
    QFETCH(QByteArray, dialog);
    openChart(row);
    popUp();
    QCOMPARE(dialogs().size(), dialog.isEmpty() ? 0 : 1);
    if (dialog.isEmpty())
        return;
    QCOMPARE(QByteArray(dialogs().first()->metaObject()->className()), dialog);
    QVERIFY(dialogs().first()->isVisible());
    QCOMPARE(dialogs().first()->parentWidget(), m_center.get());
    QCOMPARE(part<QLineEdit>(dialogs().first(), "lineEdit_devicename")->text(), list()->item(row)->text());
}

void tst_ProjectCenter_options::optionButtonOpensTheDialog()
{
    openChart(1);
    QTest::mouseClick(part<QWidget>(m_center.get(), "btn_setting"), Qt::LeftButton);
    QCOMPARE(dialogs().size(), 1);
}

void tst_ProjectCenter_options::withoutAChartThereIsNothingToSet()
{
    popUp();
    QVERIFY(dialogs().isEmpty());
}

void tst_ProjectCenter_options::changesShowEverywhere()
{
    QSignalSpy saved(m_center.get(), &ProjectCenter::updateProjectFile);
    m_oven->readData(QStringLiteral("180.00,5.00"));
    openChart(1);
    popUp();
    SensingOptionDialog *dialog = dialogs().first();
    part<QLineEdit>(dialog, "lineEdit_devicename")->setText(QStringLiteral("Stove"));
    part<QLineEdit>(dialog, "lineEdit_ch1name")->setText(QStringLiteral("Plate"));
    part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch1")->setValue(100);
    part<QPushButton>(dialog, "pushButton_confirm")->click();
    QCOMPARE(saved.count(), 1);
    QCOMPARE(list()->item(1)->text(), QStringLiteral("Stove"));
    const auto *chart = m_center->findChild<ChartView *>();
    QCOMPARE(part<QLabel>(chart, "label_device")->text(), QStringLiteral("Stove"));
    QCOMPARE(part<QLabel>(chart, "label_ch1_desc")->text(), QStringLiteral("Plate"));
    QTRY_COMPARE(part<QFrame>(chart, "frame_ch1_value")->styleSheet(), styleSheetOf(StateBackground::Alarm));

    QTest::mouseClick(part<QPushButton>(m_center.get(), "button_project"), Qt::LeftButton);
    const DashBoardDeviceItem *tile = m_center->findChildren<DashBoardDeviceItem *>().at(2);
    QCOMPARE(part<QLabel>(tile, "label_device")->text(), QStringLiteral("Stove"));
    QTRY_COMPARE(tileFrame(2)->styleSheet(), styleSheetOf(StateBackground::Alarm));
    QVERIFY(tileFrame(3)->styleSheet() != styleSheetOf(StateBackground::Alarm));
}

/// A dialog that was closed during its exchange is done when the dashboards show again.
void tst_ProjectCenter_options::changesShowOnTheDashboards()
{
    m_logger->setSilent();
    m_cold->readData(QStringLiteral("9.00,45.10"));
    openChart(0);
    popUp();
    SensingOptionDialog *dialog = dialogs().first();
    QTest::mouseClick(part<QPushButton>(m_center.get(), "button_project"), Qt::LeftButton);
    part<QLineEdit>(dialog, "lineEdit_devicename")->setText(QStringLiteral("Ice room"));
    part<QLineEdit>(dialog, "lineEdit_ch1name")->setText(QStringLiteral("Shelf"));
    part<QComboBox>(dialog, "comboBox_unit_ch1")->setCurrentIndex(2);
    part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch1")->setValue(8);
    part<QPushButton>(dialog, "pushButton_confirm")->click();
    const DashBoardDeviceItem *tile = m_center->findChildren<DashBoardDeviceItem *>().at(0);
    QCOMPARE(part<QLabel>(tile, "label_device")->text(), QStringLiteral("Ice room"));
    QCOMPARE(part<QLabel>(tile, "label_desc")->text(), QStringLiteral("Shelf"));
    QCOMPARE(part<QLabel>(tile, "label_unit")->text(), QStringLiteral("\u00B0F"));
    QCOMPARE(part<QLabel>(tile, "label_number")->text(), QStringLiteral("9.00"));
    QTRY_COMPARE(m_logger->commands().size(), 1);
    m_logger->setReply("OK\r\n");
    m_logger->send("OK\r\n");
    QTRY_COMPARE(tileFrame(0)->styleSheet(), styleSheetOf(StateBackground::Alarm));
}

void tst_ProjectCenter_options::closedDialogsDoNotPileUp()
{
    for (const int row : {0, 1}) {
        openChart(row);
        for (int i = 0; i < 3; ++i) {
            popUp();
            dialogs().last()->close();
        }
        QCOMPARE(dialogs().size(), 1);
        QVERIFY(!dialogs().first()->isVisible());
    }
}

void tst_ProjectCenter_options::aClosedDialogKeepsItsExchange()
{
    m_logger->setSilent();
    m_cold->readData(QStringLiteral("9.00,45.10"));
    openChart(0);
    popUp();
    const QPointer<SensingOptionDialog> closed = dialogs().first();
    part<QDoubleSpinBox>(closed, "doubleSpinBox_max_ch1")->setValue(8);
    part<QPushButton>(closed, "pushButton_confirm")->click();
    QTRY_COMPARE(m_logger->commands().size(), 1);
    closed->close();

    openChart(1);
    popUp();
    QVERIFY(closed);
    QSignalSpy saved(m_center.get(), &ProjectCenter::updateProjectFile);
    m_logger->setReply("OK\r\n");
    m_logger->send("OK\r\n");
    QTRY_VERIFY(!closed);
    // The chart shows another device by now; the new range is this one's all the same.
    QCOMPARE(m_cold->alarmRange().max1, 8.0F);
    QVERIFY(m_cold->alarmOnChannel1());
    QCOMPARE(saved.count(), 1);
}

QTEST_MAIN(tst_ProjectCenter_options)
#include "tst_ProjectCenter_options.moc"
