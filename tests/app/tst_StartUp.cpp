#include "StationFixture.h"

#include "app/AlarmSound.h"
#include "app/SorvantoMain.h"
#include "app/StartUp.h"
#include "dialogs/ProjectMain.h"
#include "project/AppSettings.h"
#include "store/InsertSerialData.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QMessageBox>
#include <QSessionManager>
#include <QSplashScreen>
#include <QTimer>
#include <csignal>

namespace {

SorvantoMain *shownStation()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        auto *station = qobject_cast<SorvantoMain *>(window);
        if (station && station->isVisible())
            return station;
    }
    return nullptr;
}

/// Runs the station from splash to exit; @p use is called with the window once it is shown.
int runAndUse(
    const std::function<void(SorvantoMain &)> &use, const StartOptions &options = {},
    const std::function<void(unsigned long)> &pause = [](unsigned long) {})
{
    QTimer watch;
    bool used = false;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        SorvantoMain *station = shownStation();
        if (!station || used)
            return;
        used = true;
        use(*station);
    });
    watch.start(10);
    return runStation(*qApp, options, pause);
}

/// Whether a station's window was shown at any moment.
class WindowWatch : public QObject
{
public:
    WindowWatch() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        m_shown = m_shown || (event->type() == QEvent::Show && qobject_cast<SorvantoMain *>(watched));
        return false;
    }
    bool wasShown() const { return m_shown; }

private:
    bool m_shown = false;
};

/// Closes the splash as soon as the station's window is shown.
class SplashCloser : public QObject
{
public:
    SplashCloser() { qApp->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Show || !qobject_cast<SorvantoMain *>(watched))
            return false;
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows)
            m_hasClosed = m_hasClosed || (qobject_cast<QSplashScreen *>(window) && window->close());
        return false;
    }
    bool hasClosed() const { return m_hasClosed; }

private:
    bool m_hasClosed = false;
};

/// Ends the program with the line of the log that begins so.
const char *fatalLine = "";

void terminateOnFatalLine(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text.startsWith(QLatin1String(fatalLine)))
        ::raise(SIGTERM);
}

} // namespace

