#include "NetworkCellar.h"
#include "support/MetaMethods.h"

#include <QLineEdit>
#include <QSignalSpy>

/// The option dialog of a network logger and its exchange with a logger on a real connection.
class tst_SensingOptionTelnetDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void declaresItsSlots();
    void offersTheRules_data();
    void offersTheRules();
    void renamingNeedsNoExchange();
    void whatNobodyTouchedNeedsNoExchange();
    void changeIsInForceOnceAccepted_data();
    void changeIsInForceOnceAccepted();
    void progressingLocksTheInputs();
    void unlistedRuleIsSentAsItStands();
    void limitsAreSentWithADecimalPoint();
    void refusalAsksForARetry();
    void timeLimitIsTwoSeconds();
    void timeLimitFollowsARefusal();
    void silentLoggerExceedsTheTimeLimit_data();
    void silentLoggerExceedsTheTimeLimit();
    void newTryStartsTheTimeAnew();
    void pollOnItsWayIsAwaited();
    void lossOfConnectionLocksTheDialog();
    void lossAfterARefusalStaysLocked();
    void openedDisconnectedItNeverStartsAnExchange();
};

namespace {

const QString refused = "ERROR: Device Setup Failed.\nPlease retry.";
const QString late = "ERROR: This command has exceeded the time limit.\nPlease retry.";
const QString lost = "ERROR: Loss of network connection.\nPlease retry.";

/// Whether the dialog can be edited again after a try.
bool isEditing(QWidget *dialog)
{
    return button(dialog).text() == "Confirm" && button(dialog).isEnabled() && min1(dialog).isEnabled() &&
           rule(dialog).isEnabled() && part<QLineEdit>(dialog, "lineEdit_ch2name").isEnabled() &&
           part<QComboBox>(dialog, "comboBox_unit_ch2").isEnabled();
}

} // namespace

void tst_SensingOptionTelnetDialog::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void tst_SensingOptionTelnetDialog::declaresItsSlots()
{
    const QMetaObject &meta = SensingOptionTelnetDialog::staticMetaObject;
    for (const char *method : {"confirm()", "checkCustomUnitPolicy(int)", "slotReject()", "syncSuccess()",
                               "syncError(QString)", "syncTimeout()", "sensingConfirm()"})
        QVERIFY2(meta.indexOfMethod(method) >= 0, method);
}

void tst_SensingOptionTelnetDialog::offersTheRules_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("OFF") << "OFF"
                         << "OFF";
    QTest::newRow("AND") << "AND"
                         << "AND";
    QTest::newRow("lower case") << "ch2"
                                << "CH2";
    QTest::newRow("none of the list") << "ON 3"
                                      << "";
}

void tst_SensingOptionTelnetDialog::offersTheRules()
{
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    Cellar cellar;
    cellar.device->setBuzzerAlarm(stored);
    const auto dialog = cellar.open();
    const QComboBox &rules = rule(dialog);
    QStringList items;
    for (int i = 0; i < rules.count(); ++i) {
        items << rules.itemText(i);
        QVERIFY(!rules.itemData(i).isValid());
    }
    QCOMPARE(items, QStringList({"OFF", "CH1", "CH2", "OR", "AND"}));
    QCOMPARE(rules.currentText(), shown);
    QCOMPARE(rules.toolTip(), QString("Applies only to devices."));
    QCOMPARE(part<QGroupBox>(dialog, "groupBox_buzzer").title(), QString("BUZZER"));
}

void tst_SensingOptionTelnetDialog::renamingNeedsNoExchange()
{
    Cellar cellar;
    const auto dialog = cellar.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    part<QLineEdit>(dialog, "lineEdit_ch1name").setText("North");
    button(dialog).click();
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QTRY_VERIFY(!dialog);
    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(cellar.device->exchangeNumber(), 0);
    QCOMPARE(cellar.device->ch1Name(), QString("North"));
    QCOMPARE(cellar.device->port(), cellar.logger.port());
}

