// The station is told to end: by signals and by the end of the desktop session, at random moments, also while a menu or
// a box is open.

#include "LatenessWatch.h"
#include "SessionManager.h"
#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"
#include "VirtualScreen.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr int loggers = 8;
constexpr int longestRunMs = 5000;
constexpr int longestOpenMs = 2000;
constexpr int splashMs = 300;
constexpr int mayTakeMs = 2000;

const QString title = QStringLiteral("Sorvanto Lite");

/// In the window; the menu's names stand there.
constexpr int menuLine = 20;
constexpr int projectMenu = 227;
constexpr int recordMenu = 312;
constexpr int screenMenu = 398;
constexpr int helpButton = 485;

/// Whether a program takes care of the signal, which ends it otherwise.
bool handles(qint64 processId, int signalNumber)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("SigCgt:"))
            return line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signalNumber - 1) & 1;
    }
    return false;
}

class Ender
{
public:
    explicit Ender(Shard &shard) : m_shard(shard), m_tortured(shard, loggers)
    {
        m_tortured.watch().setSplash(splashMs);
    }

    void run()
    {
        if (!m_screen.start() || !m_session.start()) {
            m_shard.find(QStringLiteral("no screen, or no session"));
            return;
        }
        m_tortured.e2e().setVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
        m_tortured.e2e().setVariable(QStringLiteral("QT_XCB_GL_INTEGRATION"), QStringLiteral("none"));
        m_tortured.e2e().setVariable(QStringLiteral("DISPLAY"), m_screen.display());
        m_tortured.e2e().setVariable(QStringLiteral("SESSION_MANAGER"), m_session.address());
        for (int round = 0; round < m_shard.order().rounds; ++round) {
            if (!endOnce())
                return;
        }
        m_tortured.conclude();
    }

private:
    bool endOnce()
    {
        if (!m_tortured.start())
            return false;
        static constexpr int signalNumbers[] = {SIGTERM, SIGHUP, SIGINT};
        const bool endsSession = m_shard.below(3) == 0;
        const int signalNumber = signalNumbers[m_shard.below(3)];
        QString how =
            endsSession ? QStringLiteral("end of the session") : QStringLiteral("signal %1").arg(signalNumber);
        if (!awaitMoment(endsSession, signalNumber, how)) {
            m_shard.find(how + QStringLiteral(": ") + QString::fromLocal8Bit(m_tortured.station().lastWords()));
            m_tortured.station().end(SIGKILL);
        } else {
            end(endsSession, signalNumber, how);
        }
        m_tortured.settle();
        for (int i = 0; i < loggers; ++i) {
            const int end = m_tortured.audit().servedBefore(i) + m_shown.value(i);
            m_tortured.audit().excuseUnless(i, [end](int reading) { return reading < end; });
        }
        m_tortured.noteRound(how);
        return true;
    }

    bool awaitMoment(bool endsSession, int signalNumber, QString &how)
    {
        E2eFixture &e2e = m_tortured.e2e();
        const auto isReady = [&] {
            return endsSession ? m_session.hasClient() : handles(m_tortured.station().processId(), signalNumber);
        };
        if (!e2e.waitUntil(isReady))
            return false;
        static constexpr int places[] = {0, 0, projectMenu, recordMenu, screenMenu, helpButton, helpButton};
        const int place = places[m_shard.below(7)];
        const int milliseconds = m_shard.below(place > 0 ? longestOpenMs : longestRunMs);
        how += QStringLiteral(" %1 ms after %2")
                   .arg(milliseconds)
                   .arg(place > 0 ? QStringLiteral("a click at %1").arg(place) : QStringLiteral("the start"));
        if (place > 0 && !m_screen.click(title, place, menuLine))
            return false;
        const QDeadlineTimer moment(milliseconds);
        return e2e.waitUntil([&] { return moment.hasExpired(); });
    }

    void end(bool endsSession, int signalNumber, const QString &how)
    {
        StationProcess &station = m_tortured.station();
        // What is shown from now on may come when the recording has stopped already.
        for (int i = 0; i < loggers; ++i)
            m_shown[i] = m_tortured.watch().shown(m_tortured.e2e().logger(i).port());
        m_lateness.take();
        QElapsedTimer time;
        time.start();
        if (endsSession)
            m_session.endSession();
        const bool isOver = station.end(endsSession ? 0 : signalNumber);
        const qint64 took = time.elapsed();
        if (!isOver || !station.hasSucceeded())
            m_shard.find(how + QStringLiteral(": ") + QString::fromLocal8Bit(station.lastWords()));
        else if (!m_shard.order().isShort && took > mayTakeMs + splashMs + m_lateness.take())
            m_shard.find(how + QStringLiteral(": it took %1 ms").arg(took));
        if (QFileInfo::exists(m_tortured.e2e().spool()))
            m_shard.find(how + QStringLiteral(": leaves the spool"));
        if (!isOver)
            station.end(SIGKILL);
    }

    Shard &m_shard;
    VirtualScreen m_screen;
    SessionManager m_session;
    LatenessWatch m_lateness;
    TorturedStation m_tortured;
    QMap<int, int> m_shown;
};

} // namespace

void runSignals(Shard &shard)
{
    Ender(shard).run();
}
