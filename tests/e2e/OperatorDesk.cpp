#include "OperatorDesk.h"

#include "app/StartUp.h"
#include "support/NullSinkServer.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <csignal>

#include <algorithm>

namespace {

constexpr double alarmToneHz = 880;
constexpr double audibleLevel = 0.2;

NullSinkServer *theSoundServer = nullptr;
QString theHome;

void emptyHome()
{
    QDir(theHome + QLatin1String("/Documents")).removeRecursively();
    QSettings(QStringLiteral("SorvantoLite"), QStringLiteral("Sorvanto Lite")).clear();
    for (const char *folder : {"/.config", "/.runtime", "/Documents"})
        QDir().mkpath(theHome + QLatin1String(folder));
    QFile::setPermissions(theHome + QLatin1String("/.runtime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/// Leaves nothing of the machine's user to this process and those it starts.
void moveIn(const QString &home)
{
    theHome = home;
    qputenv("HOME", home.toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", (home + QLatin1String("/.config")).toLocal8Bit());
    qputenv("XDG_CACHE_HOME", (home + QLatin1String("/.cache")).toLocal8Bit());
    qputenv("XDG_DATA_HOME", (home + QLatin1String("/.local/share")).toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", (home + QLatin1String("/.runtime")).toLocal8Bit());
    emptyHome();
}

} // namespace

OperatorDesk::OperatorDesk(int loggers) : m_loggers(theHome + QStringLiteral("/.runtime"))
{
    emptyHome();
    if (loggers > 0 && !m_loggers.start(loggers))
        qFatal("the loggers do not start");
    if (!m_ear.start(*theSoundServer))
        qFatal("nothing is to be heard of the sound server");
    Operator::putPointerAway();
}

OperatorDesk::~OperatorDesk() = default;

int OperatorDesk::runStation(const std::function<void()> &use)
{
    Operator::awaitMessages();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        // The splash waits for the window with a look at the events of its own.
        const bool isRunning = QThread::currentThread()->loopLevel() > 0;
        if (!isRunning || !Operator::sees(QStringLiteral("SorvantoMain")))
            return;
        watch.stop();
        use();
        // Ended from within only if a step has failed, or if that was the step.
        if (Operator::sees(QStringLiteral("SorvantoMain")))
            ::raise(SIGTERM);
    });
    watch.start(10);
    return ::runStation(*qApp);
}

bool OperatorDesk::hearsAlarm()
{
    const QList<double> &levels = m_ear.toneLevels(alarmToneHz);
    return std::any_of(levels.cbegin(), levels.cend(), [](double level) { return level > audibleLevel; });
}

QString OperatorDesk::home()
{
    return theHome;
}

QProcessEnvironment OperatorDesk::environment()
{
    return QProcessEnvironment::systemEnvironment();
}

void OperatorTest::init()
{
    if (m_hasFailed)
        QSKIP("builds on what has failed before");
}

void OperatorTest::cleanup()
{
    m_hasFailed = m_hasFailed || QTest::currentTestFailed();
}

int runOperatorTest(int argc, char **argv, const std::function<std::unique_ptr<QObject>()> &createTest)
{
    const QTemporaryDir folder;
    moveIn(folder.path());
    NullSinkServer server;
    if (!server.start()) {
        qCritical("%s", qUtf8Printable(server.errorString()));
        return 1;
    }
    server.useHere();
    theSoundServer = &server;
    installMessagePattern();
    enableHighDensity();
    QApplication application(argc, argv);
    return QTest::qExec(createTest().get(), argc, argv);
}