void tst_SensingOptionTelnetDialog::whatNobodyTouchedNeedsNoExchange()
{
    Cellar cellar;
    cellar.device->setAlarmRange(1.125F, 2e8F, 0.1F, 4);
    cellar.device->setBuzzerAlarm("ON 3");
    const auto dialog = cellar.open();
    button(dialog).click();
    QTRY_VERIFY(!dialog);
    QCOMPARE(cellar.device->exchangeNumber(), 0);
    QVERIFY(cellar.device->pendingAlarmRange() == cellar.device->alarmRange());
    QCOMPARE(cellar.device->pendingBuzzerAlarm(), QString("ON 3"));
}

void tst_SensingOptionTelnetDialog::changeIsInForceOnceAccepted_data()
{
    QTest::addColumn<bool>("changesRule");
    QTest::newRow("limit") << false;
    QTest::newRow("rule") << true;
}

void tst_SensingOptionTelnetDialog::changeIsInForceOnceAccepted()
{
    QFETCH(bool, changesRule);
    Cellar cellar;
    const auto dialog = cellar.open();
    QList<AlarmRange> told;
    connect(dialog, &SensingOptionDialog::sensingConfirm, this, [&] { told << cellar.device->alarmRange(); });
    if (changesRule)
        rule(dialog).setCurrentIndex(3);
    else
        min1(dialog).setValue(40); // above the maximum, which is nobody's business
    button(dialog).click();
    QCOMPARE(told.size(), 1);
    QTRY_VERIFY(!dialog);
    const AlarmRange before{10, 30, 0, 0};
    const AlarmRange after{changesRule ? 10.0F : 40.0F, 30, 0, 0};
    QCOMPARE(told.size(), 2);
    QVERIFY(told.first() == before);
    QVERIFY(told.last() == after);
    QVERIFY(cellar.device->alarmRange() == after);
    QCOMPARE(cellar.device->buzzerAlarm(), QString(changesRule ? "OR" : "OFF"));
    QCOMPARE(cellar.logger.commands(), changesRule ? commandsFor("10.00", "OR") : commandsFor("40.00"));
}

void tst_SensingOptionTelnetDialog::progressingLocksTheInputs()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QCOMPARE(button(dialog).text(), QString("Progressing..."));
    const QList<QWidget *> inputs{&button(dialog),
                                  &min1(dialog),
                                  &part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch1"),
                                  &part<QDoubleSpinBox>(dialog, "doubleSpinBox_min_ch2"),
                                  &part<QDoubleSpinBox>(dialog, "doubleSpinBox_max_ch2"),
                                  &rule(dialog),
                                  &part<QLineEdit>(dialog, "lineEdit_devicename"),
                                  &part<QLineEdit>(dialog, "lineEdit_ch1name"),
                                  &part<QLineEdit>(dialog, "lineEdit_ch2name"),
                                  &part<QComboBox>(dialog, "comboBox_unit_ch1"),
                                  &part<QComboBox>(dialog, "comboBox_unit_ch2")};
    for (const QWidget *input : inputs)
        QVERIFY2(!input->isEnabled(), qPrintable(input->objectName()));
    QVERIFY(cellar.device->isExchangeRunning());
}

void tst_SensingOptionTelnetDialog::unlistedRuleIsSentAsItStands()
{
    Cellar cellar;
    cellar.device->setBuzzerAlarm("ON 3");
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QTRY_VERIFY(!dialog);
    QCOMPARE(cellar.logger.commands(), commandsFor("12.00", "ON 3"));
}

void tst_SensingOptionTelnetDialog::limitsAreSentWithADecimalPoint()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    Cellar cellar;
    const auto dialog = cellar.open();
    min1(dialog).selectAll();
    QTest::keyClicks(&min1(dialog), "-1234.56");
    button(dialog).click();
    QTRY_VERIFY(!dialog);
    QCOMPARE(cellar.logger.commands(), commandsFor("-1234.56"));
}

