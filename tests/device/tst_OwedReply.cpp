#include "device/ConfiguredDevice.h"
#include "device/LoggerConversation.h"
#include "device/TelnetDevice.h"
#include "support/LogCapture.h"
#include "support/RecordedRows.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QSignalSpy>
#include <QTest>

/// An exchange that is started while the logger still owes an answer to something else.
class tst_OwedReply : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void linkTellsWhetherAReplyIsOwed();
    void waitsForAReplyOnItsWay_data();
    void waitsForAReplyOnItsWay();
    void waitsForEveryReplyOnItsWay();
    void replyAfterTheWaitIsNoAcknowledgement_data();
    void replyAfterTheWaitIsNoAcknowledgement();
    void pollWhoseConnectionIsStillMadeComesAfter_data();
    void pollWhoseConnectionIsStillMadeComesAfter();
    void doesNotWaitForEver_data();
    void doesNotWaitForEver();
    void lateAcknowledgementBelongsToTheLastTry();
    void endsWhileItWaits_data();
    void endsWhileItWaits();
};

namespace {

struct Exchange
{
    TemporaryInterval interval;
    ScriptedLogger logger;
    ConfiguredDevice device{"A1", NetworkInterface};
    QSignalSpy success{&device, &ConfiguredDevice::buzzerSyncSuccess};
    QSignalSpy error{&device, &ConfiguredDevice::buzzerSyncError};

    explicit Exchange(int intervalMs) : interval(intervalMs)
    {
        logger.setSilent();
        device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
        device.setPendingAlarmRange(10, 30, 0, 0);
    }

    /// Leaves a poll unanswered on the connection, then starts.
    bool startWithAPollOnItsWay()
    {
        device.pollForRecord();
        if (!QTest::qWaitFor([this] { return logger.commands().size() == 1; }))
            return false;
        device.startSyncTelnet();
        return true;
    }
};

const QList<QByteArray> allCommands{"ATBMIN1 10.00", "ATBMAX1 30.00", "ATBMIN2 0.00",
                                    "ATBMAX2 0.00",  "ATBAL OFF",     "ATBSET"};

} // namespace

void tst_OwedReply::cleanup()
{
    takeRecordedRows();
}

void tst_OwedReply::linkTellsWhetherAReplyIsOwed()
{
    ScriptedLogger logger;
    logger.setSilent();
    const TemporaryInterval interval(1000);
    LoggerConversation conversation(0);
    TelnetDevice link;
    link.setConversation(&conversation);
    QVERIFY(!conversation.owesReply());
    link.setDeviceInfo(logger.address(), logger.port());
    link.open();
    QTRY_COMPARE(logger.commands().size(), 1);
    QVERIFY(conversation.owesReply());
    QSignalSpy arrived(link.findChild<QTcpSocket *>(), &QTcpSocket::readyRead);
    logger.send("ATDC 21.5");
    QVERIFY(arrived.wait());
    QVERIFY2(conversation.owesReply(), "the rest of the line is still to come");
    logger.send("0,45.10\r\n");
    QVERIFY(arrived.wait());
    QVERIFY(!conversation.owesReply());
    link.write();
    QVERIFY(conversation.owesReply());
    link.close();
    QVERIFY(!conversation.owesReply());
    link.open();
    QTRY_VERIFY(conversation.owesReply());
    logger.dropConnections();
    QTRY_VERIFY(!conversation.owesReply());
}

void tst_OwedReply::waitsForAReplyOnItsWay_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<bool>("keep");
    QTest::addColumn<int>("connections");
    QTest::newRow("1 s") << 1000 << false << 1;
    QTest::newRow("10 s, keep on") << 10000 << true << 1;
    QTest::newRow("10 s: the reply closes the connection") << 10000 << false << 2;
}

