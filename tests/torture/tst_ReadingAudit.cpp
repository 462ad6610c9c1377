#include "ReadingAudit.h"
#include "ServedReadings.h"

#include <QDateTime>
#include <QTest>

namespace {

const QString one = QStringLiteral("020001000001");
const QString other = QStringLiteral("020001000002");

RecordedRow row(const QString &key, double channel1, double channel2, qint64 secondsAgo = 0)
{
    return {key, channel1, channel2, quint32(QDateTime::currentSecsSinceEpoch() - secondsAgo)};
}

} // namespace

/// Finds what was planted.
class tst_ReadingAudit : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void everythingIsThere();
    void lostReading();
    void lostReadingOfTwoAlike();
    void equalReadingsOfTwoRoundsMayBeOne();
    void doubledReading();
    void readingUnderAForeignKey();
    void readingOfNobody();
    void readingOfAnotherTime();
    void excusedReadingMayBeThereOrNot();

private:
    std::unique_ptr<ServedReadings> m_one;
    std::unique_ptr<ServedReadings> m_other;
    std::unique_ptr<ReadingAudit> m_audit;
    QList<RecordedRow> m_rows;
};

void tst_ReadingAudit::init()
{
    m_one = std::make_unique<ServedReadings>(one);
    m_other = std::make_unique<ServedReadings>(other);
    m_audit = std::make_unique<ReadingAudit>();
    m_audit->follow(*m_one);
    m_audit->follow(*m_other);
    m_audit->beginRound();
    m_one->append("21.50,45.10");
    m_one->append("21.51,----");
    m_other->append("4.00,70.00");
    m_rows = {row(one, 21.5, 45.1), row(one, 21.51, 0), row(other, 4, 70)};
    m_rows[1].channel2 = QVariant();
}

void tst_ReadingAudit::everythingIsThere()
{
    const ReadingAudit::Verdict verdict = m_audit->judge(m_rows);
    QCOMPARE(verdict.served, 3);
    QCOMPARE(verdict.shown, 3);
    QCOMPARE(verdict.recorded, 3);
    QCOMPARE(verdict.lost + verdict.doubled + verdict.foreign, QStringList());
}

void tst_ReadingAudit::lostReading()
{
    m_rows.removeAt(1);
    const ReadingAudit::Verdict verdict = m_audit->judge(m_rows);
    QCOMPARE(verdict.lost, QStringList{QStringLiteral("020001000001 [21.51 NULL]: number 2 of 2 of round 1")});
    QCOMPARE(verdict.doubled + verdict.foreign, QStringList());
}

void tst_ReadingAudit::lostReadingOfTwoAlike()
{
    m_one->append("21.50,45.10");
    QCOMPARE(m_audit->judge(m_rows).lost.size(), 1);
}

void tst_ReadingAudit::equalReadingsOfTwoRoundsMayBeOne()
{
    m_audit->beginRound();
    m_one->append("21.50,45.10");
    QCOMPARE(m_audit->judge(m_rows).lost, QStringList());
    m_rows.removeFirst();
    QCOMPARE(m_audit->judge(m_rows).lost.size(), 1);
}

void tst_ReadingAudit::doubledReading()
{
    m_rows.append(m_rows.first());
    const ReadingAudit::Verdict verdict = m_audit->judge(m_rows);
    QCOMPARE(verdict.doubled.size(), 1);
    QVERIFY(verdict.doubled.first().startsWith(one));
    QCOMPARE(verdict.lost + verdict.foreign, QStringList());
}

void tst_ReadingAudit::readingUnderAForeignKey()
{
    m_rows.first().serial = other;
    const ReadingAudit::Verdict verdict = m_audit->judge(m_rows);
    QCOMPARE(verdict.lost.size(), 1);
    QCOMPARE(verdict.foreign.size(), 1);
    QVERIFY(verdict.foreign.first().startsWith(other));
}

void tst_ReadingAudit::readingOfNobody()
{
    m_rows.append(row(QStringLiteral("020001000003"), 1, 2));
    QCOMPARE(m_audit->judge(m_rows).foreign.size(), 1);
}

void tst_ReadingAudit::readingOfAnotherTime()
{
    m_rows.first().time -= 60;
    const ReadingAudit::Verdict verdict = m_audit->judge(m_rows);
    QCOMPARE(verdict.lost.size(), 1);
    QCOMPARE(verdict.doubled.size(), 1);
}

void tst_ReadingAudit::excusedReadingMayBeThereOrNot()
{
    m_audit->excuseUnless(0, [](int reading) { return reading == 0; });
    QCOMPARE(m_audit->judge(m_rows).shown, 2);
    QCOMPARE(m_audit->judge(m_rows).doubled, QStringList());
    m_rows.removeAt(1);
    QCOMPARE(m_audit->judge(m_rows).lost, QStringList());
    m_rows.removeFirst();
    QCOMPARE(m_audit->judge(m_rows).lost.size(), 1);
}

QTEST_GUILESS_MAIN(tst_ReadingAudit)
#include "tst_ReadingAudit.moc"
