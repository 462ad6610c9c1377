#include "servedcheck/ServedCheck.h"

#include <QTest>

#include <algorithm>

using namespace servedcheck;

namespace {

constexpr qint64 startMs = 1700000000500; // in the middle of a second
constexpr int rounds = 60;

using Seconds = std::vector<qint64>;

const QString reference = QStringLiteral("reference");
const QString logger = QStringLiteral("logger");

qint64 pollMs(int round)
{
    return startMs + round * 1000 + round % 7; // no poll is quite on time
}

qint64 secondOf(int round)
{
    return startMs / 1000 + round;
}

} // namespace

/// A minute of polls to two loggers; the one called reference is flawless.
class tst_ServedCheck : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void allIsWell();
    void lostReading();
    void doubledReading();
    void rowWithoutAnAnswer();
    void unansweredPoll();
    void refreshIsNotRecorded();
    void refreshOfALoggerThatMissedItsPoll();
    void recordedRefresh();
    void refreshThatSwallowsTheReading();
    void refreshTogetherWithThePoll();
    void askedForAgain();
    void answerLongAfterItsPoll();
    void askedWhileConnecting_data();
    void askedWhileConnecting();
    void pollLateByAThird();
    void twoPollsInOneSecond();
    void driftingClock();
    void beatLostToDisplayPolls();
    void beforeTheRecording();
    void loggerThatIsNeverRecorded();
    void nothingAtAll();

private:
    /// Answered by the reference and, unless it is one of the @p missed, by the logger.
    void serve(const QList<int> &missed = {});
    void refresh(int round, int afterMs, bool answered = true);
    void record(const QList<int> &without = {});
    Tally tally();

    std::map<QString, std::vector<qint64>> m_polls;
    ServedCheck m_check;
};

void tst_ServedCheck::init()
{
    m_polls.clear();
    m_check = ServedCheck();
}

void tst_ServedCheck::serve(const QList<int> &missed)
{
    for (int round = 0; round < rounds; ++round) {
        m_polls[reference].push_back(pollMs(round));
        if (!missed.contains(round))
            m_polls[logger].push_back(pollMs(round) + 3);
    }
}

void tst_ServedCheck::refresh(int round, int afterMs, bool answered)
{
    m_polls[reference].push_back(pollMs(round) + afterMs);
    if (answered)
        m_polls[logger].push_back(pollMs(round) + afterMs + 2);
}

void tst_ServedCheck::record(const QList<int> &without)
{
    for (int round = 0; round < rounds; ++round) {
        m_check.addRow(reference, secondOf(round));
        if (!without.contains(round))
            m_check.addRow(logger, secondOf(round));
    }
}

Tally tst_ServedCheck::tally()
{
    for (auto &[key, polls] : m_polls) {
        std::sort(polls.begin(), polls.end());
        for (const qint64 polled : polls)
            m_check.addPoll(key, polled);
    }
    return m_check.compare(reference)[logger];
}

#define COMPARE_TALLY(lostReadings, extraRows, undecidedAnswers)                                                       \
    do {                                                                                                               \
        const Tally found = tally();                                                                                   \
        QCOMPARE(found.lost, Seconds lostReadings);                                                                    \
        QCOMPARE(found.extra, Seconds extraRows);                                                                      \
        QCOMPARE(found.undecided, Seconds undecidedAnswers);                                                           \
    } while (false)

void tst_ServedCheck::allIsWell()
{
    serve();
    record();
    const Tally found = tally();
    QCOMPARE(found.answers, rounds - 5);
    QCOMPARE(found.recorded, rounds - 5);
    QCOMPARE(found.lost, Seconds());
    QCOMPARE(found.extra, Seconds());
    QCOMPARE(found.undecided, Seconds());
    QCOMPARE(m_check.refreshes(reference), 0);
}

void tst_ServedCheck::lostReading()
{
    serve();
    record({20, 30});
    COMPARE_TALLY(({secondOf(20), secondOf(30)}), (), ());
}

void tst_ServedCheck::doubledReading()
{
    serve();
    record();
    m_check.addRow(logger, secondOf(20));
    COMPARE_TALLY((), ({secondOf(20)}), ());
}

void tst_ServedCheck::rowWithoutAnAnswer()
{
    serve({20});
    record();
    COMPARE_TALLY((), ({secondOf(20)}), ());
}

void tst_ServedCheck::unansweredPoll()
{
    serve({20, 21, 22});
    record({20, 21, 22});
    COMPARE_TALLY((), (), ());
}

void tst_ServedCheck::refreshIsNotRecorded()
{
    serve();
    for (int round = 7; round < rounds; round += 7)
        refresh(round, round * 13);
    record();
    COMPARE_TALLY((), (), ());
    QCOMPARE(m_check.refreshes(reference), 8);
}

void tst_ServedCheck::refreshOfALoggerThatMissedItsPoll()
{
    serve({20});
    refresh(20, 400);
    record({20});
    COMPARE_TALLY((), (), ());
}

