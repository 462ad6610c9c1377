#include "StationFixture.h"

#include "app/AlarmSound.h"
#include "app/SorvantoMain.h"
#include "app/StartUp.h"
#include "support/LogCapture.h"

#include <QAbstractButton>
#include <QDir>
#include <QEvent>
#include <QMenu>
#include <QMessageBox>
#include <QTimer>
#include <csignal>
#include <functional>
#include <utility>

namespace {

constexpr int lastResortMs = 20000;

/// As the toolkit tells the program that the desktop session is over.
void endSession()
{
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(qApp, &quit);
}

/// Calls @p use when a widget of this class is shown for the first time, before anything else hears of it.
class ShowWatch : public QObject
{
public:
    ShowWatch(const char *className, std::function<void(QWidget *)> use) : m_class(className), m_use(std::move(use))
    {
        qApp->installEventFilter(this);
    }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->inherits(m_class)) {
            if (!std::exchange(m_wasShown, true))
                m_use(static_cast<QWidget *>(watched));
        }
        return false;
    }
    bool wasShown() const { return m_wasShown; }

private:
    const char *m_class;
    std::function<void(QWidget *)> m_use;
    bool m_wasShown = false;
};

/// Ends the session with the line of the log that begins so.
const char *fatalLine = "";

void endSessionOnFatalLine(QtMsgType, const QMessageLogContext &, const QString &text)
{
    if (text.startsWith(QLatin1String(fatalLine)))
        endSession();
}

/// The exit code; -1 when the station had to be ended.
int run(const std::function<void(unsigned long)> &pause = [](unsigned long) {})
{
    bool waited = false;
    QTimer lastResort;
    QObject::connect(&lastResort, &QTimer::timeout, &lastResort, [&waited] {
        waited = true;
        ::raise(SIGTERM);
    });
    lastResort.start(lastResortMs);
    const int code = runStation(*qApp, {}, pause);
    return waited ? -1 : code;
}

} // namespace

/// The desktop session ends, at whatever moment.
class tst_SessionEnd : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // Only an event loop that runs and ends takes the toolkit out of the state of ending.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QApplication::exec();
        m_fixture = std::make_unique<StationFixture>();
        m_fixture->writeProject(m_name, {m_fixture->addLogger()}, 600000);
        m_fixture->listProject(m_name, true, true);
    }

    void cleanup()
    {
        m_about.reset();
        m_fixture.reset();
    }

    void beforeTheWindowNoneIsShown_data()
    {
        QTest::addColumn<QString>("moment");
        QTest::addColumn<bool>("isRecorded");
        QTest::newRow("before the project") << "m_audioFile size" << false;
        QTest::newRow("while the project opens") << "SorvantoMain::createInsertSerialData" << true;
        QTest::newRow("while the splash waits") << "" << true;
        QTest::newRow("after that") << "posted" << true;
    }

    void beforeTheWindowNoneIsShown()
    {
        QFETCH(QString, moment);
        QFETCH(bool, isRecorded);
        const ShowWatch window("SorvantoMain", [](QWidget *) {});
        const LogCapture everyLine;
        const QByteArray line = moment.toLatin1();
        fatalLine = line.isEmpty() ? "none" : line.constData();
        const QtMessageHandler before = qInstallMessageHandler(endSessionOnFatalLine);
        const int code = run([&moment](unsigned long) {
            if (moment.isEmpty())
                endSession();
            else
                QCoreApplication::postEvent(qApp, new QEvent(QEvent::Quit));
        });
        qInstallMessageHandler(before);
        QCOMPARE(code, 0);
        QVERIFY(!window.wasShown());
        QCOMPARE(QFile::exists(m_fixture->recordingPath(m_name)), isRecorded);
    }

    void whileAboutOpens()
    {
        int boxes = 0;
        const ShowWatch box("QMessageBox", [&boxes](QWidget *) {
            ++boxes;
            endSession();
        });
        openAboutInTheWindow();
        QCOMPARE(run(), 0);
        QCOMPARE(boxes, 1);
    }

    void whileAboutIsOpen()
    {
        int boxes = 0;
        const ShowWatch box("QMessageBox", [&boxes](QWidget *) {
            ++boxes;
            QTimer::singleShot(0, qApp, endSession);
        });
        openAboutInTheWindow();
        QCOMPARE(run(), 0);
        QCOMPARE(boxes, 1);
    }

    /// The click had come before the session's end, and is heard only when the window goes.
    void aboutThatOpensWhileTheWindowGoes()
    {
        bool opened = false;
        const ShowWatch window("SorvantoMain", [this, &opened](QWidget *station) {
            auto *help = station->findChild<QAbstractButton *>(QStringLiteral("command_help"));
            connect(station->findChild<AlarmSound *>(), &QObject::destroyed, this, [help, &opened] {
                opened = true;
                help->click();
            });
            QTimer::singleShot(0, qApp, endSession);
        });
        QCOMPARE(run(), 0);
        QVERIFY(opened);
    }

    void whileAMenuIsOpen_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("project") << "command_project";
        QTest::newRow("record") << "command_record";
        QTest::newRow("screen") << "command_screen";
    }

    void whileAMenuIsOpen()
    {
        QFETCH(QString, button);
        int menus = 0;
        const ShowWatch menu("QMenu", [&menus](QWidget *) {
            ++menus;
            QTimer::singleShot(0, qApp, endSession);
        });
        const ShowWatch window("SorvantoMain", [&button](QWidget *station) {
            QTimer::singleShot(0, station,
                               [station, button] { station->findChild<QAbstractButton *>(button)->click(); });
        });
        QCOMPARE(run(), 0);
        QCOMPARE(menus, 1);
    }

    void whileTheRecordingCannotBeCreated()
    {
        QVERIFY(QDir().mkpath(m_fixture->recordingPath(m_name)));
        int boxes = 0;
        const ShowWatch box("QMessageBox", [&boxes](QWidget *) {
            ++boxes;
            QTimer::singleShot(0, qApp, endSession);
        });
        QCOMPARE(run(), 0);
        QCOMPARE(boxes, 1);
    }

    void theReadingsAreInTheRecording()
    {
        const ShowWatch window("SorvantoMain", [](QWidget *) { QTimer::singleShot(0, qApp, endSession); });
        QCOMPARE(run(), 0);
        QCOMPARE(m_fixture->readingCount(m_name), m_fixture->served());
        QVERIFY(m_fixture->rows(m_name).last().isGap());
    }

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    /// The toolkit would close the window when the session is only about to end.
    void theWindowStaysWithASessionThatMayStay()
    {
        bool isClosed = true;
        const ShowWatch window("SorvantoMain", [&isClosed](QWidget *) {
            isClosed = QGuiApplication::isFallbackSessionManagementEnabled();
            QTimer::singleShot(0, qApp, endSession);
        });
        QCOMPARE(run(), 0);
        QVERIFY(!isClosed);
    }
#endif

private:
    void openAboutInTheWindow()
    {
        m_about = std::make_unique<ShowWatch>("SorvantoMain", [](QWidget *station) {
            QTimer::singleShot(0, station, [station] {
                station->findChild<QAbstractButton *>(QStringLiteral("command_help"))->click();
            });
        });
    }

    const QString m_name = QStringLiteral("Kitchen");
    std::unique_ptr<StationFixture> m_fixture;
    std::unique_ptr<ShowWatch> m_about;
};

STATION_TEST_MAIN(tst_SessionEnd)
#include "tst_SessionEnd.moc"
