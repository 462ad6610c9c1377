#include "store/PendingRowFile.h"

#include "store/Recording.h"

#include <QtTest>

#include <cmath>
#include <limits>

class tst_PendingRowFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void liesBesideTheRecording();
    void absentFileIsEmptyAndSound();
    void rowsComeBackExactly_data();
    void rowsComeBackExactly();
    void orderStays();
    void damageCostsNoReadableRow_data();
    void damageCostsNoReadableRow();
    void setAsideNeverReplaces();

private:
    QByteArray content() const;
    void setContent(const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PendingRowFile> m_file;
};

namespace {

std::vector<PendingRow> threeRows()
{
    return {{QStringLiteral("A1"), 21.5, noValue, 1700000000},
            {QStringLiteral("B2"), 3, 4, 1700000001},
            {QStringLiteral("C3"), -7.25, 0, 1700000002}};
}

QStringList serials(const std::vector<PendingRow> &rows)
{
    QStringList names;
    for (const PendingRow &row : rows)
        names << row.serial;
    return names;
}

bool same(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

void tst_PendingRowFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_file = std::make_unique<PendingRowFile>(m_folder->filePath("Kitchen.dat"));
}

QByteArray tst_PendingRowFile::content() const
{
    QFile file(m_file->path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_PendingRowFile::setContent(const QByteArray &bytes) const
{
    QFile file(m_file->path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_PendingRowFile::liesBesideTheRecording()
{
    QCOMPARE(m_file->path(), m_folder->filePath("Kitchen.dat.pending"));
}

void tst_PendingRowFile::absentFileIsEmptyAndSound()
{
    QVERIFY(!m_file->exists());
    QVERIFY(m_file->read().rows.empty());
    QVERIFY(!m_file->read().damaged);
}

void tst_PendingRowFile::rowsComeBackExactly_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<double>("value");
    QTest::addColumn<quint32>("time");

    QTest::newRow("plain") << "A1" << 21.5 << 1700000000u;
    QTest::newRow("no value") << "A1" << noValue << 1u;
    QTest::newRow("all digits") << "A1" << 0.1 + 0.2 << 0u;
    QTest::newRow("smallest") << "A1" << std::numeric_limits<double>::denorm_min() << 4294967295u;
    QTest::newRow("not a number") << "A1" << std::numeric_limits<double>::quiet_NaN() << 1u;
    QTest::newRow("infinity") << "A1" << -std::numeric_limits<double>::infinity() << 1u;
    QTest::newRow("empty key") << "" << 1.0 << 1u;
    QTest::newRow("blanks and line ends") << " a\tb\r\nc %20 " << 1.0 << 1u;
    QTest::newRow("quotes") << "'); drop table ostrivane;--" << 1.0 << 1u;
    QTest::newRow("zero byte") << QString(QChar(0)) + "B" << 1.0 << 1u;
    QTest::newRow("beyond ASCII") << QString::fromUtf8("K\xc3\xbchlraum \xf0\x9f\x8c\xa1") << 1.0 << 1u;
}

void tst_PendingRowFile::rowsComeBackExactly()
{
    QFETCH(QString, serial);
    QFETCH(double, value);
    QFETCH(quint32, time);

    QVERIFY(Recording::writeSideFile(m_file->path(), {{serial, value, 0.25, time}, {serial, -1, value, time}}));
    const PendingRowFile::Content content = m_file->read();

    QVERIFY(!content.damaged);
    QCOMPARE(content.rows.size(), size_t(2));
    QCOMPARE(content.rows[0].serial, serial);
    QVERIFY(same(content.rows[0].channel1, value));
    QVERIFY(same(content.rows[0].channel2, 0.25));
    QCOMPARE(content.rows[0].time, time);
    QVERIFY(same(content.rows[1].channel2, value));
}

void tst_PendingRowFile::orderStays()
{
    QVERIFY(Recording::writeSideFile(m_file->path(), threeRows()));
    QCOMPARE(serials(m_file->read().rows), QStringList({"A1", "B2", "C3"}));
}

void tst_PendingRowFile::damageCostsNoReadableRow_data()
{
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QStringList>("left");

    const QByteArray second = "1700000001 3 4 B2\n";
    const QStringList all{"A1", "B2", "C3"};
    const QStringList without{"A1", "C3"};
    QTest::newRow("row gone") << second << QByteArray() << without;
    QTest::newRow("garbled time") << second << QByteArray("17000x0001 3 4 B2\n") << without;
    QTest::newRow("time too large") << second << QByteArray("4294967296 3 4 B2\n") << without;
    QTest::newRow("garbled value") << second << QByteArray("1700000001 3,5 4 B2\n") << without;
    QTest::newRow("field missing") << second << QByteArray("1700000001 3 4\n") << without;
    QTest::newRow("binary") << second << QByteArray("\0\xff\n", 3) << without;
    QTest::newRow("empty line") << second << QByteArray("\n") << without;
    QTest::newRow("a row twice") << second << second + second << QStringList({"A1", "B2", "B2", "C3"});
    QTest::newRow("cut off in the last row") << QByteArray(" C3\n") << QByteArray(" C") << QStringList({"A1", "B2"});
    QTest::newRow("header gone") << QByteArray("sorvanto-pending-rows 1 3\n") << QByteArray() << all;
    QTest::newRow("header garbled") << QByteArray("rows 1 3\n") << QByteArray("rxws 1 3\n") << all;
    QTest::newRow("wrong number") << QByteArray("rows 1 3\n") << QByteArray("rows 1 4\n") << all;
}

void tst_PendingRowFile::damageCostsNoReadableRow()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QStringList, left);
    QVERIFY(Recording::writeSideFile(m_file->path(), threeRows()));
    QByteArray bytes = content();
    QVERIFY(bytes.contains(from));
    setContent(bytes.replace(from, to));

    const PendingRowFile::Content read = m_file->read();

    QVERIFY(read.damaged);
    QCOMPARE(serials(read.rows), left);
}

void tst_PendingRowFile::setAsideNeverReplaces()
{
    setContent("one");
    const QString first = m_file->setAside();
    setContent("two");
    const QString second = m_file->setAside();

    QVERIFY(!m_file->exists());
    QVERIFY(first != second);
    QFile file(first);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("one"));
    QVERIFY(QFile::exists(second));
    QVERIFY(m_file->setAside().isEmpty());
}

QTEST_GUILESS_MAIN(tst_PendingRowFile)
#include "tst_PendingRowFile.moc"
