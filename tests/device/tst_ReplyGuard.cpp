#include "device/ReplyGuard.h"

#include <QTest>

using namespace replyBounds;

class tst_ReplyGuard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void judgesOneAnswer_data();
    void judgesOneAnswer();
    void countsAllOfOnePoll();
    void everyPollBeginsAnew();
    void boundsWhatASecondBrings();
    void admitsNothingAfterAnExcess();
    void complainsOnce();
    void pollsInQuickSuccessionProveNothing();
    void complainsAgainAfterASecondOfGoodBehaviour();

private:
    static qint64 clock() { return s_now; }
    static qint64 s_now;
};

qint64 tst_ReplyGuard::s_now = 0;

void tst_ReplyGuard::init()
{
    s_now = 1000000;
}

void tst_ReplyGuard::judgesOneAnswer_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("complaint");
    const QByteArray field(fieldLength, '9');
    const QString tooLong("a field of more than 4096 characters");
    const QString tooManyLines("more than 128 lines for one poll");
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("a reading") << QByteArray("ATDC 21.50,45.10\r\n") << QString();
    QTest::newRow("as many readings as allowed") << QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll) << QString();
    QTest::newRow("one reading too many") << QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll + 1) << tooManyLines;
    QTest::newRow("line ends alone") << QByteArray("\n").repeated(linesPerPoll + 1) << tooManyLines;
    QTest::newRow("a last line without its end") << QByteArray("1,2\n").repeated(linesPerPoll) + "1,2" << tooManyLines;
    QTest::newRow("as many bytes as allowed")
        << QByteArray("21.50,45.10,").repeated(2000).left(bytesPerPoll) << QString();
    QTest::newRow("one byte too many") << QByteArray("21.50,45.10,").repeated(2000).left(bytesPerPoll + 1)
                                       << QString("more than 16384 bytes for one poll");
    QTest::newRow("longest fields") << field + ',' + field + '\n' << QString();
    QTest::newRow("first field too long") << field + "9,1\n" << tooLong;
    QTest::newRow("second field too long") << "1," + field + "9\n" << tooLong;
    QTest::newRow("no field at all") << QByteArray(fieldLength + 1, '\0') << tooLong;
}

void tst_ReplyGuard::judgesOneAnswer()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, complaint);
    ReplyGuard guard(clock);
    guard.pollSent();
    QCOMPARE(guard.admits(bytes), complaint.isEmpty());
    if (!complaint.isEmpty())
        QCOMPARE(guard.takeComplaint(), complaint);
}

void tst_ReplyGuard::countsAllOfOnePoll()
{
    ReplyGuard byLines(clock);
    byLines.pollSent();
    for (int piece = 0; piece < linesPerPoll; ++piece)
        QVERIFY(byLines.admits("x"));
    QVERIFY2(!byLines.admits("x"), "each piece takes a turn of its own, however short it is");

    ReplyGuard byBytes(clock);
    byBytes.pollSent();
    QVERIFY(byBytes.admits(QByteArray(",").repeated(bytesPerPoll)));
    QVERIFY(!byBytes.admits("x"));
}

void tst_ReplyGuard::everyPollBeginsAnew()
{
    ReplyGuard guard(clock);
    for (int poll = 0; poll < 1000; ++poll) {
        guard.pollSent();
        QVERIFY(guard.admits(QByteArray("ATDC 1,2\r\n").repeated(linesPerPoll)));
        s_now += 1000;
    }
}

void tst_ReplyGuard::boundsWhatASecondBrings()
{
    const QByteArray answer = QByteArray(",").repeated(bytesPerPoll);
    ReplyGuard guard(clock);
    for (int poll = 0; poll < bytesPerSecond / bytesPerPoll; ++poll) {
        guard.pollSent();
        QVERIFY(guard.admits(answer));
    }
    guard.pollSent();
    s_now += 999;
    QVERIFY(!guard.admits("1,2\n"));
    QCOMPARE(guard.takeComplaint(), QString("more than 65536 bytes within a second"));
    guard.pollSent();
    s_now += 1;
    QVERIFY(guard.admits(answer));
}

void tst_ReplyGuard::admitsNothingAfterAnExcess()
{
    ReplyGuard guard(clock);
    guard.pollSent();
    QVERIFY(!guard.admits(QByteArray(bytesPerPoll + 1, ',')));
    QVERIFY(!guard.admits("ATDC 1,2\r\n"));
    guard.pollSent();
    QVERIFY(guard.admits("ATDC 1,2\r\n"));
}

void tst_ReplyGuard::complainsOnce()
{
    const QByteArray tooMuch(bytesPerPoll + 1, ',');
    ReplyGuard guard(clock);
    QVERIFY(!guard.admits(tooMuch));
    QVERIFY(!guard.takeComplaint().isEmpty());
    for (int poll = 0; poll < 10; ++poll) {
        s_now += 1000;
        guard.pollSent();
        if (poll % 2 == 0) // an answer first, then the rest
            QVERIFY(guard.admits("ATDC 1,2\r\n"));
        QVERIFY(!guard.admits(tooMuch));
        QCOMPARE(guard.takeComplaint(), QString());
    }
    guard.pollSent();
    guard.pollSent();
    QVERIFY(!guard.admits(tooMuch));
    QVERIFY2(guard.takeComplaint().isEmpty(), "silence is no good answer");
}

/// A connection that took until the next tick polls twice within moments, and a logger may answer both before it
/// floods.
void tst_ReplyGuard::pollsInQuickSuccessionProveNothing()
{
    const QByteArray tooMuch(bytesPerPoll + 1, ',');
    ReplyGuard guard(clock);
    guard.pollSent();
    QVERIFY(!guard.admits(tooMuch));
    QVERIFY(!guard.takeComplaint().isEmpty());
    s_now += 5000;
    for (int poll = 0; poll < 3; ++poll) {
        guard.pollSent();
        QVERIFY(guard.admits("ATDC 1,2\r\n"));
        s_now += 333;
    }
    guard.pollSent();
    QVERIFY(!guard.admits(tooMuch));
    QCOMPARE(guard.takeComplaint(), QString());
}

void tst_ReplyGuard::complainsAgainAfterASecondOfGoodBehaviour()
{
    const QByteArray tooMuch(bytesPerPoll + 1, ',');
    ReplyGuard guard(clock);
    guard.pollSent();
    QVERIFY(!guard.admits(tooMuch));
    QVERIFY(!guard.takeComplaint().isEmpty());
    guard.pollSent();
    QVERIFY(guard.admits("ATDC 1,2\r\n"));
    s_now += 1000;
    guard.pollSent();
    QVERIFY(!guard.admits(tooMuch));
    QVERIFY(!guard.takeComplaint().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ReplyGuard)
#include "tst_ReplyGuard.moc"
