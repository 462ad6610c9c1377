#include "E2eFixture.h"
#include "RecordingReader.h"

#include <QFileInfo>
#include <QTest>

namespace {

const QString committed = QStringLiteral("commit transaction : true");
const QString toldInUse = QStringLiteral("SorvantoMain::slotWritingFailed : [ERROR] The recording is in use");
const QString toldRestored = QStringLiteral("SorvantoMain::slotWritingRestored");

} // namespace

/// Another program that reads the recording and does not let go of it.
class tst_BusyRecording : public QObject
{
    Q_OBJECT

private slots:
    void nothingIsLostNothingTwice();
    void endsWhileTheFileIsHeld();
};

void tst_BusyRecording::nothingIsLostNothingTwice()
{
    // As many rows wait as eight loggers have in a minute, more than go into one statement.
    constexpr int loggers = 40;
    constexpr int heldReadings = 14;

    E2eFixture e2e;
    for (int i = 0; i < loggers; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());

    RecordingReader reader(e2e.recordingFile());
    QVERIFY(reader.hold());
    const int commits = station.count(committed);
    const int before = e2e.served(0).count();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + heldReadings); }), station.lastWords());
    QCOMPARE(station.count(committed), commits);
    QCOMPARE(station.count(toldInUse), 1);
    QCOMPARE(station.count(toldRestored), 0);

    reader.letGo();
    QVERIFY2(e2e.waitUntil([&] { return station.count(toldRestored) > 0; }), station.lastWords());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + heldReadings + 2); }), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QCOMPARE(e2e.differences(), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
}

/// What cannot be written at the end waits beside the recording for the next start.
void tst_BusyRecording::endsWhileTheFileIsHeld()
{
    E2eFixture e2e;
    for (int i = 0; i < 6; ++i)
        e2e.addLogger();
    QVERIFY2(e2e.start(), e2e.startError());
    StationProcess &station = e2e.station();
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());

    RecordingReader reader(e2e.recordingFile());
    QVERIFY(reader.hold());
    const int before = e2e.served(0).count();
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(before + 4); }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QVERIFY(QFileInfo::exists(e2e.spool()));
    QVERIFY(!e2e.differences().isEmpty());
    reader.letGo();

    e2e.setFaults(QStringLiteral("none"));
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return station.count(committed) > 0; }), station.lastWords());
    QVERIFY2(e2e.fallSilent(), station.lastWords());
    QVERIFY2(station.end(), station.lastWords());
    QVERIFY2(station.hasSucceeded(), station.lastWords());
    QVERIFY(!QFileInfo::exists(e2e.spool()));
    QCOMPARE(e2e.differences(false), QByteArray());
    QCOMPARE(e2e.integrity(), QStringLiteral("ok"));
}

QTEST_GUILESS_MAIN(tst_BusyRecording)
#include "tst_BusyRecording.moc"
