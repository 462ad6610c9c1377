#include "app/CommandLine.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

namespace {

CommandLine commandLine(const QStringList &arguments)
{
    return CommandLine(QStringList{QStringLiteral("sorvanto-lite")} + arguments);
}

} // namespace

/// What the station makes of its arguments, and of the file that they name.
class tst_CommandLine : public QObject
{
    Q_OBJECT

private slots:
    void withoutArgumentsTheSettingsDecide()
    {
        const CommandLine line = commandLine({});
        QCOMPARE(line.error(), QString());
        QVERIFY(!line.asksForText());
        QVERIFY(line.startOptions().autoLoad);
        QCOMPARE(line.startOptions().projectFile, QString());
    }

    void noAutoLoad()
    {
        const CommandLine line = commandLine({QStringLiteral("--no-auto-load")});
        QCOMPARE(line.error(), QString());
        QVERIFY(!line.startOptions().autoLoad);
        QCOMPARE(line.startOptions().projectFile, QString());
    }

    void projectFile_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("path");
        const auto here = [](const char *name) {
            return QDir::currentPath() + QLatin1Char('/') + QString::fromUtf8(name);
        };
        QTest::newRow("absolute") << QStringList{"/data/Kitchen.tpc"} << "/data/Kitchen.tpc";
        QTest::newRow("relative") << QStringList{"Kitchen.tpc"} << here("Kitchen.tpc");
        QTest::newRow("from above") << QStringList{"/data/house/../Kitchen.tpc"} << "/data/Kitchen.tpc";
        QTest::newRow("blanks") << QStringList{"/my data/Cold room 1.tpc"} << "/my data/Cold room 1.tpc";
        QTest::newRow("umlauts") << QStringList{QString::fromUtf8("/räume/Kühlraum °C – 1.tpc")}
                                 << QString::fromUtf8("/räume/Kühlraum °C – 1.tpc");
        QTest::newRow("with an option") << QStringList{"/data/Kitchen.tpc", "--no-auto-load"} << "/data/Kitchen.tpc";
        QTest::newRow("leading dash") << QStringList{"--", "-1.tpc"} << here("-1.tpc");
    }

    void projectFile()
    {
        QFETCH(QStringList, arguments);
        const CommandLine line = commandLine(arguments);
        QCOMPARE(line.error(), QString());
        QTEST(line.startOptions().projectFile, "path");
    }

    void faulty_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown option") << QStringList{"--no-autoload"} << "Unknown option 'no-autoload'.";
        QTest::newRow("two projects") << QStringList{"a.tpc", "b.tpc"}
                                      << "Only one project can be opened, but 2 are named: a.tpc, b.tpc";
        QTest::newRow("empty name") << QStringList{""} << "The name of the project file is empty.";
    }

    void faulty()
    {
        QFETCH(QStringList, arguments);
        QTEST(commandLine(arguments).error(), "error");
    }

    void asksForText_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("asks");
        QTest::newRow("version") << QStringList{"--version"} << true;
        QTest::newRow("help") << QStringList{"--help"} << true;
        QTest::newRow("letter") << QStringList{"-h"} << true;
        // The toolkit takes these away only once there is a display.
        QTest::newRow("with the toolkit's") << QStringList{"-platform", "offscreen", "--version"} << true;
        QTest::newRow("only the toolkit's") << QStringList{"-platformpluginpath", "/x", "-reverse"} << false;
        QTest::newRow("a file of that name") << QStringList{"--", "--version"} << false;
    }

    void asksForText()
    {
        QFETCH(QStringList, arguments);
        QTEST(commandLine(arguments).asksForText(), "asks");
    }

    void problemOfAProjectFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem");
        QTest::newRow("project") << QByteArray("[General]\nprojectName=Kitchen\nDeviceList=\"{\\\"devices\\\":[]}\"\n")
                                 << QString();
        QTest::newRow("no devices chosen yet")
            << QByteArray("[General]\nprojectName=Kitchen\n") << "There is no device information!\n%1";
        QTest::newRow("damaged devices") << QByteArray("[General]\nprojectName=Kitchen\nDeviceList={\n")
                                         << "There is no device information!\n%1";
        QTest::newRow("another settings file")
            << QByteArray("[General]\nname=Kitchen\n") << "This is not a project file.\n%1";
        QTest::newRow("empty") << QByteArray() << "This is not a project file.\n%1";
        QTest::newRow("anything") << QByteArray("\x7f"
                                                "ELF\0\1\2\n=\n[",
                                                12)
                                  << "This is not a project file.\n%1";
    }

    void problemOfAProjectFile()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("Kitchen.tpc"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), qint64(content.size()));
        file.close();
        QCOMPARE(projectFileProblem(path), problem.contains(QStringLiteral("%1")) ? problem.arg(path) : problem);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), content);
    }

    void nothingThatCouldBeRead()
    {
        const QTemporaryDir folder;
        QCOMPARE(projectFileProblem(folder.path()), QStringLiteral("This is not a project file.\n") + folder.path());
        const QString missing = folder.filePath(QStringLiteral("Kitchen.tpc"));
        QCOMPARE(projectFileProblem(missing), QStringLiteral("The project file does not exist.\n") + missing);
        QVERIFY(!QFile::exists(missing));
    }
};

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
