#include "Operator.h"

#include "journal/JournalPath.h"
#include "journal/JournalReader.h"
#include "store/InsertSerialData.h"

#include <QProgressDialog>
#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

class BoxWatch : public QObject
{
public:
    BoxWatch() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        m_wasShown = m_wasShown || (event->type() == QEvent::Show && qobject_cast<QProgressDialog *>(watched));
        return false;
    }
    bool wasShown() const { return m_wasShown; }

private:
    bool m_wasShown = false;
};

} // namespace

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

    void progressIsShownOnTheSplash()
    {
        Operator op;
        makeLongTornRecording(op);
        QStringList texts;
        const SorvantoMain station({true, op.projectPath(), [] { return false; },
                                    [&texts](const QString &text) {
                                        texts << text;
                                    }});
        QVERIFY2(texts.size() >= 2, qPrintable(texts.join('|')));
        for (const QString &text : texts)
            QVERIFY2(text.startsWith(QStringLiteral("The recording was cut off. Saving its readings... ")),
                     qPrintable(text));
        QVERIFY(station.isProjectOpen());
    }

    void progressIsShownInABox()
    {
        Operator op;
        makeLongTornRecording(op);
        op.startStation();
        const BoxWatch watch;
        op.station->projectLoaded(op.projectPath());
        QVERIFY(watch.wasShown());
        QCOMPARE(op.station->findChildren<QProgressDialog *>().size(), 0);
        QVERIFY(op.station->isProjectOpen());
    }

    void theProgramCanEndMeanwhile()
    {
        Operator op;
        makeLongTornRecording(op);
        QFile recording(op.fixture.recordingPath(op.name));
        QVERIFY(recording.open(QIODevice::ReadOnly));
        const QByteArray before = recording.readAll();
        bool isBegun = false;
        {
            const SorvantoMain station({true, op.projectPath(), [&isBegun] { return isBegun; },
                                        [&isBegun](const QString &) {
                                            isBegun = true;
                                        }});
            QVERIFY(station.isEnding());
        }
        recording.seek(0);
        QCOMPARE(recording.readAll(), before);
        QVERIFY(!QFile::exists(recording.fileName() + QStringLiteral(".torn-1")));
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

        const auto told = [&recording] {
            QStringList entries;
            readJournal(journalPath(recording.fileName()), [&entries](const JournalEntry &entry) {
                if (entry.text(JournalEntry::Kind).startsWith(QLatin1String("rows-")))
                    entries << entry.text(JournalEntry::Kind) + ' ' + entry.text(JournalEntry::Value) + ' ' +
                                   entry.text(JournalEntry::Text);
            });
            return entries;
        };
        QTRY_COMPARE(told(), QStringList({"rows-salvaged 2 " + kept, "rows-replayed 1 "}));
    }

private:
    static void makeLongTornRecording(Operator &op)
    {
        op.fixture.writeProject(op.name, {op.fixture.addLogger()}, 600000);
        const QString path = op.fixture.recordingPath(op.name);
        InsertSerialData(path, QStringLiteral("made")).createConnection();
        const QString connection = QStringLiteral("filled");
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
            database.setDatabaseName(path);
            QSqlQuery fill(database.open() ? database : QSqlDatabase());
            if (!fill.exec(
                    QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < 60000) "
                                   "insert into ostrivane (serialno, channel1, channel2, pointDate) "
                                   "select 'A1', 21.5, 40, 1700000000 + i from n")))
                qFatal("no rows");
        }
        QSqlDatabase::removeDatabase(connection);
        QFile recording(path);
        if (!recording.resize(recording.size() - 4096))
            qFatal("cannot be cut off");
    }
};

STATION_TEST_MAIN(tst_TornRecordingTold)
#include "tst_TornRecordingTold.moc"