void tst_OwedReply::waitsForAReplyOnItsWay()
{
    QFETCH(int, interval);
    QFETCH(bool, keep);
    QFETCH(int, connections);
    Exchange run(interval);
    run.device.setKeepConnection(keep);
    run.device.setRecording(true);
    QVERIFY(run.startWithAPollOnItsWay());
    for (int turn = 0; turn < 10; ++turn) {
        run.device.pollForRecord();
        run.device.pollForDisplay();
        QCoreApplication::processEvents();
    }
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"});
    run.logger.setReply("OK\r\n");
    run.logger.send("ATDC 21.50,45.10\r\n");
    QTRY_COMPARE(run.success.count(), 1);
    QCOMPARE(run.error.count(), 0);
    QCOMPARE(run.device.ch1Value(), QString("21.50"));
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().channel1.toDouble(), 21.5);
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"} + allCommands);
    QCOMPARE(run.logger.accepted(), connections);
}

void tst_OwedReply::waitsForEveryReplyOnItsWay()
{
    Exchange run(1000);
    run.device.setRecording(true);
    run.device.pollForRecord();
    QTRY_COMPARE(run.logger.commands().size(), 1);
    run.device.pollForDisplay();
    QTRY_COMPARE(run.logger.commands().size(), 2);
    run.device.startSyncTelnet();
    run.logger.send("ATDC 21.50,45.10\r\n");
    QTRY_COMPARE(run.device.ch1Value(), QString("21.50"));
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(run.logger.commands().size(), 2);
    run.logger.setReply("OK\r\n");
    run.logger.send("ATDC 22.50,45.10\r\n");
    QTRY_COMPARE(run.success.count() + run.error.count(), 1);
    QCOMPARE(run.error.count(), 0);
    QCOMPARE(run.logger.commands(), QList<QByteArray>({"ATDC", "ATDC"}) + allCommands);
    const QList<RecordedRow> rows = takeRecordedRows();
    QCOMPARE(rows.size(), 1);
    QCOMPARE(rows.first().channel1.toDouble(), 21.5);
}

void tst_OwedReply::replyAfterTheWaitIsNoAcknowledgement_data()
{
    QTest::addColumn<QList<QByteArray>>("pieces");
    QTest::newRow("apart") << QList<QByteArray>{"ATDC 21.50,45.10\r\n", "OK\r\n"};
    QTest::newRow("together") << QList<QByteArray>{"ATDC 21.50,45.10\r\nOK\r\n"};
}

void tst_OwedReply::replyAfterTheWaitIsNoAcknowledgement()
{
    QFETCH(QList<QByteArray>, pieces);
    Exchange run(1000);
    run.device.setRecording(true);
    QVERIFY(run.startWithAPollOnItsWay());
    QTRY_COMPARE(run.logger.commands().size(), 2);
    run.logger.setReply("OK\r\n"); // from the second command on
    for (const QByteArray &piece : pieces) {
        run.logger.send(piece);
        QTRY_COMPARE(run.device.ch1Value(), QString("21.50"));
    }
    QTRY_COMPARE(run.success.count() + run.error.count(), 1);
    QCOMPARE(run.error.count(), 0);
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"} + allCommands);
    QCOMPARE(takeRecordedRows().size(), 1);
}

void tst_OwedReply::pollWhoseConnectionIsStillMadeComesAfter_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("stopped");
    QTest::newRow("success") << 10000 << QByteArray("OK\r\n") << false;
    QTest::newRow("refusal") << 10000 << QByteArray("ERR\r\n") << false;
    QTest::newRow("no answer") << 10000 << QByteArray() << true;
    QTest::newRow("the command comes too early") << 1000 << QByteArray() << true;
}

void tst_OwedReply::pollWhoseConnectionIsStillMadeComesAfter()
{
    QFETCH(int, interval);
    QFETCH(QByteArray, answer);
    QFETCH(bool, stopped);
    Exchange run(interval);
    run.logger.setScript([answer](const QByteArray &command) {
        const QByteArray reply = command.startsWith("ATDC") ? QByteArray("ATDC 21.50,45.10\r\n") : answer;
        return reply.isEmpty() ? QList<QByteArray>() : QList<QByteArray>{reply};
    });
    qint64 now = 1700000000;
    run.device.setClock([&now] { return QDateTime::fromSecsSinceEpoch(now); });
    run.device.setRecording(true);
    run.device.pollForRecord();
    run.device.startSyncTelnet();
    now += 2;
    QVERIFY(run.logger.commands().isEmpty());
    QTRY_VERIFY(run.logger.accepted() > 0);
    if (stopped)
        run.device.stopSyncTelnet();
    QList<RecordedRow> rows;
    QTRY_COMPARE((rows += takeRecordedRows()).size(), 1);
    QCOMPARE(rows.first().time, 1700000000U);
    QVERIFY2(run.logger.received().endsWith("ATDC\r\n"), run.logger.received());
    QCOMPARE(run.logger.received().count("ATDC"), 1);
}

