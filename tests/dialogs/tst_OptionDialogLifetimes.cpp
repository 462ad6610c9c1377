#include "NetworkCellar.h"

#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>

/// Option dialogs and devices that go, or stay hidden, while an exchange is under way.
class tst_OptionDialogLifetimes : public QObject
{
    Q_OBJECT

private slots:
    void closedDialogFinishesItsExchange();
    void closedDialogNamesItsLogger_data();
    void closedDialogNamesItsLogger();
    void ignoresAnotherDialogsExchange_data();
    void ignoresAnotherDialogsExchange();
    void doesNotCancelALaterDialogsExchange();
    void renamingLeavesAnotherDialogsExchangeAlone();
    void slotRejectCancelsTheExchange();
    void deletedDialogCancelsTheExchange();
    void deviceMayGoDuringAnExchange();
    void listenersMayDeleteOnSuccess_data();
    void listenersMayDeleteOnSuccess();
};

void tst_OptionDialogLifetimes::closedDialogFinishesItsExchange()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    QSignalSpy confirmed(dialog, &SensingOptionDialog::sensingConfirm);
    confirmMin1(dialog, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    dialog->close();
    QVERIFY(!dialog->isVisible());
    QVERIFY(cellar.device->isExchangeRunning());
    cellar.logger.setReply("OK\r\n");
    cellar.logger.send("OK\r\n");
    QTRY_VERIFY(!dialog);
    QCOMPARE(confirmed.count(), 2);
    QCOMPARE(cellar.logger.commands(), commandsFor("12.00"));
    QCOMPARE(cellar.device->alarmRange().min1, 12.0F);
}

void tst_OptionDialogLifetimes::closedDialogNamesItsLogger_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("message");
    QTest::newRow("silence") << QByteArray() << "Cellar: This command has exceeded the time limit.\nPlease retry.";
    QTest::newRow("refusal") << QByteArray("ERR\r\n") << "Cellar: Device Setup Failed.\nPlease retry.";
}

void tst_OptionDialogLifetimes::closedDialogNamesItsLogger()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, message);
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    dialog->close();
    QCOMPARE(messagesOf(cellar.window.get()), QStringList());
    cellar.logger.send(reply);
    QTRY_VERIFY_WITH_TIMEOUT(!dialog, patienceMs);
    QCOMPARE(messagesOf(cellar.window.get()), QStringList("ERROR: " + message));
    QVERIFY(cellar.device->alarmRange() == (AlarmRange{10, 30, 0, 0}));
    QVERIFY(cellar.isPolledAgain());
}

void tst_OptionDialogLifetimes::ignoresAnotherDialogsExchange_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("accepted") << QByteArray("OK\r\n");
    QTest::newRow("refused") << QByteArray("ERR\r\n");
}

