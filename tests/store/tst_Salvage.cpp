#include "Recording.h"

#include "store/TornRecording.h"

#include <QDir>
#include <QFile>
#include <QTest>

/// What a long salvage does meanwhile. That everything is saved is tst_TornRecording's.
class tst_Salvage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void tellsHowFarItIs();
    void canBeGivenUp();
    void givenUpRecordingIsNotOpened();

private:
    QByteArray content() const;

    std::unique_ptr<Recording> m_recording;
};

namespace {

constexpr int rowCount = 100000;

} // namespace

void tst_Salvage::init()
{
    m_recording = std::make_unique<Recording>();
    m_recording->open().reset();
    {
        const OtherProgram other(m_recording->file());
        QVERIFY(other.exec(
            QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < %1) "
                           "insert into ostrivane (serialno, channel1, channel2, pointDate) "
                           "select 'A1', 21.5, 40, case when i % 3 then 1700000000 + i else 1600000000 - i end from n")
                .arg(rowCount)));
    }
    QFile file(m_recording->file());
    QVERIFY(file.resize(file.size() - 4096));
}

void tst_Salvage::cleanup()
{
    m_recording.reset();
    emptyQueue();
}

QByteArray tst_Salvage::content() const
{
    QFile file(m_recording->file());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Steadily to the end: nothing long follows the last report.
void tst_Salvage::tellsHowFarItIs()
{
    quint32 last = 0;
    quint32 longest = 0;
    quint32 all = 0;
    const auto store = std::make_unique<InsertSerialData>(m_recording->file(), QStringLiteral("test"));
    store->setSalvageProgress([&](quint32 done, quint32 pages) {
        longest = std::max(longest, done - last);
        last = done;
        all = pages;
        return true;
    });
    QVERIFY(store->createConnection());
    QVERIFY(all > 1000);
    QCOMPARE(longest, 256u);
    QVERIFY(all - last < 256);
    QCOMPARE(m_recording->integrity(), QStringLiteral("ok"));
    QVERIFY(store->openingReport().rowsSalvaged > rowCount * 9 / 10);
}

void tst_Salvage::canBeGivenUp()
{
    const QByteArray before = content();
    const TornRecording torn = replaceTornRecording(m_recording->file(), [](quint32, quint32) { return false; });
    QVERIFY(torn.isGivenUp);
    QCOMPARE(torn.file, QString());
    QCOMPARE(torn.rows, 0);
    QCOMPARE(content(), before);
    QCOMPARE(QDir(m_recording->folder()).entryList(QDir::Files), QStringList(QStringLiteral("Kitchen.dat")));
    QVERIFY(replaceTornRecording(m_recording->file()).rows > rowCount * 9 / 10);
}

void tst_Salvage::givenUpRecordingIsNotOpened()
{
    const QByteArray before = content();
    InsertSerialData store(m_recording->file(), QStringLiteral("test"));
    store.setSalvageProgress([](quint32, quint32) { return false; });
    QVERIFY(!store.createConnection());
    QVERIFY(!store.isOpen());
    QCOMPARE(content(), before);
}

QTEST_GUILESS_MAIN(tst_Salvage)
#include "tst_Salvage.moc"
