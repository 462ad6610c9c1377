#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Ended
{
    bool bySignal = true;
    int code = -1;
    QString said;
};

/// Runs the program on a machine whose displays are these variables, and nothing else.
Ended runStation(const QStringList &arguments, const QStringList &displays)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "QT_DEBUG_PLUGINS"})
        environment.remove(QLatin1String(name));
    for (const QString &display : displays)
        environment.insert(display.section(QLatin1Char('='), 0, 0), display.section(QLatin1Char('='), 1));
    const QTemporaryDir runtimeFolder;
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder.path());
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(STATION), arguments);
    if (!program.waitForFinished())
        qFatal("the station did not end: %s", qPrintable(program.errorString()));
    return {program.exitStatus() == QProcess::CrashExit, program.exitCode(),
            QString::fromLocal8Bit(program.readAllStandardError())};
}

const QString noDisplay = QStringLiteral("Sorvanto Lite cannot start: there is no display that it can use.\n");

} // namespace

/// What the program says, and its exit code, when it cannot run: a test and a script must be able to tell.
class tst_CommandLineErrors : public QObject
{
    Q_OBJECT

private slots:
    void wrongArguments_data()
    {
        QTest::addColumn<QStringList>("displays");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("reason");
        const QString unknown = QStringLiteral("Unknown option 'nonsense'.\n");
        QTest::newRow("no display") << QStringList() << QStringList{"--nonsense"} << unknown;
        QTest::newRow("one dash") << QStringList() << QStringList{"-nonsense"} << unknown;
        QTest::newRow("two projects") << QStringList() << QStringList{"a.tpc", "b.tpc"}
                                      << "Only one project can be opened, but 2 are named: a.tpc, b.tpc\n";
        QTest::newRow("a display that is gone") << QStringList{"DISPLAY=:4711"} << QStringList{"--nonsense"} << unknown;
        QTest::newRow("a display") << QStringList{"QT_QPA_PLATFORM=offscreen"} << QStringList{"--nonsense"} << unknown;
        QTest::newRow("with the toolkit's")
            << QStringList() << QStringList{"-platform", "offscreen", "--nonsense"} << unknown;
    }

    void wrongArguments()
    {
        QFETCH(QStringList, displays);
        QFETCH(QStringList, arguments);
        const Ended ended = runStation(arguments, displays);
        QVERIFY2(!ended.bySignal, qPrintable(ended.said));
        QCOMPARE(ended.code, 2);
        QTEST(ended.said, "reason");
    }

    void noDisplayAtAll_data()
    {
        QTest::addColumn<QStringList>("displays");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("none") << QStringList() << QStringList();
        QTest::newRow("one that is gone") << QStringList{"DISPLAY=:4711"} << QStringList{"Kitchen.tpc"};
        QTest::newRow("an unknown kind") << QStringList() << QStringList{"-platform", "nonsense"};
    }

    void noDisplayAtAll()
    {
        QFETCH(QStringList, displays);
        QFETCH(QStringList, arguments);
        const Ended ended = runStation(arguments, displays);
        QVERIFY2(!ended.bySignal, qPrintable(ended.said));
        QCOMPARE(ended.code, 1);
        QVERIFY2(ended.said.endsWith(noDisplay), qPrintable(ended.said));
    }
};

QTEST_GUILESS_MAIN(tst_CommandLineErrors)
#include "tst_CommandLineErrors.moc"
