#include "Operator.h"

#include "dialogs/SensingOptionTelnetDialog.h"
#include "support/ScriptedLogger.h"
#include "views/ChartView.h"
#include "views/DashBoardDeviceItem.h"
#include "views/StateBackground.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QLineEdit>
#include <QTextBrowser>

namespace {

/// A dialog's two seconds, on a machine that may be busy with other things.
constexpr int patienceMs = 20000;

const QString cancelled = QStringLiteral(": This command has been cancelled.\nPlease retry.");

} // namespace

/// The options of a logger, from its chart to the project file, and wrong turns on that way.
class tst_OptionsFlow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_op.reset(); }

    void changesReachLoggerViewsAndFile();
    void aRefusalChangesNothing();
    void theProjectClosesDuringAnExchange_data() { dialogStates(); }
    void theProjectClosesDuringAnExchange();
    void theDevicesAreEditedDuringAnExchange_data() { dialogStates(); }
    void theDevicesAreEditedDuringAnExchange();
    void theWindowClosesDuringAnExchange_data() { dialogStates(); }
    void theWindowClosesDuringAnExchange();
    void theLoggerIsPulledDuringAnExchange_data() { dialogStates(); }
    void theLoggerIsPulledDuringAnExchange();
    void aStormOfMessagesIsDismissed();

private:
    static void dialogStates();
    ScriptedLogger &logger() { return m_op->fixture.logger(0); }
    ConfiguredDevice *device() const { return m_op->station->configuredDevices().first(); }
    void openOptions();
    /// Confirms a new limit that the logger does not acknowledge; the dialog may then be closed by its window.
    void startExchange(bool isClosed);
    DeviceEntry saved() const { return m_op->projectFile().readDevices()->first(); }

    std::unique_ptr<Operator> m_op;
    QPointer<SensingOptionDialog> m_dialog;
};

void tst_OptionsFlow::init()
{
    m_op = std::make_unique<Operator>();
    QVERIFY(m_op->openProject(2));
    logger().setScript([](const QByteArray &command) {
        return QList<QByteArray>{command.startsWith("ATB") ? "OK\r\n" : "ATDC 21.50,45.10\r\n"};
    });
}

void tst_OptionsFlow::dialogStates()
{
    QTest::addColumn<bool>("isClosed");
    QTest::newRow("dialog open") << false;
    QTest::newRow("dialog closed") << true;
}

void tst_OptionsFlow::openOptions()
{
    if (!m_op->project()->findChild<ChartView *>()->isVisible())
        QTest::mouseClick(m_op->project()->findChild<DashBoardDeviceItem *>(), Qt::LeftButton);
    QTest::mouseClick(child<QWidget>(*m_op->project(), "btn_setting"), Qt::LeftButton);
    m_dialog = m_op->project()->findChildren<SensingOptionDialog *>().last();
    QVERIFY(shownScreen<SensingOptionDialog>(*m_op->station));
}

void tst_OptionsFlow::startExchange(bool isClosed)
{
    logger().setSilent();
    openOptions();
    child<QDoubleSpinBox>(*m_dialog, "doubleSpinBox_max_ch1")->setValue(8);
    child<QPushButton>(*m_dialog, "pushButton_confirm")->click();
    QTRY_VERIFY(logger().commands().contains("ATBMIN1 0.00"));
    if (isClosed)
        m_dialog->close();
}

void tst_OptionsFlow::changesReachLoggerViewsAndFile()
{
    openOptions();
    child<QLineEdit>(*m_dialog, "lineEdit_devicename")->setText(QStringLiteral("Kühlraum °C"));
    child<QComboBox>(*m_dialog, "comboBox_unit_ch1")->setCurrentIndex(1);
    child<QDoubleSpinBox>(*m_dialog, "doubleSpinBox_max_ch1")->setValue(8);
    child<QComboBox>(*m_dialog, "comboBox_buzzeralarm")->setCurrentText(QStringLiteral("OR"));
    child<QPushButton>(*m_dialog, "pushButton_confirm")->click();
    QTRY_VERIFY(!m_dialog);
    QCOMPARE(logger().commands().mid(logger().commands().indexOf("ATBMIN1 0.00"), 6),
             QList<QByteArray>({"ATBMIN1 0.00", "ATBMAX1 8.00", "ATBMIN2 0.00", "ATBMAX2 0.00", "ATBAL OR", "ATBSET"}));

    QVERIFY(device()->alarmOnChannel1());
    const auto *frame = child<QFrame>(*m_op->project(), "frame_ch1_value");
    QTRY_COMPARE(frame->styleSheet(), styleSheetOf(StateBackground::Alarm));
    QCOMPARE(child<QListWidget>(*m_op->project(), "list_project")->item(0)->text(), QStringLiteral("Kühlraum °C"));
    QCOMPARE(saved(), entryOf(*device()));

    m_op->close();
    m_op->station->projectLoaded(m_op->projectPath());
    QCOMPARE(device()->deviceName(), QStringLiteral("Kühlraum °C"));
    QCOMPARE(device()->ch1Unit(), 1);
    QCOMPARE(device()->alarmRange().max1, 8.0F);
    QCOMPARE(device()->buzzerAlarm(), QStringLiteral("OR"));
}

