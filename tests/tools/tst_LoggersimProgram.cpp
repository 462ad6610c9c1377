#include "project/AppSettings.h"
#include "project/ProjectFile.h"

#include <QDateTime>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>

namespace {

/// The simulator's program, run with some arguments; collects what it prints.
class Run : public QProcess
{
public:
    explicit Run(const QStringList &arguments, const QProcessEnvironment &environment = {})
    {
        setProcessEnvironment(environment.isEmpty() ? QProcessEnvironment::systemEnvironment() : environment);
        connect(this, &QProcess::readyReadStandardOutput, this, [this] { output += readAllStandardOutput(); });
        connect(this, &QProcess::readyReadStandardError, this, [this] { errors += readAllStandardError(); });
        start(LOGGERSIM, arguments);
    }
    ~Run() override
    {
        disconnect();
        // Politely, so that it ends its program and clears its tree.
        terminate();
        if (!waitForFinished())
            kill();
    }

    bool ends()
    {
        return QTest::qWaitFor([this] { return state() == NotRunning; }, 20000);
    }
    /// Waits for a line that @p pattern matches, at or after the place where the last one was found.
    QRegularExpressionMatch waitFor(const QString &pattern)
    {
        const QRegularExpression expression('^' + pattern + '$', QRegularExpression::MultilineOption);
        QRegularExpressionMatch match;
        const bool found = QTest::qWaitFor(
            [&] {
                match = expression.match(QString::fromUtf8(output.left(output.lastIndexOf('\n') + 1)), m_seen);
                return match.hasMatch();
            },
            20000);
        if (found)
            m_seen = match.capturedEnd();
        else
            qWarning().noquote() << "no line" << pattern << "in" << output.right(2000) << errors;
        return match;
    }
    void skipToEnd() { m_seen = output.size(); }

    QByteArray output;
    QByteArray errors;

private:
    int m_seen = 0;
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

} // namespace

/// Runs the built program and drives it from outside.
class tst_LoggersimProgram : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void help();
    void badOptions();
    void faultForAnUnknownLogger();
    void occupiedPort();
    void portsAreReported();
    void reportOnTermination_data();
    void reportOnTermination();
    void reportThatCannotBeWritten();
    void everyReadingIsWrittenDown();
    void readingsThatCannotBeWrittenDown();
    void interactive();
    void quitOverTheControlSocket();
    void projectAndSettings();
    void programsExitCode();
    void programThatCrashes();
    void programThatDoesNotExist();
    void programGetsTheSignal();
    void programSeesSettings();
    void programSeesUsbLoggers();
    void programSeesPluggingAndUnplugging();
    void programSurvivesReplug();
    void programSeesSwap();
    void stationCountsWhatWasServed();

private:
    /// One control line over the socket; its answer.
    QByteArray control(const QByteArray &line);
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_LoggersimProgram::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

QByteArray tst_LoggersimProgram::control(const QByteArray &line)
{
    QLocalSocket socket;
    socket.connectToServer(path("control"));
    QByteArray answer;
    connect(&socket, &QLocalSocket::readyRead, &socket, [&] { answer += socket.readAll(); });
    socket.write(line + '\n');
    return QTest::qWaitFor([&] { return answer.endsWith('\n'); }) ? answer : QByteArray("(no answer)");
}

void tst_LoggersimProgram::help()
{
    Run run({"--help"});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(run.output.contains("--network"));
    QCOMPARE(run.errors, QByteArray());
}

void tst_LoggersimProgram::badOptions()
{
    Run run({"--network", "many"});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 2);
    QCOMPARE(run.errors,
             QByteArray("loggersim: --network takes a number from 0 to 10000, not \"many\"\nTry --help.\n"));
    QCOMPARE(run.output, QByteArray());
}

void tst_LoggersimProgram::faultForAnUnknownLogger()
{
    Run run({"--network", "1", "--fault", "2=silent"});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 2);
    QCOMPARE(run.errors, QByteArray("loggersim: there is no logger \"2\"\n"));
}

