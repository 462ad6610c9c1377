#include "VirtualScreen.h"

#include <QTest>

namespace {

constexpr int patienceMs = 60000;

} // namespace

VirtualScreen::~VirtualScreen()
{
    m_server.terminate();
    if (!m_server.waitForFinished(5000))
        m_server.kill();
    m_server.waitForFinished();
}

bool VirtualScreen::start()
{
    // The files that tell of it are its own: killed, it would leave them. It is found by an address that is no file.
    m_server.start(QStringLiteral("setpriv"),
                   {QStringLiteral("--pdeathsig"), QStringLiteral("KILL"), QStringLiteral("unshare"),
                    QStringLiteral("--mount"), QStringLiteral("sh"), QStringLiteral("-euc"),
                    QStringLiteral("mount -t tmpfs tmpfs /tmp; exec Xvfb -displayfd 1 -screen 0 1280x800x24 -dpi 96 "
                                   "-nolisten tcp -noreset 2>/dev/null")});
    QByteArray number;
    const bool isThere =
        QTest::qWaitFor([&] { return (number += m_server.readAllStandardOutput()).endsWith('\n'); }, patienceMs);
    m_display = QLatin1Char(':') + QString::fromLatin1(number.trimmed());
    return isThere;
}

bool VirtualScreen::click(const QString &title, int x, int y)
{
    QByteArray window;
    const auto isThere = [&] {
        window = runTool({QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                          QLatin1Char('^') + title + QLatin1Char('$')})
                     .trimmed();
        return !window.isEmpty();
    };
    if (!QTest::qWaitFor(isThere, patienceMs))
        return false;
    runTool({QStringLiteral("mousemove"), QStringLiteral("--window"), QString::fromLatin1(window.split('\n').last()),
             QString::number(x), QString::number(y), QStringLiteral("click"), QStringLiteral("1")});
    return true;
}

QByteArray VirtualScreen::runTool(const QStringList &arguments)
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DISPLAY"), m_display);
    tool.setProcessEnvironment(environment);
    tool.start(QStringLiteral("xdotool"), arguments);
    // The loggers answer meanwhile.
    if (!QTest::qWaitFor([&] { return tool.state() == QProcess::NotRunning; }, patienceMs))
        tool.kill();
    return tool.readAllStandardOutput();
}
