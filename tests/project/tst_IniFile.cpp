#include "project/IniFile.h"
#include "support/WriteObstacles.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

class tst_IniFile : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void makesAFile();
    void setsOneOfSeveral();
    void needsAFolder();
    void replacesAFileOrLeavesIt();
    void isCompleteWhereverTheDiskEnds();
    void versionsNeverShareATime();

private:
    QByteArray content() const;
    void writeContent(const QByteArray &bytes) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

void tst_IniFile::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(QStringLiteral("settings"));
}

QByteArray tst_IniFile::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void tst_IniFile::writeContent(const QByteArray &bytes) const
{
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

void tst_IniFile::makesAFile()
{
    QVERIFY(rewriteIniFile(m_path, {{"a", IniValue::fromNumber(1)}, {"group/b", IniValue::fromText("x")}}));
    QCOMPARE(content(), QByteArray("[General]\na=1\n\n[group]\nb=x\n"));
}

void tst_IniFile::setsOneOfSeveral()
{
    writeContent("[General]\na=1\nb=2\nc=3\n");
    QVERIFY(rewriteIniFile(m_path, {{"b", IniValue::fromText("two")}}));
    QCOMPARE(content(), QByteArray("[General]\na=1\nb=two\nc=3\n"));
}

void tst_IniFile::needsAFolder()
{
    const QString folder = m_folder->filePath(QStringLiteral("none"));
    QVERIFY(!rewriteIniFile(folder + QStringLiteral("/settings"), {{"a", IniValue::fromNumber(1)}}));
    QVERIFY(!QFileInfo::exists(folder));
    QVERIFY(!rewriteIniFile(m_folder->path(), {{"a", IniValue::fromNumber(1)}}));
}

void tst_IniFile::replacesAFileOrLeavesIt()
{
    const QByteArray large(5000, 'x');
    writeContent("old");
    {
        const FullDisk full(4096);
        QVERIFY(!replaceFile(m_path, large));
    }
    QCOMPARE(content(), QByteArray("old"));
    QVERIFY(replaceFile(m_path, large));
    QCOMPARE(content(), large);
    QVERIFY(replaceFile(m_path, {}));
    QCOMPARE(content(), QByteArray());
}

/// A text that is cut at the end of a line can be read like a complete one.
void tst_IniFile::isCompleteWhereverTheDiskEnds()
{
    const QByteArray old = "[General]\nold=1\n";
    IniValues values;
    for (int i = 10; i < 40; ++i)
        values.append({QStringLiteral("key%1").arg(i), IniValue::fromText(QString(i, QLatin1Char('x')))});
    values.append({QStringLiteral("later/list"), IniValue::fromTexts({"a", "b"})});
    QVERIFY(rewriteIniFile(m_path, values));
    values.append({QStringLiteral("old"), IniValue::fromNumber(1)});
    const int complete = content().size() + int(qstrlen("old=1\n"));

    int done = 0;
    for (int limit = 300; limit <= complete + 1; ++limit) {
        writeContent(old);
        const bool ok = [&] {
            const FullDisk full(static_cast<rlim_t>(limit));
            return rewriteIniFile(m_path, values);
        }();
        QCOMPARE(ok, limit >= complete);
        QCOMPARE(content().size(), ok ? complete : old.size());
        done += ok;
    }
    QCOMPARE(done, 2);
}

void tst_IniFile::versionsNeverShareATime()
{
    QVERIFY(replaceFile(m_path, "0"));
    QDateTime newest = QFileInfo(m_path).lastModified();
    for (int i = 0; i < 50; ++i) {
        QVERIFY(replaceFile(m_path, "1"));
        const QDateTime time = QFileInfo(m_path).lastModified();
        QVERIFY(time > newest);
        newest = time;
    }
}

QTEST_GUILESS_MAIN(tst_IniFile)
#include "tst_IniFile.moc"
