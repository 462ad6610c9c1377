#include "JournalBench.h"

#include "journal/JournalReader.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QTest>
#include <limits>

#include <sys/mount.h>

namespace {

const QString empty = QString();

/// Everything that could be changed on its way into the file, or be mistaken for something else.
QList<JournalEvent> hardEvents()
{
    QList<JournalEvent> events;
    for (const QString &text :
         {empty, QStringLiteral("-"), QStringLiteral("|"), QStringLiteral("it's \"so\""),
          QString::fromUtf8("Kühlraum °C"),
          QString(QChar(QChar::Null)) + QStringLiteral("x") + QString(QChar(QChar::Null)), QStringLiteral("\n'; drop"),
          QString(QChar(0xfeff)) + QStringLiteral("mark"), QString(QChar(0xfffe)), QString(QChar(0xd800)),
          QString::fromUtf8("\xf0\x9f\x8c\xa1"), QString(100000, QLatin1Char('a'))})
        events.append(eventOf(JournalKind::NameChanged, text));
    using Limits = std::numeric_limits<double>;
    for (const double number : {0.0, -0.0, 0.1, 21.6, -18.0, Limits::max(), Limits::lowest(), Limits::min(),
                                Limits::denorm_min(), 1e300, 123456789.123456789, Limits::infinity()}) {
        JournalEvent alarm{JournalKind::AlarmBegan};
        alarm.channel = 1;
        alarm.value = number;
        events.append(alarm);
    }
    return events;
}

JournalVerdict verdictOf(const JournalBench &bench)
{
    return readJournal(bench.path());
}

} // namespace

/// The chain of a journal: that it holds for everything that can be written, and for nothing that was changed since.
class tst_JournalChain : public QObject
{
    Q_OBJECT

private slots:
    void everyKindIsChained()
    {
        const JournalBench bench;
        QVERIFY(bench.write(everyKind()));
        const JournalVerdict verdict = verdictOf(bench);
        QVERIFY2(verdict.isWhole(), qPrintable(verdict.reason));
        QCOMPARE(verdict.entries, qint64(everyKind().size()));
        const QStringList kinds = bench.kinds();
        QCOMPARE(QSet<QString>(kinds.cbegin(), kinds.cend()).size(), everyKind().size());
        QVERIFY(!kinds.contains(QString()));
        QCOMPARE(verdict.head, bench.entries().last().hash);
    }

    void goesOnWhereItEnded()
    {
        const JournalBench bench;
        QVERIFY(bench.write({eventOf(JournalKind::ProjectOpened)}));
        QVERIFY(bench.write({eventOf(JournalKind::ProjectClosed)}));
        QVERIFY(verdictOf(bench).isWhole());
        QCOMPARE(verdictOf(bench).entries, qint64(2));
    }

    void hardTextsAndNumbersComeBack()
    {
        const JournalBench bench;
        const QList<JournalEvent> events = hardEvents();
        QVERIFY(bench.write(events));
        const JournalVerdict verdict = verdictOf(bench);
        QVERIFY2(verdict.isWhole(), qPrintable(QString::number(verdict.brokenAt)));
        const QList<JournalEntry> entries = bench.entries();
        QCOMPARE(entries.size(), events.size());
        for (int i = 0; i < entries.size(); ++i) {
            QCOMPARE(entries[i].has(JournalEntry::Text), events[i].text.has_value());
            if (events[i].text)
                QCOMPARE(entries[i].fields[JournalEntry::Text], events[i].text->toUtf8());
            if (events[i].value)
                QCOMPARE(entries[i].fields[JournalEntry::Value].toDouble(), *events[i].value);
        }
    }

    /// An absent text is not an empty one, nor the sign that stands for it.
    void canonicalForm_data()
    {
        QTest::addColumn<bool>("isPresent");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("form");
        QTest::newRow("absent") << false << QString() << QByteArray("-");
        QTest::newRow("empty") << true << QString() << QByteArray();
        QTest::newRow("dash") << true << "-" << QByteArray("2D");
        QTest::newRow("umlaut") << true << QString::fromUtf8("ü") << QByteArray("C3BC");
    }

    void canonicalForm()
    {
        QFETCH(bool, isPresent);
        QFETCH(QString, text);
        QFETCH(QByteArray, form);
        JournalEvent alarm{JournalKind::AlarmBegan};
        alarm.key = QStringLiteral("A1");
        alarm.channel = 2;
        alarm.value = 21.6;
        if (isPresent)
            alarm.text = text;
        alarm.time = QDateTime::fromMSecsSinceEpoch(1800000000123, Qt::UTC);
        JournalEntry entry = makeEntry(alarm, 7, {}, QStringLiteral("anna"));
        entry.fields[JournalEntry::Offset] = "3600";
        QCOMPARE(::canonicalForm("00ff", entry),
                 "00ff|7|1800000000123|3600|616C61726D2D626567616E|4131|2|32312E36|-|-|-|-|" + form + "|616E6E61");
    }

