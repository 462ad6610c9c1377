#include "store/Recording.h"
#include "store/SpoolReplacement.h"

#include <QtTest>

/// A damaged spool gives way to one of what could be read of it, wherever the program ends meanwhile.
class tst_SpoolReplacement : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void replacesTheFile();
    void isFinishedOrBegunAnew_data();
    void isFinishedOrBegunAnew();
    void nothingToFinish();

private:
    QString spool() const { return m_recording->spool(); }
    QString aside() const { return spool() + ".damaged-1"; }
    bool damage() const;

    std::unique_ptr<Recording> m_recording;
    std::vector<PendingRow> m_rows;
};

namespace {

constexpr int rowCount = 5000;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

SpoolChange withRows(const std::vector<PendingRow> &rows)
{
    SpoolChange change;
    change.rows = rows;
    change.storedUpTo = 0;
    return change;
}

} // namespace

void tst_SpoolReplacement::init()
{
    m_recording = std::make_unique<Recording>();
    m_recording->open().reset();
    m_rows.clear();
    for (int i = 1; i <= rowCount; ++i) {
        m_rows.push_back(row("0200AA000001", 1700000000 + quint32(i)));
        m_rows.back().number = i;
    }
    QVERIFY(SpoolFile(spool()).write(withRows(m_rows)));
    QVERIFY(damage());
    m_rows = SpoolFile(spool()).read().rows;
    // A reader makes them and cannot remove them.
    QFile::remove(spool() + "-wal");
    QFile::remove(spool() + "-shm");
    QVERIFY(m_rows.size() > rowCount * 9 / 10 && m_rows.size() < rowCount);
}

void tst_SpoolReplacement::cleanup()
{
    m_recording.reset();
    emptyQueue();
}

/// A page in the middle of the file.
bool tst_SpoolReplacement::damage() const
{
    constexpr int pageSize = 4096;
    QFile file(spool());
    return file.open(QIODevice::ReadWrite) && file.seek(10 * pageSize) &&
           file.write(QByteArray(pageSize, 'x')) == pageSize;
}

void tst_SpoolReplacement::replacesTheFile()
{
    const QByteArray before = contentOf(spool());
    QString error;
    QCOMPARE(replaceSpool(spool(), withRows(m_rows), &error), aside());
    QCOMPARE(contentOf(aside()), before);
    const SpoolFile::Content content = SpoolFile(spool()).read();
    QCOMPARE(content.state, SpoolFile::State::Whole);
    QCOMPARE(content.rows.size(), m_rows.size());
    QCOMPARE(QDir(m_recording->folder()).entryList({"*.part*", "*.whole*"}, QDir::Files), QStringList());
}

void tst_SpoolReplacement::isFinishedOrBegunAnew_data()
{
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<bool>("isSetAside");
    QTest::addColumn<bool>("hasLog");
    QTest::newRow("before anything") << "" << false << false;
    QTest::newRow("the new file not whole") << ".part" << false << false;
    QTest::newRow("the new file whole") << ".whole" << false << false;
    QTest::newRow("the log set aside alone") << ".whole" << false << true;
    QTest::newRow("set aside, with nothing in the place") << ".whole" << true << false;
}

/// The folder as each step of the replacement leaves it.
void tst_SpoolReplacement::isFinishedOrBegunAnew()
{
    QFETCH(QString, replacement);
    QFETCH(bool, isSetAside);
    QFETCH(bool, hasLog);
    if (!replacement.isEmpty())
        QVERIFY(
            SpoolFile(spool() + replacement).write(withRows(replacement == ".whole" ? m_rows : decltype(m_rows)())));
    if (hasLog) {
        QFile log(aside() + "-wal");
        QVERIFY(log.open(QIODevice::WriteOnly));
    }
    if (isSetAside)
        QVERIFY(QFile::rename(spool(), aside()));

    const auto store = m_recording->open();
    QVERIFY(store);
    QVERIFY(QFile::exists(aside()));
    QCOMPARE(store->openingReport().rowsReplayed, int(m_rows.size()));
    QCOMPARE(store->openingReport().damagedSpool, aside());
    store->insertNow();
    QCOMPARE(m_recording->rows().size(), int(m_rows.size()));
    QCOMPARE(QDir(m_recording->folder()).entryList({"*.part*", "*.whole*"}, QDir::Files), QStringList());
}

void tst_SpoolReplacement::nothingToFinish()
{
    const QByteArray before = contentOf(spool());
    QCOMPARE(finishSpoolReplacement(spool()), QString());
    QCOMPARE(contentOf(spool()), before);
}

QTEST_GUILESS_MAIN(tst_SpoolReplacement)
#include "tst_SpoolReplacement.moc"