/// The way from the splash to the end of the program.
class tst_StartUp : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // A program that ended before its event loop ran leaves the toolkit in the state of ending; only a loop that
        // runs and ends takes it out of there again.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
        m_fixture = std::make_unique<StationFixture>();
    }

    void cleanup() { m_fixture.reset(); }

    void logLinesAreTheBareMessage()
    {
        const QMessageLogContext context(nullptr, 0, nullptr, "sorvanto.device");
        QCOMPARE(qFormatLogMessage(QtDebugMsg, context, QStringLiteral("SerialDevice::open : [ttyACM0]")),
                 QStringLiteral("SerialDevice::open : [ttyACM0]"));
    }

    void splashNamesTheVersion()
    {
        const std::unique_ptr<QSplashScreen> splash = showSplash();
        QCOMPARE(splash->message(), QStringLiteral("[V3.54] Loading modules..."));
        QVERIFY(splash->isVisible());
        QCOMPARE(splash->pixmap().toImage(), QPixmap(QStringLiteral(":/img/LoadingLite.png")).toImage());
    }

    /// The end of the session closes every window, also while the main window is awaited on the screen.
    void aSplashThatIsClosedEarlyIsNoTrouble()
    {
        const SplashCloser closer;
        QCOMPARE(runAndUse([](SorvantoMain &station) { station.endProgram(); }), 0);
        QVERIFY(closer.hasClosed());
    }

    void oneTypeFaceThroughout()
    {
        const QFont before = QApplication::font();
        useStationFont();
        const QFont used = QApplication::font();
        QApplication::setFont(before);
        QCOMPARE(used.family(), QStringLiteral("Segoe UI"));
        const auto substitute = [](const char *face) {
            return QFont::substitute(QLatin1String(face)).toLower();
        };
        QCOMPARE(substitute("Segoe UI"), QStringLiteral("open sans"));
        QCOMPARE(substitute("Arial"), QStringLiteral("liberation sans"));
    }

    void withoutAProjectTheStartScreenIsShown()
    {
        bool shown = false;
        const int code = runAndUse([&shown](SorvantoMain &station) {
            shown = !station.isProjectOpen() && station.findChild<ProjectMain *>()->isVisible();
            station.endProgram();
        });
        QCOMPARE(code, 0);
        QVERIFY(shown);
    }

    void theSplashStaysForTwoAndAHalfSeconds()
    {
        const WindowWatch watch;
        QList<unsigned long> pauses;
        bool splashIsShown = false;
        bool windowWasShown = true;
        const int code = runAndUse([](SorvantoMain &station) { station.endProgram(); }, {},
                                   [&](unsigned long ms) {
                                       pauses << ms;
                                       windowWasShown = watch.wasShown();
                                       const QWidgetList windows = QApplication::topLevelWidgets();
                                       for (QWidget *window : windows)
                                           splashIsShown = splashIsShown || (qobject_cast<QSplashScreen *>(window) &&
                                                                             window->isVisible());
                                   });
        QCOMPARE(code, 0);
        QCOMPARE(pauses, QList<unsigned long>{2500});
        QVERIFY(splashIsShown);
        QVERIFY(!windowWasShown);
    }

    void theWindowAppearsWithTheRecentProject()
    {
        recordedProject();
        bool recording = false;
        QString shown;
        const int code = runAndUse([&](SorvantoMain &station) {
            recording = station.isRecording();
            shown = child<QLabel>(station, "label_projectname")->text();
            station.endProgram();
        });
        QCOMPARE(code, 0);
        QVERIFY(recording);
        QVERIFY(shown.endsWith(QStringLiteral("/Kitchen.tpc")));
    }

    void aNamedProjectIsOpenedInPlaceOfTheRecentOne()
    {
        recordedProject();
        const QString other = QStringLiteral("Kühlraum 2");
        m_fixture->writeProject(other, {m_fixture->addLogger()}, 600000);
        const Seen seen = run({true, m_fixture->projectPath(other)});
        QVERIFY(seen.project.endsWith(QStringLiteral("/Kühlraum 2.tpc")));
        QVERIFY(seen.isRecording);
        QCOMPARE(seen.messages, QStringList());
        QVERIFY(!QFile::exists(m_fixture->recordingPath(m_name)));
    }

    void theRecentProjectCanBeLeftAlone()
    {
        recordedProject();
        const Seen seen = run({false, {}});
        QCOMPARE(seen.project, QString());
        QVERIFY(!QFile::exists(m_fixture->recordingPath(m_name)));
        AppSettings settings;
        settings.load();
        QVERIFY(settings.autoLoad);
    }

    void aNamedProjectIsOpenedAlthoughNothingLoadsByItself()
    {
        recordedProject();
        QVERIFY(run({false, m_fixture->projectPath(m_name)}).project.endsWith(QStringLiteral("/Kitchen.tpc")));
    }

    void aFileThatIsNoProjectIsReported_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::newRow("missing") << "Cellar.tpc"
                                 << "The project file does not exist.\n%1";
        QTest::newRow("markup in its name") << "<b>Cellar</b>.tpc"
                                            << "The project file does not exist.\n%1";
        QTest::newRow("another file") << "notes.txt"
                                      << "This is not a project file.\n%1";
    }

    void aFileThatIsNoProjectIsReported()
    {
        QFETCH(QString, name);
        QFETCH(QString, text);
        recordedProject();
        QFile notes(m_fixture->path(QStringLiteral("notes.txt")));
        QVERIFY(notes.open(QIODevice::WriteOnly));
        notes.write("Defrost on Monday.\n");
        notes.close();
        const Seen seen = run({true, m_fixture->path(name)});
        QCOMPARE(seen.messages, QStringList{text.arg(m_fixture->path(name))});
        QCOMPARE(seen.project, QString());
        QVERIFY(!QFile::exists(m_fixture->recordingPath(m_name)));
    }

    void aTerminationSignalStopsTheRecording_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }

    void aTerminationSignalStopsTheRecording()
    {
        QFETCH(int, number);
        recordedProject();
        QTimer reading;
        const int code = runAndUse([&](SorvantoMain &) {
            connect(&reading, &QTimer::timeout, this, [&] {
                if (InsertSerialData::pendingCount() < 1)
                    return;
                reading.stop();
                ::raise(number);
            });
            reading.start(10);
        });
        QCOMPARE(code, 0);
        QCOMPARE(m_fixture->readingCount(m_name), m_fixture->served());
        QVERIFY(m_fixture->rows(m_name).last().isGap());
    }

    void aSignalWhileLoadingShowsNoWindow()
    {
        recordedProject();
        const WindowWatch watch;
        const LogCapture everyLine;
        fatalLine = "SorvantoMain::createInsertSerialData";
        const QtMessageHandler before = qInstallMessageHandler(terminateOnFatalLine);
        const int code = runAndUse([](SorvantoMain &station) { station.endProgram(); });
        qInstallMessageHandler(before);
        QCOMPARE(code, 0);
        QVERIFY(!watch.wasShown());
    }

    void aSignalBeforeTheProjectOpensNone()
    {
        recordedProject();
        const WindowWatch watch;
        const LogCapture everyLine;
        // The last thing before the project: the sound has just been set up.
        fatalLine = "m_audioFile size";
        const QtMessageHandler before = qInstallMessageHandler(terminateOnFatalLine);
        const int code = runAndUse([](SorvantoMain &station) { station.endProgram(); });
        qInstallMessageHandler(before);
        QCOMPARE(code, 0);
        QVERIFY(!watch.wasShown());
        QVERIFY(!QFile::exists(m_fixture->recordingPath(m_name)));
    }

    void aSignalDuringTheSplashShowsNoWindow()
    {
        recordedProject();
        const WindowWatch watch;
        const int code =
            runAndUse([](SorvantoMain &station) { station.endProgram(); }, {}, [](unsigned long) { ::raise(SIGTERM); });
        QCOMPARE(code, 0);
        QVERIFY(!watch.wasShown());
        QVERIFY(QFile::exists(m_fixture->recordingPath(m_name)));
    }

    void aTerminationSignalWhileTheProgramEndsIsIgnored()
    {
        recordedProject();
        bool raised = false;
        const int code = runAndUse([&](SorvantoMain &station) {
            connect(station.findChild<AlarmSound *>(), &QObject::destroyed, this, [&raised] {
                raised = true;
                ::raise(SIGTERM);
                QCoreApplication::processEvents();
            });
            station.endProgram();
        });
        QCOMPARE(code, 0);
        QVERIFY(raised);
    }

    void theEndOfTheSessionStopsTheRecording()
    {
        recordedProject();
        bool recordingBefore = false;
        bool recordingAfter = true;
        const int code = runAndUse([&](SorvantoMain &station) {
            recordingBefore = station.isRecording();
            emit qApp->commitDataRequest(*qApp->findChild<QSessionManager *>());
            recordingAfter = station.isRecording();
            station.endProgram();
        });
        QCOMPARE(code, 0);
        QVERIFY(recordingBefore);
        QVERIFY(!recordingAfter);
    }

    void aRecordingThatCannotBeCreatedEndsTheProgram()
    {
        recordedProject();
        QVERIFY(QDir().mkpath(m_fixture->recordingPath(m_name)));
        int boxes = 0;
        QTimer boxWatch;
        connect(&boxWatch, &QTimer::timeout, this, [&boxes] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                ++boxes;
                box->accept();
            }
        });
        boxWatch.start(10);
        QCOMPARE(runAndUse([](SorvantoMain &) { QFAIL("the window was shown"); }), 0);
        QCOMPARE(boxes, 1);
        QCOMPARE(m_fixture->served(), 0);
    }

private:
    struct Seen
    {
        QString project;
        bool isRecording = false;
        QStringList messages;
    };

    /// What the window shows after a start with these options.
    Seen run(const StartOptions &options)
    {
        Seen seen;
        const int code = runAndUse(
            [&](SorvantoMain &station) {
                seen = {child<QLabel>(station, "label_projectname")->text(), station.isRecording(), shownMessages()};
                station.endProgram();
            },
            options);
        if (code != 0)
            qFatal("the station ended with code %d", code);
        return seen;
    }

    void recordedProject()
    {
        m_fixture->writeProject(m_name, {m_fixture->addLogger()}, 600000);
        m_fixture->listProject(m_name, true, true);
    }

    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
};

STATION_TEST_MAIN(tst_StartUp)
#include "tst_StartUp.moc"
