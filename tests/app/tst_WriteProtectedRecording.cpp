#include "Operator.h"

#include "store/InsertSerialData.h"

namespace {

const QString reason =
    QStringLiteral("The recording is write-protected. It can be looked at, but nothing can be recorded.");

} // namespace

/// A recording that was archived, or lies on a share that takes nothing: it is there for looking.
class tst_WriteProtectedRecording : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_op = std::make_unique<Operator>();
        QVERIFY(m_op->openProject(1, 600000));
        m_op->station->slotStartRecord();
        m_op->station->writeDevice();
        QTRY_COMPARE(InsertSerialData::pendingCount(), 1);
        m_op->station->slotStopRecord();
        m_rows = int(m_op->fixture.rows(m_op->name).size());
        QCOMPARE(m_rows, 2);
        m_start = recordBar("label_record_starttime");
        m_end = recordBar("label_record_endtime");
        m_op->station.reset();
        QVERIFY(setWritable(false));
    }

    void cleanup() { m_op.reset(); }

    void opensForLooking_data()
    {
        QTest::addColumn<bool>("autoRecord");
        QTest::newRow("by hand") << false;
        QTest::newRow("recording by itself") << true;
    }

    void opensForLooking()
    {
        QFETCH(bool, autoRecord);
        m_op->fixture.listProject(m_op->name, true, autoRecord);
        m_op->startStation();
        QVERIFY(m_op->station->isProjectOpen());
        QVERIFY(!m_op->station->isEnding());
        QVERIFY(!m_op->station->isRecording());
        QCOMPARE(shownMessages(), QStringList{reason});
        QVERIFY(!recordButton()->isEnabled());
        QVERIFY(recordButton()->toolTip().contains(reason));
        QCOMPARE(recordBar("label_record_starttime"), m_start);
        QCOMPARE(recordBar("label_record_endtime"), m_end);
        QTRY_VERIFY(m_op->station->configuredDevices().first()->isConnected());
    }

    void nothingStartsARecording()
    {
        m_op->startStation();
        m_op->station->projectLoaded(m_op->projectPath());
        m_op->station->slotStartRecord();
        QVERIFY(!m_op->station->isRecording());
        QVERIFY(!m_op->station->configuredDevices().first()->isRecording());
        m_op->station->writeDevice();
        QTRY_VERIFY(m_op->station->configuredDevices().first()->isConnected());
        m_op->close();
        QCOMPARE(m_op->fixture.rows(m_op->name).size(), m_rows);
        QCOMPARE(InsertSerialData::pendingCount(), 0);
    }

    void recordsAgainOnceItIsWritable()
    {
        QVERIFY(setWritable(true));
        m_op->startStation();
        m_op->station->projectLoaded(m_op->projectPath());
        QVERIFY(recordButton()->isEnabled());
        recordButton()->click();
        QVERIFY(m_op->station->isRecording());
        QCOMPARE(shownMessages(), QStringList());
    }

private:
    bool setWritable(bool on) const
    {
        const QString recording = m_op->fixture.recordingPath(m_op->name);
        return QFile::setPermissions(recording, on ? QFile::ReadOwner | QFile::WriteOwner : QFile::ReadOwner);
    }
    QAbstractButton *recordButton() const { return child<QAbstractButton>(*m_op->project(), "btn_record"); }
    QString recordBar(const char *label) const { return child<QLabel>(*m_op->project(), label)->text(); }

    std::unique_ptr<Operator> m_op;
    int m_rows = 0;
    QString m_start;
    QString m_end;
};

STATION_TEST_MAIN(tst_WriteProtectedRecording)
#include "tst_WriteProtectedRecording.moc"
