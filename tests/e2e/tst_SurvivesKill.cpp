#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSet>
#include <QTest>

#include <vector>

namespace {

const QString uncleanEnd = QStringLiteral("StationJournal : The station was not closed properly the last time");
const QString projectOpened = QStringLiteral("SorvantoMain::createInsertSerialData :");
const QString journalHead = QStringLiteral("Journal of events :");
const QString committed = QStringLiteral("commit transaction : true");
const QString toldSaved = QStringLiteral("SorvantoMain::reportSavedRows");

} // namespace

/// A station that is ended without a chance to say goodbye.
class tst_SurvivesKill : public QObject
{
    Q_OBJECT

private slots:
    void readingsOfNoBatchAreThereAgain();
    void everyReadingIsThereOnce();
};

namespace {

/// Lets the station run for a while of its own choosing, ends it, and notes which reading of each logger was perhaps
/// still on its way: the one that no further poll has followed.
class Killer
{
public:
    explicit Killer(E2eFixture &e2e) : m_e2e(e2e), m_mayMiss(size_t(e2e.loggerCount())) {}

    bool killAfter(qint64 milliseconds)
    {
        std::vector<int> before;
        for (int i = 0; i < m_e2e.loggerCount(); ++i)
            before.push_back(m_e2e.served(i).count());
        const QDeadlineTimer moment(milliseconds);
        if (!m_e2e.start() || !m_e2e.waitUntil([&] { return moment.hasExpired(); }) || !m_e2e.station().end(SIGKILL))
            return false;
        for (int i = 0; i < m_e2e.loggerCount(); ++i) {
            const int count = m_e2e.served(i).count();
            if (count > before.at(size_t(i)))
                m_mayMiss.at(size_t(i)) += count - 1;
        }
        return true;
    }

    QByteArray miscounts() const
    {
        const QList<RecordedRow> rows = m_e2e.rows();
        QStringList found;
        for (int i = 0; i < m_e2e.loggerCount(); ++i)
            found += m_e2e.served(i).miscounts(rows, m_mayMiss.at(size_t(i)));
        found.removeAll(QString());
        return found.join(QLatin1Char('\n')).toLocal8Bit();
    }

private:
    E2eFixture &m_e2e;
    std::vector<QSet<int>> m_mayMiss;
};

} // namespace

/// Fewer readings than a batch takes: none has reached the recording when the station is ended.
void tst_SurvivesKill::readingsOfNoBatchAreThereAgain()
{
    E2eFixture e2e;
    e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(5); }), station.lastWords());
    QVERIFY2(station.end(SIGKILL), station.lastWords());
    QCOMPARE(station.count(committed), 0);
    QCOMPARE(e2e.readingCount(), 0);
    QVERIFY(QFileInfo::exists(e2e.spool()));

    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(toldSaved) > 0; }), station.lastWords());
    QVERIFY2(e2e.waitUntil([&] { return station.count(uncleanEnd) == 1; }), station.lastWords());
    QCOMPARE(station.count(committed), 1);
    QVERIFY(e2e.readingCount() >= 4);
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY(!QFileInfo::exists(e2e.spool()));
    QCOMPARE(e2e.served(0).miscounts(e2e.rows(), {4}), QString());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));

    // That was a clean end.
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(projectOpened) > 0; }), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QCOMPARE(station.count(journalHead), 1);
    QCOMPARE(station.count(uncleanEnd), 0);
}

void tst_SurvivesKill::everyReadingIsThereOnce()
{
    constexpr int kills = 8;
    constexpr int longestRunMs = 6000;
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator moments(seed);
    qInfo("the moments are those of seed %u", seed);

    E2eFixture e2e;
    for (int i = 0; i < 4; ++i)
        e2e.addLogger();
    Killer killer(e2e);
    for (int i = 0; i < kills; ++i)
        QVERIFY2(killer.killAfter(moments.bounded(longestRunMs)), e2e.station().lastWords());

    StationProcess &station = e2e.station();
    const int before = e2e.served(0).count();
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + 5); }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QCOMPARE(killer.miscounts(), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    QVERIFY(!QFileInfo::exists(e2e.spool()));
}

QTEST_GUILESS_MAIN(tst_SurvivesKill)
#include "tst_SurvivesKill.moc"
