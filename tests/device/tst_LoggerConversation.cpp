#include "device/LoggerConversation.h"
#include "device/ReplyParser.h"

#include <QTest>

/// Which poll a reading answers and what a logger still owes, without a link.
class tst_LoggerConversation : public QObject
{
    Q_OBJECT

private slots:
    void pollThatIsNeverSentLeavesNothing();
    void pollWaitsForItsConnection();
    void failedConnectionForgetsItsPoll();
    void replyMayFollowTheClosing();
    void replyWithoutAReadingAnswersItsPoll();
    void givesBackWhatIsUnderWay();
    void countsWhatIsOwed();
    void slowLoggerLosesNothing();
    void replyOfLongAgoIsNotRecorded();
    void repliesToOnePollAreAllRecorded();
    void whatAnEarlierConnectionIsOwedIsNotRecorded_data();
    void whatAnEarlierConnectionIsOwedIsNotRecorded();
};

namespace {

struct Bench
{
    LoggerConversation conversation{0};

    void send(bool forRecord, qint64 timeMs)
    {
        conversation.ask({forRecord, timeMs});
        conversation.linkSent("ATDC\r\n");
    }
    void hear(const QByteArray &bytes)
    {
        conversation.linkHeard(bytes);
        conversation.answer(parseReply(QString::fromLatin1(bytes).remove('\r').remove("ATDC")), true);
    }
    QList<qint64> recordedTimes()
    {
        QList<qint64> times;
        const auto readings = conversation.takeTimed();
        for (const LoggerConversation::TimedReading &reading : readings) {
            if (reading.isForRecord)
                times << reading.timeMs;
        }
        return times;
    }
};

} // namespace

void tst_LoggerConversation::pollThatIsNeverSentLeavesNothing()
{
    Bench bench;
    bench.conversation.ask({true, 1000});
    bench.conversation.forgetPollNotSent();
    bench.send(false, 1500);
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>());
    QVERIFY(!bench.conversation.isAnyPollUnanswered());
}

void tst_LoggerConversation::pollWaitsForItsConnection()
{
    Bench bench;
    bench.conversation.ask({true, 1000});
    bench.conversation.linkOpening();
    bench.conversation.forgetPollNotSent();
    bench.conversation.ask({false, 1500});
    bench.conversation.forgetPollNotSent();
    bench.conversation.linkSent("ATDC\r\n");
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>{1000});
}

void tst_LoggerConversation::failedConnectionForgetsItsPoll()
{
    Bench bench;
    bench.conversation.ask({true, 1000});
    bench.conversation.linkOpening();
    bench.conversation.linkClosed(false);
    QVERIFY(!bench.conversation.takeDueRecordPoll());
    bench.send(false, 1500);
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>());
}

void tst_LoggerConversation::replyMayFollowTheClosing()
{
    Bench bench;
    bench.send(true, 1000);
    bench.conversation.linkClosed(false);
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>{1000});
    bench.send(true, 2000);
    bench.conversation.linkClosed(false);
    bench.send(true, 3000);
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>{3000});
}