    void tampering_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<qint64>("brokenAt");
        for (const char *change : {"time = time + 1", "\"offset\" = 7", "kind = 'alarm-ended'", "\"key\" = 'B'",
                                   "channel = 2", "value = '21.61'", "low = ''", "high = '1'", "old = 'x'", "new = ''",
                                   "text = null", "user = 'eve'", "hash = hash || '0'"})
            QTest::newRow(change) << QStringLiteral("update entry set %1 where id = 3").arg(QLatin1String(change))
                                  << qint64(3);
        QTest::newRow("taken out") << "delete from entry where id = 3" << qint64(4);
        QTest::newRow("first taken out") << "delete from entry where id = 1" << qint64(2);
        QTest::newRow("put in at the end") << "insert into entry select 6, time, \"offset\", kind, \"key\", channel, "
                                              "value, low, high, old, new, text, "
                                              "user, hash from entry where id = 5"
                                           << qint64(6);
        QTest::newRow("put in at the front") << "insert into entry select 0, time, \"offset\", kind, \"key\", channel, "
                                                "value, low, high, old, new, text, "
                                                "user, hash from entry where id = 1"
                                             << qint64(0);
    }

    void tampering()
    {
        QFETCH(QString, statement);
        QFETCH(qint64, brokenAt);
        const JournalBench bench;
        JournalEvent alarm = eventOf(JournalKind::AlarmBegan);
        alarm.key = QStringLiteral("A");
        alarm.channel = 1;
        alarm.value = 21.6;
        QVERIFY(bench.write({alarm, alarm, alarm, alarm, alarm}));
        QVERIFY(verdictOf(bench).isWhole());
        QVERIFY(bench.run({statement}));
        const JournalVerdict verdict = verdictOf(bench);
        QCOMPARE(int(verdict.state), int(JournalVerdict::Broken));
        QCOMPARE(verdict.brokenAt, brokenAt);
    }

    void reordered()
    {
        const JournalBench bench;
        QVERIFY(bench.write(everyKind()));
        QVERIFY(bench.run({"update entry set id = 1000 where id = 3", "update entry set id = 3 where id = 4",
                           "update entry set id = 4 where id = 1000"}));
        QCOMPARE(int(verdictOf(bench).state), int(JournalVerdict::Broken));
        QCOMPARE(verdictOf(bench).brokenAt, qint64(3));
    }

    /// Taken out so that the numbers close up again.
    void takenOutAndRenumbered()
    {
        const JournalBench bench;
        QVERIFY(bench.write(everyKind()));
        QVERIFY(bench.run({"delete from entry where id = 3", "update entry set id = id - 1 where id > 3"}));
        QCOMPARE(verdictOf(bench).brokenAt, qint64(3));
    }

    /// Others have to come to the same result with what every system has.
    void theDescriptionsOwnCheck_data()
    {
        QTest::addColumn<QString>("statement");
        QTest::addColumn<QString>("result");
        QTest::newRow("whole") << "pragma user_version"
                               << "whole: 24 entries";
        QTest::newRow("changed") << "update entry set text = '' where id = 13"
                                 << "broken at entry 13";
    }

    void theDescriptionsOwnCheck()
    {
        QFETCH(QString, statement);
        QFETCH(QString, result);
        const JournalBench bench;
        QVERIFY(bench.write(hardEvents()));
        QVERIFY(bench.run({statement}));
        QFile description(QStringLiteral(DESCRIPTION));
        QVERIFY(description.open(QIODevice::ReadOnly));
        const QString script = QString::fromUtf8(description.readAll())
                                   .section(QStringLiteral("```sh\n"), 1)
                                   .section(QStringLiteral("```"), 0, 0);
        QVERIFY(!script.isEmpty());
        QProcess shell;
        shell.start(QStringLiteral("sh"), {QStringLiteral("-c"), script, QStringLiteral("sh"), bench.path()});
        QVERIFY(shell.waitForFinished());
        QCOMPARE(QString::fromUtf8(shell.readAllStandardError()), QString());
        QVERIFY2(QString::fromUtf8(shell.readAllStandardOutput()).startsWith(result), qPrintable(result));
    }

    void unreadable_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("not SQLite") << QByteArray("a text that is long enough to be something").repeated(50);
        QTest::newRow("its first bytes only") << QByteArray("SQLite format 3\0", 16);
    }

    void unreadable()
    {
        QFETCH(QByteArray, content);
        const JournalBench bench;
        QFile file(bench.path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        QCOMPARE(int(verdictOf(bench).state), int(JournalVerdict::Unreadable));
        QVERIFY2(verdictOf(bench).reason.startsWith("It is no journal"), qPrintable(verdictOf(bench).reason));
    }

    /// What a station that was ended by force has left, in a folder that SQLite may not write to.
    void logInAReadOnlyFolder()
    {
        const JournalBench bench;
        QVERIFY(bench.write({eventOf(JournalKind::ProjectOpened)}));
        QFile log(bench.path() + "-wal");
        QVERIFY(log.open(QIODevice::WriteOnly));
        log.close();
        const QByteArray folder = QFile::encodeName(QFileInfo(bench.path()).path());
        QCOMPARE(::mount(folder.constData(), folder.constData(), nullptr, MS_BIND, nullptr), 0);
        const int isReadOnly = ::mount(nullptr, folder.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr);
        const JournalVerdict verdict = verdictOf(bench);
        QCOMPARE(::umount2(folder.constData(), MNT_DETACH), 0);
        QCOMPARE(isReadOnly, 0);
        QCOMPARE(int(verdict.state), int(JournalVerdict::Unreadable));
        QVERIFY(!verdict.isNoJournal);
        QVERIFY2(verdict.reason.startsWith("It cannot be read"), qPrintable(verdict.reason));
    }

    void missing()
    {
        const JournalBench bench;
        QCOMPARE(int(verdictOf(bench).state), int(JournalVerdict::Unreadable));
        QVERIFY(!QFile::exists(bench.path()));
    }

    void readingLeavesNothingBehind()
    {
        const JournalBench bench;
        QVERIFY(bench.write(everyKind()));
        QVERIFY(verdictOf(bench).isWhole());
        QCOMPARE(QDir(bench.folder()).entryList(QDir::Files), QStringList{"Kitchen.events"});
    }
};

QTEST_GUILESS_MAIN(tst_JournalChain)
#include "tst_JournalChain.moc"