void tst_LoggersimProgram::occupiedPort()
{
    Run first({"--network", "1"});
    const QString port = first.waitFor("020001000001 network 127\\.0\\.1\\.1 (\\d+)").captured(1);
    Run second({"--network", "1", "--port", port});
    QVERIFY(second.ends());
    QCOMPARE(second.exitCode(), 1);
    QVERIFY(second.errors.startsWith("loggersim: cannot listen on 127.0.1.1 port "));
}

void tst_LoggersimProgram::portsAreReported()
{
    Run run({"--network", "2", "--usb", "1", "--discovery", "127.0.0.1", "--discovery-port", "0"});
    const auto first = run.waitFor("020001000001 network 127\\.0\\.1\\.1 (\\d+)");
    const auto second = run.waitFor("020001000002 network 127\\.0\\.1\\.2 (\\d+)");
    QVERIFY(run.waitFor("00001001 USB ttyACM0 0").hasMatch());
    QVERIFY(run.waitFor("search 127\\.0\\.0\\.1 [1-9]\\d*").hasMatch());
    QVERIFY(run.waitFor("ready").hasMatch());
    QTcpSocket station;
    station.connectToHost("127.0.1.2", static_cast<quint16>(second.captured(1).toUInt()));
    QTRY_COMPARE(station.state(), QAbstractSocket::ConnectedState);
    QVERIFY(first.captured(1).toUInt() > 0);
}

void tst_LoggersimProgram::reportOnTermination_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("terminated") << SIGTERM;
    QTest::newRow("interrupted") << SIGINT;
}

void tst_LoggersimProgram::reportOnTermination()
{
    QFETCH(int, number);
    Run run({"--network", "1", "--usb", "1", "--report", path("report")});
    const auto logger = run.waitFor("020001000001 network (\\S+) (\\d+)");
    QVERIFY(run.waitFor("ready").hasMatch());
    QTcpSocket station;
    station.connectToHost(logger.captured(1), static_cast<quint16>(logger.captured(2).toUInt()));
    QTRY_COMPARE(station.state(), QAbstractSocket::ConnectedState);
    station.write("ATDC\r\nATDC\r\nATDC\r\n");
    QByteArray received;
    QTRY_COMPARE((received += station.readAll()).count('\n'), 3);
    ::kill(static_cast<pid_t>(run.processId()), number);
    QVERIFY(run.ends());
    QCOMPARE(run.exitStatus(), QProcess::NormalExit);
    QCOMPARE(run.exitCode(), 0);
    QCOMPARE(contentOf(path("report")), QByteArray("020001000001\tnetwork\t3\n00001001\tUSB\t0\n"));
}

void tst_LoggersimProgram::reportThatCannotBeWritten()
{
    Run run({"--network", "1", "--report", path("no/such/folder/report")});
    QVERIFY(run.waitFor("ready").hasMatch());
    run.terminate();
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(run.errors.startsWith("loggersim: cannot write "));
}

void tst_LoggersimProgram::everyReadingIsWrittenDown()
{
    Run run({"--network", "2", "--served", path("served")});
    const auto second = run.waitFor("020001000002 network (\\S+) (\\d+)");
    QVERIFY(run.waitFor("ready").hasMatch());
    QCOMPARE(contentOf(path("served")), QByteArray());
    QTcpSocket station;
    station.connectToHost(second.captured(1), static_cast<quint16>(second.captured(2).toUInt()));
    QTRY_COMPARE(station.state(), QAbstractSocket::ConnectedState);
    for (int i = 0; i < 3; ++i) {
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        station.write("ATDC\r\n");
        QByteArray received;
        QTRY_VERIFY((received += station.readAll()).endsWith('\n'));
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        // While it runs, not at the end only.
        QTRY_COMPARE(contentOf(path("served")).count('\n'), i + 1);
        const QList<QByteArray> fields = contentOf(path("served")).split('\n').at(i).split('\t');
        QCOMPARE(fields.mid(0, 2), QList<QByteArray>({"020001000002", received.trimmed().mid(5)}));
        const qint64 polled = fields.value(2).toLongLong();
        QVERIFY2(polled >= before && polled <= after, fields.value(2));
    }
}