void tst_LoggerConversation::replyWithoutAReadingAnswersItsPoll()
{
    Bench bench;
    bench.send(true, 1000);
    bench.send(true, 2000);
    bench.hear("ATDC 1,2\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>());
    bench.hear("ATDC\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>{1000});
    QVERIFY(!bench.conversation.isAnyPollUnanswered());
}

void tst_LoggerConversation::givesBackWhatIsUnderWay()
{
    Bench bench;
    QVERIFY(!bench.conversation.unansweredRecordPoll());
    bench.send(true, 1000);
    bench.send(false, 1500);
    QCOMPARE(bench.conversation.unansweredRecordPoll()->timeMs, qint64(1000));
    bench.hear("ATDC 1,2\r\nATDC 1,2\r\n");
    QVERIFY(!bench.conversation.unansweredRecordPoll());
    bench.conversation.ask({true, 2000});
    QCOMPARE(bench.conversation.takeDueRecordPoll()->timeMs, qint64(2000));
    QVERIFY(!bench.conversation.takeDueRecordPoll());
}

void tst_LoggerConversation::countsWhatIsOwed()
{
    Bench bench;
    bench.send(true, 1000);
    bench.send(false, 1500);
    bench.conversation.linkSent("ATBMIN1 1.00\r\n");
    bench.conversation.linkHeard("noise\r\n");
    bench.hear("ATDC 1,2\r\n");
    bench.conversation.linkHeard("AT");
    bench.conversation.linkHeard("DC 1,2");
    QVERIFY(bench.conversation.owesReply());
    bench.conversation.linkHeard("\r\n");
    QVERIFY2(bench.conversation.owesReply(), "the command's acknowledgement is still to come");
    bench.conversation.linkClosed(false);
    QVERIFY(!bench.conversation.owesReply());
    bench.conversation.linkSent("ATBMIN1 1.00\r\n");
    QVERIFY(bench.conversation.owesReply());
    bench.conversation.linkHeard("OK\r\n");
    QVERIFY(!bench.conversation.owesReply());
}

/// Each answer comes after the next poll: which one it answers is clear only at the end.
void tst_LoggerConversation::slowLoggerLosesNothing()
{
    Bench bench;
    bench.send(true, 1000);
    bench.send(true, 2000);
    bench.hear("ATDC 1,1\r\n");
    bench.send(true, 3000);
    bench.hear("ATDC 2,1\r\n");
    bench.send(true, 4000);
    bench.hear("ATDC 3,1\r\nATDC 4,1\r\n");
    QCOMPARE(bench.recordedTimes(), (QList<qint64>{2000, 3000, 3000, 4000}));

    bench.send(true, 5000);
    bench.send(true, 6000);
    bench.hear("ATDC 5,1\r\n");
    bench.send(true, 7000);
    bench.hear("ATDC 6,1\r\n");
    bench.hear("ATDC 7,1\r\n");
    QCOMPARE(bench.recordedTimes(), (QList<qint64>{6000, 7000, 7000}));
}

void tst_LoggerConversation::replyOfLongAgoIsNotRecorded()
{
    Bench bench;
    bench.send(true, 1000);
    bench.send(true, 2000);
    bench.hear("ATDC 2,1\r\n");
    bench.send(true, 1001 + LoggerConversation::longestReplyMs);
    bench.hear("ATDC 3,1\r\n");
    QCOMPARE(bench.recordedTimes(), (QList<qint64>{2000, 1001 + LoggerConversation::longestReplyMs}));
    bench.hear("ATDC 1,1\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>());
}

void tst_LoggerConversation::repliesToOnePollAreAllRecorded()
{
    Bench bench;
    bench.send(true, 1000);
    bench.hear("ATDC 1,1\r\nATDC 2,1\r\n");
    QCOMPARE(bench.recordedTimes(), (QList<qint64>{1000, 1000}));
    bench.send(false, 1500);
    bench.hear("ATDC 1,1\r\nATDC 2,1\r\n");
    QCOMPARE(bench.recordedTimes(), QList<qint64>());
}

void tst_LoggerConversation::whatAnEarlierConnectionIsOwedIsNotRecorded_data()
{
    QTest::addColumn<bool>("mayStillAnswer");
    QTest::addColumn<QList<qint64>>("times");
    QTest::newRow("serial port") << true << QList<qint64>{3000};
    QTest::newRow("network") << false << QList<qint64>{3000, 3000, 3000};
}

void tst_LoggerConversation::whatAnEarlierConnectionIsOwedIsNotRecorded()
{
    QFETCH(bool, mayStillAnswer);
    QFETCH(QList<qint64>, times);
    Bench bench;
    bench.send(true, 1000);
    bench.send(true, 2000);
    bench.conversation.linkClosed(mayStillAnswer);
    bench.send(true, 3000);
    bench.hear("ATDC 1,1\r\nATDC 2,1\r\nATDC 3,1\r\n");
    QCOMPARE(bench.recordedTimes(), times);
}

QTEST_GUILESS_MAIN(tst_LoggerConversation)
#include "tst_LoggerConversation.moc"