void tst_SensingOptionTelnetDialog::refusalAsksForARetry()
{
    Cellar cellar;
    cellar.logger.setReply("ERR\r\n");
    const auto dialog = cellar.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    confirmMin1(dialog, 12);
    QTRY_COMPARE(messagesOf(dialog), QStringList(refused));
    QVERIFY(isEditing(dialog));
    QVERIFY(dialog->isVisible());
    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(cellar.device->deviceName(), QString("Attic"));
    QVERIFY(cellar.device->alarmRange() == (AlarmRange{10, 30, 0, 0}));
    cellar.logger.setReply("OK\r\n");
    button(dialog).click();
    QTRY_VERIFY(!dialog);
    QCOMPARE(cellar.device->alarmRange().min1, 12.0F);
}

void tst_SensingOptionTelnetDialog::timeLimitIsTwoSeconds()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    const auto *limit = dialog->findChild<QTimer *>("timeLimit");
    QVERIFY(limit);
    QVERIFY(!limit->isActive());
    confirmMin1(dialog, 12);
    QVERIFY(limit->isActive());
    QVERIFY(limit->isSingleShot());
    QCOMPARE(limit->interval(), 2000);
}

void tst_SensingOptionTelnetDialog::timeLimitFollowsARefusal()
{
    Cellar cellar(1000);
    QVERIFY(cellar.device->openDevice());
    QTRY_VERIFY(cellar.device->isOpen());
    cellar.logger.setReply("ERR\r\n");
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QTRY_COMPARE(messagesOf(dialog), QStringList(refused));
    QTRY_COMPARE_WITH_TIMEOUT(messagesOf(dialog), QStringList({refused, late}), patienceMs);
    QVERIFY(isEditing(dialog));
    QVERIFY(cellar.device->isOpen());
}

void tst_SensingOptionTelnetDialog::silentLoggerExceedsTheTimeLimit_data()
{
    QTest::addColumn<QString>("fault");
    for (const char *fault : {"silent from the start", "silent after two", "hangs up", "hangs up after two", "refuses"})
        QTest::newRow(fault) << fault;
}

void tst_SensingOptionTelnetDialog::silentLoggerExceedsTheTimeLimit()
{
    QFETCH(QString, fault);
    Cellar cellar;
    const int answered = fault.endsWith("after two") ? 2 : 0;
    const bool hangsUp = fault.startsWith("hangs up");
    cellar.logger.setScript([&](const QByteArray &) {
        const bool answers = cellar.logger.commands().size() <= answered;
        if (!answers && hangsUp)
            cellar.logger.dropConnections();
        return answers ? QList<QByteArray>{"OK\r\n"} : QList<QByteArray>();
    });
    if (fault == "refuses")
        cellar.logger.stopListening();
    const auto dialog = cellar.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    confirmMin1(dialog, 12);
    QTRY_COMPARE_WITH_TIMEOUT(messagesOf(dialog), QStringList(late), patienceMs);
    QVERIFY(isEditing(dialog));
    QVERIFY(dialog->isVisible());
    QCOMPARE(confirmed.count(), 1);
    QVERIFY(cellar.device->alarmRange() == (AlarmRange{10, 30, 0, 0}));
    QCOMPARE(cellar.device->buzzerAlarm(), QString("OFF"));
    if (fault == "refuses")
        QVERIFY(cellar.logger.listenAgain());
    QVERIFY(cellar.isPolledAgain());
}

void tst_SensingOptionTelnetDialog::newTryStartsTheTimeAnew()
{
    Cellar cellar;
    cellar.logger.setReply("ERR\r\n");
    const auto dialog = cellar.open();
    QTimer firstLimit;
    firstLimit.setSingleShot(true);
    confirmMin1(dialog, 12);
    firstLimit.start(2000);
    QTRY_COMPARE(messagesOf(dialog), QStringList(refused));
    QTRY_VERIFY(firstLimit.remainingTime() < 700);
    cellar.logger.setSilent();
    button(dialog).click();
    QTRY_COMPARE(cellar.logger.commands().size(), 2);
    QTRY_VERIFY(!firstLimit.isActive());
    cellar.logger.setReply("OK\r\n");
    cellar.logger.send("OK\r\n");
    QTRY_VERIFY(!dialog || messagesOf(dialog).size() > 1);
    QVERIFY2(!dialog, "the time of the first try has cut the second one short");
    QCOMPARE(cellar.device->alarmRange().min1, 12.0F);
}

