#include "device/ChartTime.h"
#include "device/ConfiguredDevice.h"
#include "store/Recording.h"
#include "support/RecordedRows.h"
#include "support/ScriptedLogger.h"
#include "support/TemporaryInterval.h"

#include <QTest>

/// Which replies of a network logger are recorded, and with which time, whatever else it was asked meanwhile.
class tst_RecordPolls : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void displayPollWhileTheLoggerIsAway();
    void onePollForAllThatWaitForTheConnection_data();
    void onePollForAllThatWaitForTheConnection();
    void displayPollAloneIsNeverRecorded_data();
    void displayPollAloneIsNeverRecorded();
    void displayPollWithoutAnAnswer_data();
    void displayPollWithoutAnAnswer();
    void answersInTheOrderOfThePolls_data();
    void answersInTheOrderOfThePolls();
    void repliesThatComeTogether();
    void repliesToOnePoll();
    void repliesOfManyLines();
    void lostReplyShiftsNoTimes();
    void readingThatIsShownIsKeptBeforeItsPollIsKnown();
    void pollUnansweredForLongTakesNoDisplayReading();
    void replyThatNobodyAskedForIsNotRecordedTwice();
    void historyStandsAtTheTimesOfThePolls_data();
    void historyStandsAtTheTimesOfThePolls();
    void recordsWhatArrivesWhileRecording_data();
    void recordsWhatArrivesWhileRecording();
};

namespace {

struct Bench
{
    TemporaryInterval interval;
    ScriptedLogger logger;
    ConfiguredDevice device{"A1", NetworkInterface};
    qint64 now = 1700000000;

    explicit Bench(int intervalMs) : interval(intervalMs)
    {
        device.setClock([this] { return QDateTime::fromSecsSinceEpoch(now); });
        device.setDeviceInfo("Cellar", "1", "2", logger.address(), logger.port());
        device.setRecording(true);
    }

    /// A connection that stands, on which nothing is under way any more and nothing was recorded.
    bool connect()
    {
        device.setRecording(false);
        device.pollForDisplay();
        const bool done = QTest::qWaitFor([this] { return device.isConnected(); });
        logger.setSilent();
        device.setRecording(true);
        return done;
    }
    /// "r" polls for a record and lets a second pass, "d" polls for display.
    void poll(const QString &kinds)
    {
        for (const QChar kind : kinds) {
            if (kind == 'd')
                device.pollForDisplay();
            else
                device.pollForRecord();
            now += kind == 'r' ? 1 : 0;
        }
    }
    /// Whether so many commands have reached the logger.
    bool hasHeard(int commands)
    {
        return QTest::qWaitFor([=] { return logger.commands().size() == commands; });
    }
    /// "value@second" for every point of the history.
    QStringList points() const
    {
        History times;
        History channel1;
        History channel2;
        device.history(times, channel1, channel2);
        QStringList texts;
        for (size_t i = 0; i < times.size(); ++i) {
            if (!isNoValue(times[i]))
                texts << QString("%1@%2").arg(channel1[i]).arg(times[i] - chartTime2(1700000000));
        }
        return texts;
    }
    /// Sends a reading and lets the device take it.
    bool reply(int value)
    {
        logger.send("ATDC " + QByteArray::number(value) + ",1\r\n");
        return QTest::qWaitFor([=] { return device.ch1Value() == QString("%1.00").arg(value); });
    }
};

/// "value@second" for every row, by time; seconds since the first of the bench.
QStringList rowsTaken()
{
    QStringList texts;
    const QList<RecordedRow> rows = takeRecordedRows();
    for (const RecordedRow &row : rows)
        texts << QString("%1@%2").arg(row.channel1.toDouble()).arg(row.time - 1700000000);
    return texts;
}

} // namespace

void tst_RecordPolls::cleanup()
{
    takeRecordedRows();
}