void tst_LoggersimProgram::readingsThatCannotBeWrittenDown()
{
    Run run({"--network", "1", "--served", path("no/such/folder/served")});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(run.errors.startsWith("loggersim: cannot write "));
}

void tst_LoggersimProgram::interactive()
{
    Run run({"--network", "1", "--interactive"});
    QVERIFY(run.waitFor("ready").hasMatch());
    run.write("fault 1 silent\ncounts\n");
    QVERIFY(run.waitFor("ok").hasMatch());
    QVERIFY(run.waitFor("020001000001 network 0 127\\.0\\.1\\.1 \\d+").hasMatch());
    QVERIFY(run.waitFor("end").hasMatch());
    run.write("quit\n");
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 0);
}

void tst_LoggersimProgram::quitOverTheControlSocket()
{
    Run run({"--network", "1", "--control", path("control")});
    QVERIFY(run.waitFor("ready").hasMatch());
    QCOMPARE(control("quit"), QByteArray("ok\n"));
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 0);
    QVERIFY(!QFile::exists(path("control")));
}

void tst_LoggersimProgram::projectAndSettings()
{
    Run run({"--network", "6", "--usb", "2", "--project", path("Demo.tpc"), "--interval", "5000", "--settings",
             path("config"), "--keep-alive"});
    QVERIFY(run.waitFor("ready").hasMatch());
    const auto devices = ProjectFile(path("Demo.tpc")).readDevices();
    QVERIFY(devices);
    QCOMPARE(devices->size(), 8);
    QCOMPARE(ProjectFile(path("Demo.tpc")).dataInterval(), 5000);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("config"));
    AppSettings settings;
    settings.load();
    QCOMPARE(settings.autoLoadPath(), path("Demo.tpc"));
    QVERIFY(settings.autoRecord && settings.keepAlive);
}

void tst_LoggersimProgram::programsExitCode()
{
    Run run({"--network", "1", "--report", path("report"), "--", "sh", "-c", "echo hello; exit 7"});
    QVERIFY(run.waitFor("ready").hasMatch());
    QVERIFY(run.waitFor("hello").hasMatch());
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 7);
    QCOMPARE(contentOf(path("report")), QByteArray("020001000001\tnetwork\t0\n"));
}

void tst_LoggersimProgram::programThatCrashes()
{
    Run run({"--network", "1", "--", "sh", "-c", "kill -KILL $$"});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 128 + SIGKILL);
}

void tst_LoggersimProgram::programThatDoesNotExist()
{
    Run run({"--network", "1", "--", path("nothing here")});
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 1);
    QVERIFY(run.errors.startsWith("loggersim: cannot run " + path("nothing here").toUtf8()));
}

void tst_LoggersimProgram::programGetsTheSignal()
{
    const QString script = "trap 'echo told; exit 3' TERM; mkfifo %1; echo waiting; read never <>%1";
    Run run({"--usb", "1", "--", "sh", "-c", script.arg(path("fifo"))});
    QVERIFY(run.waitFor("waiting").hasMatch());
    run.terminate();
    QVERIFY(run.waitFor("told").hasMatch());
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 3);
}

void tst_LoggersimProgram::programSeesSettings()
{
    Run run({"--network", "1", "--project", path("p.tpc"), "--settings", path("config"), "--", "sh", "-c",
             "echo config=$XDG_CONFIG_HOME"});
    QVERIFY(run.waitFor("config=" + QRegularExpression::escape(path("config"))).hasMatch());
    QVERIFY(run.ends());
}

