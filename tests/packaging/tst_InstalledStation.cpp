#include "e2e/E2eFixture.h"

#include <QDir>
#include <QImage>
#include <QMimeDatabase>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

namespace {

const QString packageRoot = QStringLiteral(PACKAGE_ROOT);

struct Said
{
    int exitCode = -1;
    QString output;
    QString errors;
};

/// Runs the installed program where there is neither a display nor a stand-in for one.
Said runWithoutDisplay(const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QLatin1String(name));
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral("sorvanto-lite"), arguments);
    if (!program.waitForFinished())
        return {};
    return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
            QString::fromLocal8Bit(program.readAllStandardOutput()),
            QString::fromLocal8Bit(program.readAllStandardError())};
}

/// What the menu, or a double click on this file, starts.
QStringList menuCommand(const QString &file)
{
    QFile entry(packageRoot + QStringLiteral("/usr/share/applications/sorvanto-lite.desktop"));
    if (!entry.open(QIODevice::ReadOnly))
        qFatal("no desktop entry");
    const QStringList lines = QString::fromUtf8(entry.readAll()).split(QLatin1Char('\n'));
    const QString key = QStringLiteral("Exec=");
    QStringList command = QProcess::splitCommand(lines.filter(QRegularExpression(QLatin1Char('^') + key)).value(0));
    command.replaceInStrings(key, QString());
    command.replaceInStrings(QStringLiteral("%f"), file);
    return command;
}

} // namespace

/// The station as the package installs it, against loggers on real sockets.
class tst_InstalledStation : public QObject
{
    Q_OBJECT

private slots:
    void isTheOneOfThePackage();
    void tellsItsVersion();
    void tellsItsHelp();
    void projectFilesHaveATypeAndAnIcon();
    void opensTheNamedProjectAndRecords();
    void isSilentWhenStartedFromTheMenu();

private:
    void verifyRecordsUntilEnded(E2eFixture &e2e);
};

void tst_InstalledStation::isTheOneOfThePackage()
{
    QCOMPARE(QStandardPaths::findExecutable(QStringLiteral("sorvanto-lite")),
             packageRoot + QStringLiteral("/usr/bin/sorvanto-lite"));
}

void tst_InstalledStation::tellsItsVersion()
{
    const Said said = runWithoutDisplay({QStringLiteral("--version")});
    QCOMPARE(said.output, QStringLiteral("sorvanto-lite V" VERSION "\n"));
    QCOMPARE(said.errors, QString());
    QCOMPARE(said.exitCode, 0);
}

void tst_InstalledStation::tellsItsHelp()
{
    const Said said = runWithoutDisplay({QStringLiteral("--help")});
    QVERIFY2(said.output.contains(QStringLiteral("--no-auto-load")), qPrintable(said.output));
    QCOMPARE(said.errors, QString());
    QCOMPARE(said.exitCode, 0);
}

void tst_InstalledStation::projectFilesHaveATypeAndAnIcon()
{
    const QMimeType type =
        QMimeDatabase().mimeTypeForFile(QStringLiteral("Kitchen.tpc"), QMimeDatabase::MatchExtension);
    QCOMPARE(type.name(), QStringLiteral("application/x-sorvanto-lite-project"));
    QVERIFY(type.inherits(QStringLiteral("text/plain")));
    const QString icons = packageRoot + QStringLiteral("/usr/share/icons/hicolor/%1/%2/%3.%4");
    QVERIFY(QFile::exists(
        icons.arg(QStringLiteral("48x48"), QStringLiteral("mimetypes"), type.iconName(), QStringLiteral("png"))));
    for (int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
        const QString folder = QStringLiteral("%1x%1").arg(size);
        const QImage image(
            icons.arg(folder, QStringLiteral("apps"), QStringLiteral("sorvanto-lite"), QStringLiteral("png")));
        QCOMPARE(image.size(), QSize(size, size));
    }
}

void tst_InstalledStation::opensTheNamedProjectAndRecords()
{
    const QTemporaryDir folder;
    const QDir place(folder.path());
    const QString room = QStringLiteral("Kühl raum");
    QVERIFY(place.mkdir(room));
    E2eFixture e2e(place.filePath(room));
    e2e.addLogger();
    e2e.setCommand({QStringLiteral("sorvanto-lite"), QStringLiteral("--no-auto-load"), QStringLiteral("Kitchen.tpc")},
                   place.filePath(room));
    verifyRecordsUntilEnded(e2e);
    QVERIFY(e2e.station().count(QStringLiteral("SorvantoMain")) > 0);
}

void tst_InstalledStation::isSilentWhenStartedFromTheMenu()
{
    E2eFixture e2e;
    e2e.addLogger();
    e2e.setCommand(menuCommand(e2e.projectFile()));
    verifyRecordsUntilEnded(e2e);
    for (const char *word : {"SorvantoMain", "InsertSerialData", "TelnetDevice", "ConfiguredDevice"})
        QCOMPARE(e2e.station().count(QLatin1String(word)), 0);
}

void tst_InstalledStation::verifyRecordsUntilEnded(E2eFixture &e2e)
{
    QVERIFY2(e2e.start(), e2e.startError());
    QVERIFY2(e2e.waitUntil([&] { return e2e.haveServed(3); }), e2e.station().lastWords());
    QVERIFY(e2e.fallSilent());
    QVERIFY2(e2e.station().end(SIGTERM), e2e.station().lastWords());
    QVERIFY2(e2e.station().hasSucceeded(), e2e.station().lastWords());
    QCOMPARE(e2e.differences(), QByteArray());
}

QTEST_GUILESS_MAIN(tst_InstalledStation)
#include "tst_InstalledStation.moc"
