#include "journal/JournalFile.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Ended
{
    int code;
    QString said;
    QString complained;
};

/// Without any display.
Ended runStation(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(variable));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(STATION), arguments);
    if (!program.waitForFinished() || program.exitStatus() != QProcess::NormalExit)
        qFatal("the station did not end: %s", qPrintable(program.errorString()));
    return {program.exitCode(), QString::fromUtf8(program.readAllStandardOutput()),
            QString::fromUtf8(program.readAllStandardError())};
}

} // namespace

/// Journals at the command line.
class tst_JournalProgram : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        JournalFile file(path(), QStringLiteral("anna"));
        JournalEvent opened{JournalKind::ProjectOpened};
        opened.text = QString::fromUtf8("/räume/Kitchen.tpc");
        QCOMPARE(file.open().error, QString());
        QVERIFY(file.append({opened, {JournalKind::ProjectClosed}}));
        m_head = QString::fromLatin1(file.head());
    }

    void wholeIsZero()
    {
        const Ended ended = runStation({"--verify-journal", path()});
        QCOMPARE(ended.said, QStringLiteral("whole: 2 entries, head %1\n").arg(m_head));
        QCOMPARE(ended.code, 0);
    }

    void brokenIsOne()
    {
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("break"));
            database.setDatabaseName(path());
            QVERIFY(database.open());
            QVERIFY(QSqlQuery(database).exec(QStringLiteral("update entry set text = '' where id = 2")));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("break"));
        const Ended ended = runStation({"--verify-journal", path()});
        QCOMPARE(
            ended.said,
            QStringLiteral("broken: entry 2 does not follow from those before it; 2 entries, head %1\n").arg(m_head));
        QCOMPARE(ended.code, 1);
        QCOMPARE(runStation({"--journal", path()}).code, 0);
    }

    void unreadableIsThree_data()
    {
        QTest::addColumn<QString>("option");
        QTest::newRow("verify") << "--verify-journal";
        QTest::newRow("print") << "--journal";
    }

    void unreadableIsThree()
    {
        QFETCH(QString, option);
        const Ended missing = runStation({option, path() + QStringLiteral("x")});
        QCOMPARE(missing.code, 3);
        QVERIFY(missing.complained.startsWith(path() + QStringLiteral("x: It cannot be opened")));
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("no journal");
        file.close();
        QCOMPARE(runStation({option, path()}).code, 3);
    }

    void printsJson()
    {
        const Ended ended = runStation({"--journal", path(), "--json"});
        QCOMPARE(ended.code, 0);
        const QStringList lines = ended.said.split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 3);
        const QJsonObject first = QJsonDocument::fromJson(lines[0].toUtf8()).object();
        QCOMPARE(first.value("kind").toString(), QStringLiteral("project-opened"));
        QCOMPARE(first.value("text").toString(), QString::fromUtf8("/räume/Kitchen.tpc"));
        QVERIFY(QDateTime::fromString(first.value("time").toString(), Qt::ISODateWithMs).isValid());
        QCOMPARE(lines[2], QString());
    }

    void printsForPeople()
    {
        const QStringList lines = runStation({"--journal", path()}).said.split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines[0].endsWith(QString::fromUtf8(" project-opened text=\"/räume/Kitchen.tpc\" user=\"anna\"")));
    }

    void senseless_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("both") << QStringList{"--journal", "a", "--verify-journal", "a"};
        QTest::newRow("a project, too") << QStringList{"--journal", "a", "b.tpc"};
        QTest::newRow("JSON of nothing") << QStringList{"--json"};
        QTest::newRow("no file") << QStringList{"--journal"};
    }

    void senseless()
    {
        QFETCH(QStringList, arguments);
        QCOMPARE(runStation(arguments).code, 2);
    }

private:
    QString path() const { return m_folder->filePath(QStringLiteral("Küche.events")); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_head;
};

QTEST_GUILESS_MAIN(tst_JournalProgram)
#include "tst_JournalProgram.moc"