void tst_SensingOptionTelnetDialog::pollOnItsWayIsAwaited()
{
    Cellar cellar(1000);
    cellar.logger.setSilent();
    cellar.device->pollForRecord();
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    const auto dialog = cellar.open();
    QStringList errors;
    connect(cellar.device.get(), &ConfiguredDevice::buzzerSyncError, this,
            [&](const QString &text) { errors << text; });
    confirmMin1(dialog, 12);
    cellar.logger.setReply("OK\r\n");
    cellar.logger.send("ATDC 21.50,45.10\r\n");
    QTRY_VERIFY(!dialog);
    QCOMPARE(errors, QStringList());
    QCOMPARE(cellar.device->ch1Value(), QString("21.50"));
    QCOMPARE(cellar.device->alarmRange().min1, 12.0F);
}

void tst_SensingOptionTelnetDialog::lossOfConnectionLocksTheDialog()
{
    Cellar cellar;
    const auto dialog = cellar.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    cellar.device->deviceDisconnected();
    part<QLineEdit>(dialog, "lineEdit_devicename").setText("Attic");
    confirmMin1(dialog, 12);
    QCOMPARE(messagesOf(dialog), QStringList(lost));
    QCOMPARE(button(dialog).text(), QString("Progressing..."));
    QVERIFY(!button(dialog).isEnabled());
    QVERIFY(!part<QLineEdit>(dialog, "lineEdit_devicename").isEnabled());
    QCOMPARE(cellar.device->exchangeNumber(), 0);
    QCOMPARE(confirmed.count(), 1);
    QCOMPARE(cellar.device->deviceName(), QString("Attic"));
    dialog->findChild<MessageDialog *>()->close();
    dialog->close();
    QVERIFY(!dialog->isVisible());
    QVERIFY(cellar.device->alarmRange() == (AlarmRange{10, 30, 0, 0}));
}

void tst_SensingOptionTelnetDialog::lossAfterARefusalStaysLocked()
{
    Cellar cellar;
    cellar.logger.setReply("ERR\r\n");
    const auto dialog = cellar.open();
    QTimer firstLimit;
    firstLimit.setSingleShot(true);
    confirmMin1(dialog, 12);
    firstLimit.start(2500);
    QTRY_COMPARE(messagesOf(dialog), QStringList(refused));
    cellar.device->deviceDisconnected();
    button(dialog).click();
    QTRY_VERIFY(!firstLimit.isActive());
    QCOMPARE(messagesOf(dialog), QStringList({refused, lost}));
    QVERIFY(!button(dialog).isEnabled());
}

void tst_SensingOptionTelnetDialog::openedDisconnectedItNeverStartsAnExchange()
{
    for (const bool comesBack : {false, true}) {
        Cellar cellar;
        cellar.device->setAlarmRange(1.125F, 30, 0, 0);
        cellar.device->setBuzzerAlarm("ch1");
        cellar.device->deviceDisconnected();
        const auto dialog = cellar.open();
        QVERIFY(!min1(dialog).isEnabled());
        QVERIFY(!rule(dialog).isEnabled());
        if (comesBack)
            cellar.device->deviceConnected();
        button(dialog).click();
        QTRY_VERIFY(!dialog);
        QCOMPARE(cellar.device->exchangeNumber(), 0);
        QCOMPARE(cellar.logger.accepted(), 0);
    }
}

QTEST_MAIN(tst_SensingOptionTelnetDialog)
#include "tst_SensingOptionTelnetDialog.moc"