void tst_RecordPolls::displayPollWhileTheLoggerIsAway()
{
    Bench bench(10000);
    bench.logger.stopListening();
    bench.poll("d");
    QVERIFY(bench.logger.listenAgain());
    // Until the refusal has come in, the poll finds the link still connecting.
    const auto isAnswered = [&] {
        bench.poll("r");
        return QTest::qWaitFor([&] { return bench.device.isConnected(); }, 200);
    };
    QVERIFY(QTest::qWaitFor(isAnswered));
    QCOMPARE(rowsTaken().size(), 1);
}

void tst_RecordPolls::onePollForAllThatWaitForTheConnection_data()
{
    QTest::addColumn<QString>("polls");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("display, record") << "dr" << QStringList("21.5@0");
    QTest::newRow("record, display") << "rd" << QStringList("21.5@0");
    QTest::newRow("record between") << "drd" << QStringList("21.5@0");
    QTest::newRow("the latest record") << "rrd" << QStringList("21.5@1");
    QTest::newRow("display only") << "dd" << QStringList();
}

void tst_RecordPolls::onePollForAllThatWaitForTheConnection()
{
    QFETCH(QString, polls);
    QFETCH(QStringList, rows);
    Bench bench(10000);
    bench.poll(polls);
    QTRY_VERIFY(bench.device.isConnected());
    QCOMPARE(rowsTaken(), rows);
    QCOMPARE(bench.logger.commands(), QList<QByteArray>{"ATDC"});
    // Nothing of it is left behind.
    bench.poll("r");
    QTRY_COMPARE(bench.logger.commands().size(), 2);
    QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
}

void tst_RecordPolls::displayPollAloneIsNeverRecorded_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("1 s") << 1000 << QByteArray("ATDC 1,2\r\n");
    QTest::newRow("10 s") << 10000 << QByteArray("ATDC 1,2\r\n");
    QTest::newRow("two lines") << 1000 << QByteArray("ATDC 3,4\r\n1,2\r\n");
}

void tst_RecordPolls::displayPollAloneIsNeverRecorded()
{
    QFETCH(int, interval);
    QFETCH(QByteArray, reply);
    Bench bench(interval);
    bench.logger.setReply(reply);
    for (int poll = 1; poll <= 3; ++poll) {
        bench.poll("d");
        QVERIFY(bench.hasHeard(poll));
        QTRY_COMPARE(bench.device.ch1Value(), QString("1.00"));
        bench.device.deviceDisconnected(); // empties the value
    }
    QCOMPARE(rowsTaken(), QStringList());
}

void tst_RecordPolls::displayPollWithoutAnAnswer_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("before") << "d"
                            << "";
    QTest::newRow("twice before") << "dd"
                                  << "";
    QTest::newRow("after") << ""
                           << "d";
    QTest::newRow("before and after") << "d"
                                      << "d";
}

void tst_RecordPolls::displayPollWithoutAnAnswer()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll(before + "r" + after);
    QVERIFY(bench.hasHeard(before.size() + after.size() + 2));
    QVERIFY(bench.reply(1));
    // With the next poll it is clear that the others get no answer.
    bench.poll("r");
    QCOMPARE(rowsTaken(), QStringList("1@0"));
    QVERIFY(bench.reply(2));
    QCOMPARE(rowsTaken(), QStringList("2@1"));
}

void tst_RecordPolls::answersInTheOrderOfThePolls_data()
{
    QTest::addColumn<QString>("polls");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("record, display") << "rd" << QStringList("1@0");
    QTest::newRow("display, record") << "dr" << QStringList("2@0");
    QTest::newRow("three late records") << "rrr" << QStringList({"1@0", "2@1", "3@2"});
    QTest::newRow("display between") << "rdr" << QStringList({"1@0", "3@1"});
    QTest::newRow("display around") << "drd" << QStringList("2@0");
}

