#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QDeadlineTimer>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

namespace {

const QString uncleanEnd = QStringLiteral("StationJournal : The station was not closed properly the last time");
const QString projectOpened = QStringLiteral("SorvantoMain::createInsertSerialData :");
const QString journalHead = QStringLiteral("Journal of events :");
const QString committed = QStringLiteral("commit transaction : true");
const QString shown = QStringLiteral("- ConfiguredDevice::takeReadings()");
const QString toldSaved = QStringLiteral("SorvantoMain::reportSavedRows");

} // namespace

/// A station that is ended without a chance to say goodbye.
class tst_SurvivesKill : public QObject
{
    Q_OBJECT

private slots:
    void readingsOfNoBatchAreThereAgain();
    void everyReadingIsThereOnce_data();
    void everyReadingIsThereOnce();
};

namespace {

/// Lets the station run and be killed, and notes which readings it had shown until then. Others may be lost: one that
/// was served but still on its way to the station, which nobody has seen.
class Killer
{
public:
    explicit Killer(E2eFixture &e2e) : m_e2e(e2e)
    {
        e2e.setLogRules(QStringLiteral("sorvanto.*.debug=false;sorvanto.app.debug=true;sorvanto.store.debug=true;"
                                       "sorvanto.device.debug=true"));
    }

    /// The time counts from the start, or from the moment at which the station has shown something.
    bool killAfter(qint64 milliseconds, bool onceShown)
    {
        if (!m_e2e.start())
            return false;
        const StationProcess &station = m_e2e.station();
        if (onceShown && !m_e2e.waitUntil([&] { return station.count(shown) > 0; }))
            return false;
        const QDeadlineTimer moment(milliseconds);
        if (!m_e2e.waitUntil([&] { return moment.hasExpired(); }) || !m_e2e.station().end(SIGKILL))
            return false;
        noteShown();
        return true;
    }

    /// After the end of a run; returns how many it has shown.
    int noteShown()
    {
        int count = 0;
        for (int i = 0; i < m_e2e.loggerCount(); ++i)
            count += m_e2e.served(i).noteShown(m_e2e.station().lines());
        return count;
    }

    QByteArray miscounts() const
    {
        const QList<RecordedRow> rows = m_e2e.rows();
        QStringList found;
        for (int i = 0; i < m_e2e.loggerCount(); ++i)
            found += m_e2e.served(i).miscounts(rows);
        found.removeAll(QString());
        return found.join(QLatin1Char('\n')).toLocal8Bit();
    }

private:
    E2eFixture &m_e2e;
};

int servedByAll(const E2eFixture &e2e)
{
    int count = 0;
    for (int i = 0; i < e2e.loggerCount(); ++i)
        count += e2e.served(i).count();
    return count;
}

} // namespace

/// Fewer readings than a batch takes: none has reached the recording when the station is ended.
void tst_SurvivesKill::readingsOfNoBatchAreThereAgain()
{
    E2eFixture e2e;
    e2e.addLogger();
    Killer killer(e2e);
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(shown) >= 5; }), station.lastWords());
    QVERIFY2(station.end(SIGKILL), station.lastWords());
    QVERIFY(killer.noteShown() >= 5);
    QCOMPARE(station.count(committed), 0);
    QCOMPARE(e2e.readingCount(), 0);
    QVERIFY(QFileInfo::exists(e2e.spool()));

    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(toldSaved) > 0; }), station.lastWords());
    QVERIFY2(e2e.waitUntil([&] { return station.count(uncleanEnd) == 1; }), station.lastWords());
    QCOMPARE(station.count(committed), 1);
    QVERIFY(e2e.readingCount() >= 5);
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY(!QFileInfo::exists(e2e.spool()));
    killer.noteShown();
    QCOMPARE(killer.miscounts(), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));

    // That was a clean end.
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(projectOpened) > 0; }), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QCOMPARE(station.count(journalHead), 1);
    QCOMPARE(station.count(uncleanEnd), 0);
}

void tst_SurvivesKill::everyReadingIsThereOnce_data()
{
    QTest::addColumn<int>("slowDiskMs");
    QTest::addColumn<int>("kills");
    QTest::newRow("this disk") << 0 << 8;
    QTest::newRow("slow disk") << 3000 << 3;
}

void tst_SurvivesKill::everyReadingIsThereOnce()
{
    QFETCH(int, slowDiskMs);
    QFETCH(int, kills);
    constexpr int longestRunMs = 6000;
    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator moments(seed);
    qInfo("the moments are those of seed %u", seed);

    E2eFixture e2e;
    for (int i = 0; i < 4; ++i)
        e2e.addLogger();
    e2e.setSlowDisk(slowDiskMs);
    Killer killer(e2e);
    for (int i = 0; i < kills; ++i)
        QVERIFY2(killer.killAfter(moments.bounded(longestRunMs), slowDiskMs > 0), e2e.station().lastWords());

    e2e.setSlowDisk(0);
    StationProcess &station = e2e.station();
    const int servedBefore = servedByAll(e2e);
    const int before = e2e.served(0).count();
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + 5); }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    // It does say all that it shows.
    QCOMPARE(killer.noteShown(), servedByAll(e2e) - servedBefore);
    QCOMPARE(killer.miscounts(), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    QVERIFY(!QFileInfo::exists(e2e.spool()));
}

QTEST_GUILESS_MAIN(tst_SurvivesKill)
#include "tst_SurvivesKill.moc"
