#include "JournalBench.h"

#include "journal/JournalFile.h"
#include "journal/JournalReader.h"

#include <QDir>
#include <QFile>
#include <QTest>

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void overwrite(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(path));
}

const QString setAsideKind = QStringLiteral("journal-set-aside");

} // namespace

/// How a journal is opened: after a clean end and another one, and when what lies there is no journal.
class tst_JournalFile : public QObject
{
    Q_OBJECT

private slots:
    void uncleanEnd_data()
    {
        QTest::addColumn<int>("last");
        QTest::addColumn<bool>("isUnclean");
        QTest::newRow("project closed") << int(JournalKind::ProjectClosed) << false;
        QTest::newRow("program ended") << int(JournalKind::ProgramEnded) << false;
        QTest::newRow("recording") << int(JournalKind::RecordingStarted) << true;
        QTest::newRow("stopped only") << int(JournalKind::RecordingStopped) << true;
    }

    void uncleanEnd()
    {
        QFETCH(int, last);
        QFETCH(bool, isUnclean);
        const JournalBench bench;
        JournalEvent end = eventOf(JournalKind(last));
        end.time = QDateTime::fromMSecsSinceEpoch(1800000000123, Qt::UTC);
        QVERIFY(bench.write({eventOf(JournalKind::ProjectOpened), end}));
        JournalFile file(bench.path(), QString());
        const JournalFile::Opening opening = file.open();
        QCOMPARE(opening.error, QString());
        QCOMPARE(opening.setAside, QString());
        QCOMPARE(opening.uncleanSince.isValid() ? opening.uncleanSince.toMSecsSinceEpoch() : 0,
                 isUnclean ? 1800000000123 : 0);
    }

    void newJournalIsNotUnclean()
    {
        const JournalBench bench;
        JournalFile file(bench.path(), QString());
        QVERIFY(!file.open().uncleanSince.isValid());
        QCOMPARE(file.entryCount(), qint64(0));
    }

    void tornOrForeignIsSetAside_data()
    {
        QTest::addColumn<QByteArray>("content");
        const JournalBench bench;
        if (!bench.write(everyKind() + everyKind() + everyKind() + everyKind() + everyKind() + everyKind()))
            qFatal("no journal");
        const QByteArray journal = contentOf(bench.path());
        QTest::newRow("cut") << journal.left(journal.size() - 4096);
        QTest::newRow("cut within a page") << journal.left(journal.size() - 100);
        QTest::newRow("zeros in the middle") << journal.left(8192) + QByteArray(4096, '\0') + journal.mid(8192 + 4096);
        QTest::newRow("no database") << QByteArray("somebody's notes\n").repeated(100);
        const JournalBench other;
        if (!other.run({"create table notes (text)"}))
            qFatal("no database");
        QTest::newRow("another's database") << contentOf(other.path());
    }

    void tornOrForeignIsSetAside()
    {
        QFETCH(QByteArray, content);
        const JournalBench bench;
        overwrite(bench.path(), content);
        overwrite(bench.path() + QStringLiteral(".torn-1"), "an earlier one");
        {
            JournalFile file(bench.path(), QString());
            const JournalFile::Opening opening = file.open();
            QCOMPARE(opening.error, QString());
            QCOMPARE(opening.setAside, bench.path() + QStringLiteral(".torn-2"));
            QVERIFY(!opening.uncleanSince.isValid());
            QVERIFY(file.append({eventOf(JournalKind::ProjectOpened)}));
        }
        QCOMPARE(contentOf(bench.path() + QStringLiteral(".torn-1")), QByteArray("an earlier one"));
        QCOMPARE(contentOf(bench.path() + QStringLiteral(".torn-2")), content);
        QCOMPARE(bench.kinds(), QStringList({setAsideKind, QStringLiteral("project-opened")}));
        QVERIFY(bench.entries().first().text(JournalEntry::Text).contains(QStringLiteral("Kitchen.events.torn-2")));
        QVERIFY(readJournal(bench.path()).isWhole());
    }

    /// Beside a new journal the log would be lost.
    void logIsSetAsideWithItsJournal()
    {
        const JournalBench bench;
        overwrite(bench.path(), QByteArray("somebody's notes\n").repeated(100));
        overwrite(bench.path() + QStringLiteral("-wal"), "log");
        overwrite(bench.path() + QStringLiteral(".torn-1-wal"), "an earlier one");
        JournalFile file(bench.path(), QString());
        const JournalFile::Opening opening = file.open();
        QCOMPARE(opening.setAside, bench.path() + QStringLiteral(".torn-2"));
        QCOMPARE(contentOf(opening.setAside + QStringLiteral("-wal")), QByteArray("log"));
        QCOMPARE(contentOf(bench.path() + QStringLiteral(".torn-1-wal")), QByteArray("an earlier one"));
    }

    /// It stays as it is, and so does the place where it was broken.
    void tamperedJournalIsContinued()
    {
        const JournalBench bench;
        QVERIFY(bench.write(everyKind()));
        QVERIFY(bench.run({"update entry set text = 'other' where id = 2"}));
        QVERIFY(bench.write({eventOf(JournalKind::ProjectClosed)}));
        const JournalVerdict verdict = readJournal(bench.path());
        QCOMPARE(verdict.brokenAt, qint64(2));
        QCOMPARE(verdict.entries, qint64(everyKind().size() + 1));
    }

    void emptyFileIsBegun()
    {
        const JournalBench bench;
        overwrite(bench.path(), {});
        QVERIFY(bench.write({eventOf(JournalKind::ProjectOpened)}));
        QCOMPARE(bench.kinds(), QStringList{"project-opened"});
    }

    void deletedWhileOpen()
    {
        const JournalBench bench;
        JournalFile file(bench.path(), QString());
        QCOMPARE(file.open().error, QString());
        QVERIFY(file.append({eventOf(JournalKind::ProjectOpened)}));
        const QByteArray head = file.head();
        QVERIFY(QFile::remove(bench.path()));
        QVERIFY(!file.append({eventOf(JournalKind::RecordingStarted)}));
        QVERIFY(!file.isOpen());
        QCOMPARE(file.open().error, QString());
        QVERIFY(file.append({eventOf(JournalKind::RecordingStarted)}));
        QCOMPARE(bench.kinds(), QStringList({setAsideKind, QStringLiteral("recording-started")}));
        QVERIFY(bench.entries().first().text(JournalEntry::Text).contains(QString::fromLatin1(head)));
    }

    void folderThatIsNone()
    {
        const JournalBench bench;
        JournalFile file(bench.folder() + QStringLiteral("/none/Kitchen.events"), QString());
        QVERIFY(!file.open().error.isEmpty());
        QVERIFY(!file.isOpen());
        QVERIFY(!file.open().error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_JournalFile)
#include "tst_JournalFile.moc"