void tst_RecordPolls::answersInTheOrderOfThePolls()
{
    QFETCH(QString, polls);
    QFETCH(QStringList, rows);
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll(polls);
    QVERIFY(bench.hasHeard(polls.size() + 1));
    for (int value = 1; value <= polls.size(); ++value)
        QVERIFY(bench.reply(value));
    QCOMPARE(rowsTaken(), rows);
}

void tst_RecordPolls::repliesThatComeTogether()
{
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("rrdr");
    QVERIFY(bench.hasHeard(5));
    bench.logger.send("ATDC 1,1\r\nATDC 2,1\r\nATDC 3,1\r\nATDC 4,1\r\n");
    QTRY_COMPARE(bench.device.ch1Value(), QString("4.00"));
    QCOMPARE(rowsTaken(), QStringList({"1@0", "2@1", "4@2"}));
}

void tst_RecordPolls::repliesToOnePoll()
{
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("r");
    QVERIFY(bench.hasHeard(2));
    bench.logger.send("ATDC 1,1\r\nATDC 2,1\r\nATDC 3,1\r\n");
    QTRY_COMPARE(bench.device.ch1Value(), QString("3.00"));
    QCOMPARE(rowsTaken(), QStringList({"1@0", "2@0", "3@0"}));
}

void tst_RecordPolls::repliesOfManyLines()
{
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("rdr");
    QVERIFY(bench.hasHeard(4));
    bench.logger.send("ATDC 1,1\r\n2,1\r\nATDC\r\n3,1\r\n4,1\r\nATDC 5,1\r\n6,1\r\n");
    QTRY_COMPARE(bench.device.ch1Value(), QString("6.00"));
    QCOMPARE(rowsTaken(), QStringList({"1@0", "2@0", "5@1", "6@1"}));
}

void tst_RecordPolls::lostReplyShiftsNoTimes()
{
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("rr");
    QVERIFY(bench.hasHeard(3));
    QVERIFY(bench.reply(1)); // to the second: the first one's answer is lost
    bench.poll("r");
    QVERIFY(bench.reply(2));
    QCOMPARE(rowsTaken(), QStringList({"1@1", "2@2"}));
    bench.poll("rr");
    QVERIFY(bench.hasHeard(6));
    QVERIFY(bench.reply(3));
    bench.device.setRecording(false); // also tells that nothing more is to come
    QCOMPARE(rowsTaken(), QStringList("3@4"));
}

void tst_RecordPolls::readingThatIsShownIsKeptBeforeItsPollIsKnown()
{
    const Recording recording;
    const auto store = recording.open();
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("rr");
    QVERIFY(bench.hasHeard(3));
    QVERIFY(bench.reply(1));
    QCOMPARE(InsertSerialData::pendingCount(), 0);
    // As if the first one's answer was lost, until the second comes.
    QTRY_COMPARE(recording.spooledRows(), QStringList("select 'A1', 1, 1, 1700000001"));
    QVERIFY(bench.reply(2));
    QTRY_COMPARE(recording.spooledRows(),
                 QStringList({"select 'A1', 1, 1, 1700000000", "select 'A1', 2, 1, 1700000001"}));
    QCOMPARE(InsertSerialData::pendingCount(), 2);
}

void tst_RecordPolls::pollUnansweredForLongTakesNoDisplayReading()
{
    Bench bench(600000);
    bench.logger.setSilent();
    bench.poll("r");
    QVERIFY(bench.hasHeard(1));
    bench.now += 300;
    bench.poll("d");
    QVERIFY(bench.hasHeard(2));
    QVERIFY(bench.reply(1));
    bench.device.setRecording(false);
    QCOMPARE(rowsTaken(), QStringList());
}

void tst_RecordPolls::replyThatNobodyAskedForIsNotRecordedTwice()
{
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.poll("r");
    QVERIFY(bench.hasHeard(2));
    QVERIFY(bench.reply(1));
    QVERIFY(bench.reply(2));
    QCOMPARE(rowsTaken(), QStringList("1@0"));
}