void tst_OptionsFlow::aRefusalChangesNothing()
{
    const DeviceEntry before = saved();
    logger().setReply("ERR\r\n");
    openOptions();
    child<QDoubleSpinBox>(*m_dialog, "doubleSpinBox_max_ch1")->setValue(8);
    child<QPushButton>(*m_dialog, "pushButton_confirm")->click();
    QTRY_COMPARE(shownMessages(), QStringList{QStringLiteral("Device Setup Failed.\nPlease retry.")});
    QVERIFY(shownScreen<SensingOptionDialog>(*m_op->station));
    QCOMPARE(saved(), before);
    QVERIFY(device()->alarmRange() == before.range);
}

void tst_OptionsFlow::theProjectClosesDuringAnExchange()
{
    QFETCH(bool, isClosed);
    device()->setDeviceInfo("<b>Cold</b> & dry", "1", "2", device()->address(), device()->port());
    startExchange(isClosed);
    m_op->station->slotCloseProject();
    QCOMPARE(shownMessages(), QStringList("<b>Cold</b> & dry" + cancelled));
    QTRY_VERIFY(!m_dialog);
    QTRY_COMPARE(logger().openConnections(), 0);
    QVERIFY(m_op->startScreen()->isVisible());
    QCOMPARE(saved().range.max1, 0.0F);
}

void tst_OptionsFlow::theDevicesAreEditedDuringAnExchange()
{
    QFETCH(bool, isClosed);
    startExchange(isClosed);
    m_op->station->slotAddDeviceProject();
    QCOMPARE(shownMessages(), QStringList(device()->deviceName() + cancelled));
    QTRY_VERIFY(!m_dialog);
    QVERIFY(!device()->isExchangeRunning());
    QTRY_COMPARE(logger().openConnections(), 0);
    logger().setReply("ATDC 21.50,45.10\r\n");
    m_op->confirm();
    QTRY_VERIFY(m_op->fixture.served() > 0 && device()->isConnected());
    const int polls = logger().commands().count("ATDC");
    m_op->station->writeDevice();
    QTRY_VERIFY(logger().commands().count("ATDC") > polls);
}

void tst_OptionsFlow::theWindowClosesDuringAnExchange()
{
    QFETCH(bool, isClosed);
    startExchange(isClosed);
    QVERIFY(m_op->station->close());
    m_op->station.reset();
    QVERIFY(!m_dialog);
    QTRY_COMPARE(logger().openConnections(), 0);
}

void tst_OptionsFlow::theLoggerIsPulledDuringAnExchange()
{
    QFETCH(bool, isClosed);
    startExchange(isClosed);
    logger().stopListening();
    logger().dropConnections();
    if (isClosed) {
        QTRY_VERIFY_WITH_TIMEOUT(!m_dialog, patienceMs);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(
            shownMessages(), QStringList{QStringLiteral("This command has exceeded the time limit.\nPlease retry.")},
            patienceMs);
        QVERIFY(child<QPushButton>(*m_dialog, "pushButton_confirm")->isEnabled());
    }
    QCOMPARE(saved().range.max1, 0.0F);

    logger().setReply("ATDC 22.50,45.10\r\n");
    QVERIFY(logger().listenAgain());
    QVERIFY(!device()->isExchangeRunning());
    m_op->station->writeDevice();
    QTRY_COMPARE(device()->ch1Value(), QStringLiteral("22.50"));
}

void tst_OptionsFlow::aStormOfMessagesIsDismissed()
{
    openOptions();
    child<QLineEdit>(*m_dialog, "lineEdit_devicename")->clear();
    for (int i = 0; i < 100; ++i) {
        child<QPushButton>(*m_dialog, "pushButton_confirm")->click();
        m_op->station->broadcastDevice();
        m_op->station->projectLoaded(m_op->fixture.projectPath(QStringLiteral("absent")));
    }
    QVERIFY(shownMessages().size() >= 200);
    for (int i = 0; QApplication::activeModalWidget() != m_dialog; ++i) {
        QVERIFY(i < 400);
        child<QPushButton>(*QApplication::activeModalWidget(), "pushButton_close")->click();
    }
    QCOMPARE(shownMessages(), QStringList());
    m_dialog->close();
    QVERIFY(!QApplication::activeModalWidget());
    m_op->close();
    QVERIFY(m_op->startScreen()->isVisible());
}

STATION_TEST_MAIN(tst_OptionsFlow)
#include "tst_OptionsFlow.moc"
