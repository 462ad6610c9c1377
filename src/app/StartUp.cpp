#include "app/StartUp.h"

#include "app/EndRequests.h"
#include "app/SorvantoMain.h"
#include "dialogs/SharpPixmap.h"
#include "dialogs/TransientMessage.h"
#include "views/Fonts.h"

#include <QApplication>
#include <QPointer>
#include <QScopeGuard>
#include <QSplashScreen>
#include <QTimer>

namespace {

// The splash stays for this long however quickly the station was built.
constexpr unsigned long splashMs = 2500;

// Soon enough for a box that is closed unanswered.
constexpr int boxCloserMs = 10;

constexpr int textPointSize = 9;

const QString loadingText = QStringLiteral("Loading modules...");

void showOnSplash(QSplashScreen &splash, const QString &text)
{
    splash.showMessage(QStringLiteral("[%1] %2").arg(versionText(), text), Qt::AlignHCenter | Qt::AlignBottom,
                       Qt::darkGray);
}

} // namespace

QString versionText()
{
    return QStringLiteral("V3.54");
}

void installMessagePattern()
{
    qSetMessagePattern(QStringLiteral("%{message}"));
}

void enableHighDensity()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void useStationFont()
{
    installFontSubstitutes();
    // Widgets under a style sheet do not inherit their window's font.
    QApplication::setFont(QFont(QStringLiteral("Segoe UI"), textPointSize));
}

QSplashScreen *showSplash()
{
    auto *splash = new QSplashScreen(sharpPixmap(QStringLiteral(":/img/LoadingLite.png")));
    splash->setAttribute(Qt::WA_DeleteOnClose);
    splash->show();
    showOnSplash(*splash, loadingText);
    return splash;
}

int runStation(QApplication &application, const StartOptions &options,
               const std::function<void(unsigned long ms)> &pause)
{
    useStationFont();
    const EndRequests endRequests;
    const QPointer<QSplashScreen> splash = showSplash();
    const auto splashEnd = qScopeGuard([&splash] { delete splash; });

    // A box that waits for an answer must not keep the program alive, nor one that follows it.
    QTimer boxCloser;
    QObject::connect(&boxCloser, &QTimer::timeout, &boxCloser, [] {
        if (QWidget *box = QApplication::activeModalWidget())
            box->close();
    });
    QObject::connect(&endRequests, &EndRequests::made, &boxCloser, [&boxCloser] { boxCloser.start(boxCloserMs); });
    const QString problem = options.projectFile.isEmpty() ? QString() : projectFileProblem(options.projectFile);
    StartOptions start = problem.isEmpty() ? options : StartOptions{false, {}};
    start.isEndRequested = [&endRequests] {
        return endRequests.wasMade();
    };
    start.showOnSplash = [&splash](const QString &text) {
        if (splash)
            showOnSplash(*splash, text);
    };
    SorvantoMain mainWindow(start);
    const QMetaObject::Connection ending =
        QObject::connect(&endRequests, &EndRequests::made, &mainWindow, &SorvantoMain::endProgram);
    // Some sound backends handle events while the window is destroyed; a request must not reach it then.
    const auto noMoreRequests = qScopeGuard([&ending] { QObject::disconnect(ending); });
    // Asked for, not only listened to: no event loop runs while the station is built and while the splash waits.
    const auto isEnding = [&mainWindow, &endRequests] {
        if (endRequests.wasMade())
            mainWindow.endProgram();
        return mainWindow.isEnding();
    };
    if (isEnding())
        return 0;
    if (splash)
        showOnSplash(*splash, loadingText);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &mainWindow,
                     &SorvantoMain::stopRunningRecording, Qt::DirectConnection);

    QCoreApplication::processEvents();
    if (isEnding())
        return 0;
    pause(splashMs);
    // The end of the session comes as an event.
    QCoreApplication::processEvents();
    if (isEnding())
        return 0;

    mainWindow.show();
    // Not earlier: half the time that a message stays would be spent waiting.
    if (!problem.isEmpty())
        showTransientMessage(QStringLiteral("ERROR"), problem, &mainWindow);
    if (splash)
        splash->finish(&mainWindow);
    return mainWindow.isEnding() ? 0 : QApplication::exec();
}
