#include "Operator.h"

#include "journal/JournalPath.h"
#include "journal/JournalReader.h"
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

    /// One message to the operator, and an entry each in the journal.
    void whatHadWaitedIsToldAlong()
    {
        Operator op;
        QVERIFY(op.openProject(1, 600000));
        op.station->slotStartRecord();
        op.station->writeDevice();
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
        op.station->slotStopRecord();
        op.station.reset();
        QFile recording(op.fixture.recordingPath(op.name));
        QVERIFY(recording.resize(recording.size() - 4096));
        QFile waiting(recording.fileName() + QStringLiteral(".pending"));
        QVERIFY(waiting.open(QIODevice::WriteOnly));
        waiting.write("sorvanto-pending-rows 1 1\n1700000000 21.5 40 SN77\n");
        waiting.close();

        op.startStation();
        op.station->projectLoaded(op.projectPath());
        const QString kept = QStringLiteral("%1.dat.torn-1").arg(op.name);
        QCOMPARE(
            shownMessages(),
            QStringList{QStringLiteral("The recording was cut off in the middle of a write: 2 readings were saved, "
                                       "1 more had waited beside it, and the old file is kept as \"%1\".")
                            .arg(kept)});
        QCOMPARE(op.fixture.rows(op.name).size(), 3);
        op.close();

        QStringList told;
        readJournal(journalPath(recording.fileName()), [&told](const JournalEntry &entry) {
            if (entry.text(JournalEntry::Kind).startsWith(QLatin1String("rows-")))
                told << entry.text(JournalEntry::Kind) + ' ' + entry.text(JournalEntry::Value) + ' ' +
                            entry.text(JournalEntry::Text);
        });
        QCOMPARE(told, QStringList({"rows-salvaged 2 " + kept, "rows-replayed 1 "}));
    }
};

STATION_TEST_MAIN(tst_TornRecordingTold)
#include "tst_TornRecordingTold.moc"