/// Steps: "r" and "d" poll, "a" answers with 1, 2, ... in turn.
void tst_RecordPolls::historyStandsAtTheTimesOfThePolls_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("points");
    QTest::newRow("in time") << "rara" << QStringList({"1@0", "2@1"});
    QTest::newRow("display refreshes the newest") << "rada" << QStringList("2@0");
    QTest::newRow("late") << "rraa" << QStringList({"1@0", "2@1"});
    QTest::newRow("late by two") << "rrraaa" << QStringList({"1@0", "2@1", "3@2"});
    QTest::newRow("display late") << "radraa" << QStringList({"2@0", "3@1"});
    QTest::newRow("one lost") << "rrara" << QStringList({"1@1", "2@2"});
    QTest::newRow("display after a lost one") << "rardra" << QStringList({"1@0", "2@2"});
}

void tst_RecordPolls::historyStandsAtTheTimesOfThePolls()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, points);
    Bench bench(1000);
    int polls = 0;
    int value = 0;
    bench.logger.setSilent();
    for (const QChar step : steps) {
        if (step == 'a') {
            QVERIFY(bench.reply(++value));
            continue;
        }
        bench.poll(step);
        QVERIFY(bench.hasHeard(++polls));
    }
    // With the next poll it is clear what is not to come any more.
    bench.poll("r");
    QVERIFY(bench.reply(9));
    QCOMPARE(bench.points(), points + QStringList(QString("9@%1").arg(steps.count('r'))));
}

/// Steps: "r" and "d" poll, "a" answers with 1, 2, ... in turn, "+" starts the recording, "-" stops it.
void tst_RecordPolls::recordsWhatArrivesWhileRecording_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("polled before the start") << "r+a" << QStringList("1@0");
    QTest::newRow("answered before the start") << "ra+ra" << QStringList("2@1");
    QTest::newRow("held back at the start") << "rra+a" << QStringList("2@1");
    QTest::newRow("held back at the start, the rest lost") << "rra+ra" << QStringList("2@2");
    QTest::newRow("held back at the start, display last") << "rda+a" << QStringList();
    QTest::newRow("held back at the start, display first") << "dra+a" << QStringList("2@0");
    QTest::newRow("held back at the stop") << "+rra-a" << QStringList("1@1");
    QTest::newRow("held back at the stop, display last") << "+rda-a" << QStringList("1@0");
    QTest::newRow("answered after the stop") << "+ra-a" << QStringList("1@0");
    QTest::newRow("later than the next poll") << "+rraraa" << QStringList({"1@1", "2@2", "3@2"});
    QTest::newRow("later than the next poll, for long")
        << "+rrarararaa" << QStringList({"1@1", "2@2", "3@3", "4@4", "5@4"});
    QTest::newRow("not asked for") << "+raa" << QStringList("1@0");
    QTest::newRow("not asked for, after a late one") << "+rraraaa" << QStringList({"1@1", "2@2", "3@2"});
    QTest::newRow("polled before the stop") << "+r-a" << QStringList();
    QTest::newRow("stopped and started between poll and answer") << "+r-+a" << QStringList("1@0");
}

void tst_RecordPolls::recordsWhatArrivesWhileRecording()
{
    QFETCH(QString, steps);
    QFETCH(QStringList, rows);
    Bench bench(1000);
    QVERIFY(bench.connect());
    bench.device.setRecording(false);
    int polls = 1;
    int value = 0;
    for (const QChar step : steps) {
        if (step == 'a')
            QVERIFY(bench.reply(++value));
        else if (step == '+' || step == '-')
            bench.device.setRecording(step == '+');
        else
            bench.poll(step);
        polls += step == 'r' || step == 'd' ? 1 : 0;
        QVERIFY(bench.hasHeard(polls));
    }
    QCOMPARE(rowsTaken(), rows);
}

QTEST_GUILESS_MAIN(tst_RecordPolls)
#include "tst_RecordPolls.moc"