void tst_LoggersimProgram::programSeesUsbLoggers()
{
    Run run({"--usb", "2", "--report", path("report"), "--", USBPROBE});
    QVERIFY(run.waitFor("loggers ttyACM0=00001001 ttyACM1=00001002").hasMatch());
    QVERIFY(run.waitFor("reading 00001001 ttyACM0 ATCD -?\\d+\\.\\d\\d,-?\\d+\\.\\d\\d").hasMatch());
    QVERIFY(run.waitFor("reading 00001002 ttyACM1 ATCD -?\\d+\\.\\d\\d,-?\\d+\\.\\d\\d").hasMatch());
    run.terminate();
    QVERIFY(run.ends());
    QCOMPARE(run.exitCode(), 128 + SIGTERM);
    QVERIFY(QRegularExpression("^00001001\tUSB\t[1-9]\\d*\n00001002\tUSB\t[1-9]\\d*\n$")
                .match(QString::fromUtf8(contentOf(path("report"))))
                .hasMatch());
}

void tst_LoggersimProgram::programSeesPluggingAndUnplugging()
{
    Run run({"--usb", "2", "--control", path("control"), "--fault", "2=unplug", "--", USBPROBE});
    QVERIFY(run.waitFor("loggers ttyACM0=00001001").hasMatch());
    QCOMPARE(control("plug 2"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers ttyACM0=00001001 ttyACM1=00001002").hasMatch());
    QVERIFY(run.waitFor("reading 00001002 .*").hasMatch());
    QCOMPARE(control("unplug 00001001"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers ttyACM1=00001002").hasMatch());
    QCOMPARE(control("unplug 00001002"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers").hasMatch());
    QCOMPARE(control("plug 00001001"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers ttyACM0=00001001").hasMatch());
    QVERIFY(run.waitFor("reading 00001001 .*").hasMatch());
}

void tst_LoggersimProgram::programSurvivesReplug()
{
    Run run({"--usb", "1", "--control", path("control"), "--", USBPROBE});
    QVERIFY(run.waitFor("reading 00001001 .*").hasMatch());
    // At once, so that hardly a scan sees it gone: the open port tells.
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(control("values 1 " + QByteArray::number(i) + " 50"), QByteArray("ok\n"));
        QCOMPARE(control("replug 1"), QByteArray("ok\n"));
        QVERIFY(run.waitFor("(lost|loggers).*").hasMatch());
        QVERIFY(run.waitFor(QString("reading 00001001 ttyACM0 ATCD %1\\.00,50\\.00").arg(i)).hasMatch());
    }
    QCOMPARE(control("replug 1 300"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers").hasMatch());
    QVERIFY(run.waitFor("loggers ttyACM0=00001001").hasMatch());
    QVERIFY(run.waitFor("reading 00001001 .*").hasMatch());
}

void tst_LoggersimProgram::programSeesSwap()
{
    Run run({"--usb", "2", "--control", path("control"), "--", USBPROBE});
    QVERIFY(run.waitFor("loggers ttyACM0=00001001 ttyACM1=00001002").hasMatch());
    QCOMPARE(control("values 1 11 11"), QByteArray("ok\n"));
    QCOMPARE(control("values 2 22 22"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("reading 00001002 ttyACM1 ATCD 22.00,22.00").hasMatch());
    QCOMPARE(control("swap 1 2"), QByteArray("ok\n"));
    QVERIFY(run.waitFor("loggers ttyACM0=00001002 ttyACM1=00001001").hasMatch());
    QVERIFY(run.waitFor("reading 00001002 ttyACM0 ATCD 22.00,22.00").hasMatch());
    QVERIFY(run.waitFor("reading 00001001 ttyACM1 ATCD 11.00,11.00").hasMatch());
}

void tst_LoggersimProgram::stationCountsWhatWasServed()
{
    Run run({"--usb", "1", "--control", path("control"), "--", USBPROBE});
    QVERIFY(run.waitFor("reading 00001001 .*").hasMatch());
    QCOMPARE(control("fault 1 silent"), QByteArray("ok\n"));
    const QString counts = QString::fromUtf8(control("counts"));
    const int served = counts.section(' ', 2, 2).toInt();
    QVERIFY2(served > 0, qPrintable(counts));
    QTRY_COMPARE(run.output.count("reading 00001001"), served);
}

QTEST_GUILESS_MAIN(tst_LoggersimProgram)
#include "tst_LoggersimProgram.moc"
