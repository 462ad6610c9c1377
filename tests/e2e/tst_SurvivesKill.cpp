#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QTest>

namespace {

const QString uncleanEnd = QStringLiteral("StationJournal : The station was not closed properly the last time");
const QString committed = QStringLiteral("commit transaction : true");

} // namespace

/// A station that is ended without a chance to say goodbye.
class tst_SurvivesKill : public QObject
{
    Q_OBJECT

private slots:
    void committedRowsStay();
};

void tst_SurvivesKill::committedRowsStay()
{
    E2eFixture e2e;
    for (int i = 0; i < 4; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 1; }), station.lastWords());
    QVERIFY2(station.end(SIGKILL), station.lastWords());
    QVERIFY(!station.hasSucceeded());

    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    const QList<RecordedRow> left = e2e.rows();
    QVERIFY(left.size() >= 2 * 16);
    // What waited for its batch is lost, and no more than that.
    int lost = -int(left.size());
    for (int i = 0; i < e2e.loggerCount(); ++i)
        lost += e2e.served(i).count();
    QVERIFY2(lost < 16 + e2e.loggerCount(), qPrintable(QString::number(lost)));

    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(uncleanEnd) > 0; }), station.lastWords());
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QCOMPARE(station.count(uncleanEnd), 1);
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
    QVERIFY(e2e.rows().size() >= left.size() + 16);

    // That was a clean end.
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QCOMPARE(station.count(uncleanEnd), 0);
}

QTEST_GUILESS_MAIN(tst_SurvivesKill)
#include "tst_SurvivesKill.moc"
