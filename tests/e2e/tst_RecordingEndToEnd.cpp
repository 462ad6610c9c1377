#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTest>

#include <algorithm>

namespace {

const QString committed = QStringLiteral("commit transaction : true");

/// Rows in each statement that was written before the recording was asked to stop.
QList<int> batchesWhileRecording(const QStringList &lines)
{
    QList<int> batches;
    for (const QString &line : lines) {
        if (line.startsWith(QLatin1String("SorvantoMain::slotStopRecord")))
            break;
        if (line.startsWith(QLatin1String("InsertSerialData::insertNow : query : ")))
            batches.append(1 + line.count(QLatin1String(" union ")));
    }
    return batches;
}

/// Whether so many rows are what some number of whole batches comes to.
bool areWholeBatches(int rows, const QList<int> &batches)
{
    int sum = 0;
    for (int batch : batches) {
        if (sum == rows)
            break;
        sum += batch;
    }
    return sum == rows;
}

QString localTime(quint32 unixSeconds)
{
    return QDateTime::fromSecsSinceEpoch(unixSeconds).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

} // namespace

/// What loggers serve over real sockets arrives in the file of a station that was told by its settings alone to load
/// the project and to record.
class tst_RecordingEndToEnd : public QObject
{
    Q_OBJECT

private slots:
    void fourLoggers();
    void oneLogger();
    void everyLoggerOfAFullStation();

private:
    void verifyEnd(E2eFixture &e2e);
    void verifyClosedSeries(const QString &serial, const QList<RecordedRow> &rows);
};

void tst_RecordingEndToEnd::fourLoggers()
{
    E2eFixture e2e;
    for (int i = 0; i < 4; ++i)
        e2e.addLogger();
    // Seven digits before the point and two behind it, of which six are kept.
    e2e.logger(3).curve().shift({123456789, 0});
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();

    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    const int early = e2e.readingCount();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(8); }), station.lastWords());
    e2e.setFault(1, QStringLiteral("dashes:1"));
    e2e.setFault(2, QStringLiteral("dashes:2"));
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(14); }), station.lastWords());
    e2e.setFault(1, QStringLiteral("none"));
    e2e.setFault(2, QStringLiteral("none"));
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(20); }), station.lastWords());
    verifyEnd(e2e);
    if (QTest::currentTestFailed())
        return;

    const QList<int> batches = batchesWhileRecording(station.lines());
    QVERIFY2(areWholeBatches(early, batches), qPrintable(QString::number(early)));
    QVERIFY(batches.size() >= 3);
    QVERIFY(*std::min_element(batches.cbegin(), batches.cend()) >= 16);

    const QList<RecordedRow> rows = e2e.rows();
    const auto hasHole = [&rows](const QString &serial, const QVariant RecordedRow::*channel) {
        const QList<RecordedRow> readings = readingsOf(serial, rows);
        return std::count_if(readings.cbegin(), readings.cend(),
                             [channel](const RecordedRow &row) { return (row.*channel).isNull(); }) >= 3;
    };
    QVERIFY(hasHole(e2e.served(1).serial(), &RecordedRow::channel1));
    QVERIFY(hasHole(e2e.served(2).serial(), &RecordedRow::channel2));
    QCOMPARE(readingsOf(e2e.served(3).serial(), rows).first().channel1.toDouble(), 1234590.0);
}

void tst_RecordingEndToEnd::oneLogger()
{
    E2eFixture e2e;
    e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    const int early = e2e.readingCount();
    verifyEnd(e2e);
    if (QTest::currentTestFailed())
        return;

    const QList<int> batches = batchesWhileRecording(station.lines());
    QCOMPARE(early, batches.first());
    QVERIFY2(early >= 8 && early < 16, qPrintable(QString::number(early)));
}

/// As many loggers as a project holds, on all four dashboards.
void tst_RecordingEndToEnd::everyLoggerOfAFullStation()
{
    constexpr int loggers = 64;
    E2eFixture e2e;
    for (int i = 0; i < loggers; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(8); }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());

    int served = 0;
    for (int i = 0; i < loggers; ++i)
        served += e2e.served(i).count();
    QCOMPARE(e2e.readingCount(), served);
    QCOMPARE(e2e.differences(false), QByteArray());
}

/// Ends the station and looks at what every recording must have when it is over.
void tst_RecordingEndToEnd::verifyEnd(E2eFixture &e2e)
{
    QVERIFY2(e2e.station().end(), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());
    QCOMPARE(e2e.differences(), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));

    const QList<RecordedRow> rows = e2e.rows();
    for (int i = 0; i < e2e.loggerCount(); ++i)
        verifyClosedSeries(e2e.served(i).serial(), rows);
    QCOMPARE(rows.size(), e2e.readingCount() + e2e.loggerCount());
    QCOMPARE(e2e.projectValue(QStringLiteral("record_start_time")), localTime(rows.first().time));
    QCOMPARE(e2e.projectValue(QStringLiteral("record_stop_time")), localTime(rows.last().time));
    QVERIFY(!QFileInfo::exists(e2e.spool()));
}

/// The series ends with one row without values, one second after its last reading.
void tst_RecordingEndToEnd::verifyClosedSeries(const QString &serial, const QList<RecordedRow> &rows)
{
    QList<RecordedRow> gaps;
    std::copy_if(rows.cbegin(), rows.cend(), std::back_inserter(gaps),
                 [&serial](const RecordedRow &row) { return row.serial == serial && row.isGap(); });
    QCOMPARE(gaps.size(), 1);
    QCOMPARE(gaps.first().time, readingsOf(serial, rows).last().time + 1);
}

QTEST_GUILESS_MAIN(tst_RecordingEndToEnd)
#include "tst_RecordingEndToEnd.moc"