void tst_ServedCheck::recordedRefresh()
{
    serve({20});
    refresh(20, 400);
    record();
    COMPARE_TALLY((), ({secondOf(20)}), ());
}

void tst_ServedCheck::refreshThatSwallowsTheReading()
{
    serve();
    refresh(19, 700, false);
    record({20});
    COMPARE_TALLY(({secondOf(20)}), (), ());
}

void tst_ServedCheck::refreshTogetherWithThePoll()
{
    serve({20});
    refresh(20, 5);
    record({20});
    COMPARE_TALLY((), (), ({secondOf(20)}));
}

void tst_ServedCheck::askedForAgain()
{
    serve();
    m_polls[logger].push_back(pollMs(20) + 250);
    record();
    COMPARE_TALLY((), (), ());
}

/// The poll waited for its connection: it belongs to the round in which it was to be sent.
void tst_ServedCheck::answerLongAfterItsPoll()
{
    serve({20});
    m_polls[logger].push_back(pollMs(20) + 800);
    record();
    COMPARE_TALLY((), (), ());
}

/// The connection came about just before the next poll, so that both arrive together.
void tst_ServedCheck::askedWhileConnecting_data()
{
    QTest::addColumn<QList<int>>("without");
    QTest::addColumn<QList<int>>("more");
    QTest::addColumn<Seconds>("lost");
    QTest::addColumn<Seconds>("extra");
    QTest::newRow("recorded") << QList<int>{} << QList<int>{} << Seconds{} << Seconds{};
    QTest::newRow("doubled") << QList<int>{} << QList<int>{20} << Seconds{} << Seconds{secondOf(20)};
    QTest::newRow("the next one doubled") << QList<int>{} << QList<int>{21} << Seconds{} << Seconds{secondOf(21)};
    QTest::newRow("the next one lost") << QList<int>{21} << QList<int>{} << Seconds{secondOf(21)} << Seconds{};
    QTest::newRow("two for one") << QList<int>{} << QList<int>{19} << Seconds{} << Seconds{secondOf(19)};
}

void tst_ServedCheck::askedWhileConnecting()
{
    QFETCH(QList<int>, without);
    QFETCH(QList<int>, more);
    serve({19, 20});
    m_polls[logger].push_back(pollMs(21) - 40);
    record(without + QList<int>{19});
    for (const int round : more)
        m_check.addRow(logger, secondOf(round));
    const Tally found = tally();
    QTEST(found.lost, "lost");
    QTEST(found.extra, "extra");
    QCOMPARE(found.undecided, Seconds());
}

void tst_ServedCheck::pollLateByAThird()
{
    serve();
    for (const QString &key : {reference, logger})
        m_polls[key][20] += 330;
    record();
    COMPARE_TALLY((), (), ());
}

/// So late that the next one follows within the second: of equal values only one is kept.
void tst_ServedCheck::twoPollsInOneSecond()
{
    serve();
    for (const QString &key : {reference, logger})
        m_polls[key][20] += 700;
    record({20});
    COMPARE_TALLY(({secondOf(21)}), (), ());
}

void tst_ServedCheck::driftingClock()
{
    for (int round = 0; round < rounds; ++round) {
        for (const QString &key : {reference, logger})
            m_polls[key].push_back(pollMs(round) - round * 7);
        m_check.addRow(reference, (pollMs(round) - round * 7) / 1000);
        m_check.addRow(logger, (pollMs(round) - round * 7) / 1000);
    }
    COMPARE_TALLY((), (), ());
}

/// While record polls are missing, display polls that follow each other by a little more than a second are taken for
/// them.
void tst_ServedCheck::beatLostToDisplayPolls()
{
    serve();
    for (auto &[key, polls] : m_polls)
        polls.erase(polls.begin() + 20, polls.begin() + 22);
    refresh(20, 90);
    refresh(21, 180);
    refresh(40, 300);
    record({20, 21});
    m_check.addRow(logger, secondOf(20));
    m_check.addRow(logger, secondOf(21));
    // One record poll after them is taken for a display poll; the others are not.
    COMPARE_TALLY((), ({secondOf(23)}), ());
}

void tst_ServedCheck::beforeTheRecording()
{
    serve();
    for (int round = 30; round < rounds; ++round)
        m_check.addRow(logger, secondOf(round));
    COMPARE_TALLY((), (), ());
}

void tst_ServedCheck::loggerThatIsNeverRecorded()
{
    serve();
    for (int round = 0; round < rounds; ++round)
        m_check.addRow(reference, secondOf(round));
    QCOMPARE(tally().lost.size(), size_t(rounds - 5));
}

void tst_ServedCheck::nothingAtAll()
{
    COMPARE_TALLY((), (), ());
    QCOMPARE(m_check.refreshes(reference), 0);
}

QTEST_GUILESS_MAIN(tst_ServedCheck)
#include "tst_ServedCheck.moc"