void tst_OwedReply::doesNotWaitForEver_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QList<QByteArray>>("reply");
    QTest::newRow("silence") << 1000 << QList<QByteArray>();
    QTest::newRow("silence at 10 s") << 10000 << QList<QByteArray>();
    QTest::newRow("no echo") << 1000 << QList<QByteArray>{"21.50,45.10\r\n"};
    QTest::newRow("half a line") << 1000 << QList<QByteArray>{"ATDC 21.5"};
    QTest::newRow("two halves") << 1000 << QList<QByteArray>{"ATDC 21.5", "0,45.10\r\n"};
    QTest::newRow("no line end") << 1000 << QList<QByteArray>{"ATDC 21.50,45.10"};
}

void tst_OwedReply::doesNotWaitForEver()
{
    QFETCH(int, interval);
    QFETCH(QList<QByteArray>, reply);
    Exchange run(interval);
    QVERIFY(run.startWithAPollOnItsWay());
    run.logger.setReply("OK\r\n");
    for (const QByteArray &piece : reply) {
        run.logger.send(piece);
        QCoreApplication::processEvents();
    }
    QTRY_COMPARE(run.success.count(), 1);
    QCOMPARE(run.error.count(), 0);
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"} + allCommands);
}

void tst_OwedReply::lateAcknowledgementBelongsToTheLastTry()
{
    Exchange run(1000);
    run.device.openDevice();
    QTRY_COMPARE(run.logger.commands().size(), 1);
    run.logger.send("ATDC 1,2\r\n");
    QTRY_VERIFY(run.device.isConnected());
    run.device.startSyncTelnet();
    QTRY_COMPARE(run.logger.commands().size(), 2);
    run.device.stopSyncTelnet();
    run.device.startSyncTelnet();
    run.logger.send("OK\r\n"); // to the first try's command
    QTRY_COMPARE(run.logger.commands().size(), 3);
    QCOMPARE(run.logger.commands(), QList<QByteArray>({"ATDC", allCommands.first(), allCommands.first()}));
    run.logger.setReply("OK\r\n");
    run.logger.send("OK\r\n");
    QTRY_COMPARE(run.success.count(), 1);
    QCOMPARE(run.logger.commands().mid(2), allCommands);
}

void tst_OwedReply::endsWhileItWaits_data()
{
    QTest::addColumn<QString>("end");
    QTest::newRow("stopped") << "stopped";
    QTest::newRow("disconnected") << "disconnected";
    QTest::newRow("link closed") << "link closed";
    QTest::newRow("port forgotten") << "port forgotten";
}

void tst_OwedReply::endsWhileItWaits()
{
    QFETCH(QString, end);
    Exchange run(1000);
    QVERIFY(run.startWithAPollOnItsWay());
    LogCapture log;
    if (end == "stopped")
        run.device.stopSyncTelnet();
    else if (end == "disconnected")
        run.device.deviceDisconnected();
    else if (end == "link closed")
        run.device.closeDevice();
    else
        run.device.forgetPort();
    run.logger.send("ATDC 21.50,45.10\r\n");
    // When a later one has waited in vain, so would this one have.
    Exchange later(1000);
    QVERIFY(later.startWithAPollOnItsWay());
    QTRY_VERIFY(later.logger.commands().size() > 1);
    QCOMPARE(log.count("- ConfiguredDevice::startSyncTelnet"), 1);
    QCOMPARE(run.logger.commands(), QList<QByteArray>{"ATDC"});
    QCOMPARE(run.logger.accepted(), 1);
}

QTEST_GUILESS_MAIN(tst_OwedReply)
#include "tst_OwedReply.moc"
