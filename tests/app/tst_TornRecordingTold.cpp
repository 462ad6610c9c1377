#include "Operator.h"

#include "store/InsertSerialData.h"

/// A station that was killed in the middle of a write, started again.
class tst_TornRecordingTold : public QObject
{
    Q_OBJECT

private slots:
    void operatorIsToldWhatWasSaved()
    {
        Operator op;
        QVERIFY(op.openProject(1, 600000));
        op.station->slotStartRecord();
        op.station->writeDevice();
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
        op.station->slotStopRecord();
        QCOMPARE(op.fixture.rows(op.name).size(), 2);
        op.station.reset();
        QFile recording(op.fixture.recordingPath(op.name));
        QVERIFY(recording.resize(recording.size() - 4096));

        op.startStation();
        op.station->projectLoaded(op.projectPath());
        QCOMPARE(
            shownMessages(),
            QStringList{QStringLiteral("The recording was cut off in the middle of a write: 2 readings were saved, "
                                       "and the old file is kept as \"%1.dat.torn-1\".")
                            .arg(op.name)});
        QCOMPARE(op.fixture.rows(op.name).size(), 2);
        QVERIFY(child<QAbstractButton>(*op.project(), "btn_record")->isEnabled());
        op.close();
    }
};

STATION_TEST_MAIN(tst_TornRecordingTold)
#include "tst_TornRecordingTold.moc"