void tst_OptionDialogLifetimes::ignoresAnotherDialogsExchange()
{
    QFETCH(QByteArray, reply);
    Cellar cellar;
    cellar.logger.setSilent();
    const auto idle = cellar.open();
    idle->close();
    const auto closed = cellar.open();
    confirmMin1(closed, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    closed->close();
    const auto open = cellar.open();
    QSignalSpy confirmed(open, &SensingOptionDialog::sensingConfirm);
    cellar.logger.setReply(reply);
    cellar.logger.send(reply);
    QTRY_VERIFY(!closed);
    for (const auto &other : {idle, open}) {
        QVERIFY(other);
        QCOMPARE(messagesOf(other), QStringList());
        QCOMPARE(button(other).text(), QString("CONFIRM"));
    }
    QVERIFY(open->isVisible());
    QCOMPARE(confirmed.count(), 0);
    QCOMPARE(cellar.device->alarmRange().min1, reply.startsWith("OK") ? 12.0F : 10.0F);
}

void tst_OptionDialogLifetimes::doesNotCancelALaterDialogsExchange()
{
    Cellar cellar(1000);
    QVERIFY(cellar.device->openDevice());
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    cellar.logger.setSilent();
    const auto closed = cellar.open();
    QTimer closedOnesTime;
    closedOnesTime.setSingleShot(true);
    confirmMin1(closed, 12);
    closedOnesTime.start(2000);
    QTRY_VERIFY(cellar.logger.commands().size() > 1);
    closed->close();
    QTRY_VERIFY(closedOnesTime.remainingTime() < 700);
    const auto later = cellar.open();
    confirmMin1(later, 15);
    QTRY_VERIFY(!closed);
    QVERIFY(cellar.device->isExchangeRunning());
    const int before = cellar.logger.commands().size();
    cellar.logger.setReply("OK\r\n");
    cellar.logger.send("OK\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(!later || !messagesOf(later).isEmpty(), patienceMs);
    QVERIFY(!later);
    QCOMPARE(messagesOf(cellar.window.get()), QStringList());
    QCOMPARE(cellar.logger.commands().mid(before), commandsFor("15.00"));
    QCOMPARE(cellar.device->alarmRange().min1, 15.0F);
}

void tst_OptionDialogLifetimes::renamingLeavesAnotherDialogsExchangeAlone()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto closed = cellar.open();
    confirmMin1(closed, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    closed->close();
    const auto renaming = cellar.open();
    part<QLineEdit>(renaming, "lineEdit_devicename").setText("Attic");
    button(renaming).click();
    QTRY_VERIFY(!renaming);
    QVERIFY(closed);
    cellar.logger.setReply("OK\r\n");
    cellar.logger.send("OK\r\n");
    QTRY_VERIFY(!closed);
    QCOMPARE(cellar.device->deviceName(), QString("Attic"));
    QCOMPARE(cellar.logger.commands(), commandsFor("12.00"));
    QCOMPARE(cellar.device->alarmRange().min1, 12.0F);
}

void tst_OptionDialogLifetimes::slotRejectCancelsTheExchange()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    dialog->slotReject();
    QVERIFY(!cellar.device->isExchangeRunning());
    QTRY_VERIFY(!dialog);
    QVERIFY(cellar.isPolledAgain());
}

void tst_OptionDialogLifetimes::deletedDialogCancelsTheExchange()
{
    Cellar cellar;
    cellar.logger.setSilent();
    const auto dialog = cellar.open();
    confirmMin1(dialog, 12);
    QTRY_COMPARE(cellar.logger.commands().size(), 1);
    cellar.window.reset();
    QVERIFY(!dialog);
    QVERIFY(!cellar.device->isExchangeRunning());
    QVERIFY(cellar.isPolledAgain());
}

void tst_OptionDialogLifetimes::deviceMayGoDuringAnExchange()
{
    for (const bool isClosed : {false, true}) {
        Cellar cellar;
        cellar.logger.setSilent();
        const auto dialog = cellar.open();
        confirmMin1(dialog, 12);
        QTRY_COMPARE(cellar.logger.commands().size(), 1);
        if (isClosed)
            dialog->close();
        cellar.device.reset();
        QVERIFY(!dialog->isVisible());
        dialog->syncTimeout();
        QTRY_VERIFY(!dialog);
    }
}

void tst_OptionDialogLifetimes::listenersMayDeleteOnSuccess_data()
{
    QTest::addColumn<bool>("device");
    QTest::newRow("dialog") << false;
    QTest::newRow("device") << true;
}

void tst_OptionDialogLifetimes::listenersMayDeleteOnSuccess()
{
    QFETCH(bool, device);
    Cellar cellar;
    const auto dialog = cellar.open();
    int confirmed = 0;
    connect(dialog, &SensingOptionDialog::sensingConfirm, this, [&] {
        if (++confirmed < 2)
            return;
        if (device)
            cellar.device.reset();
        else
            delete dialog.data();
    });
    confirmMin1(dialog, 12);
    QTRY_VERIFY(!dialog);
    QCOMPARE(confirmed, 2);
    QCOMPARE(cellar.device == nullptr, device);
}

QTEST_MAIN(tst_OptionDialogLifetimes)
#include "tst_OptionDialogLifetimes.moc"
