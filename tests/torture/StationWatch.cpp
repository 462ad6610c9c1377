#include "StationWatch.h"

#include "E2eFixture.h"

#include <QFile>

#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

using watch::LoggerCount;
using watch::WatchState;

StationWatch::StationWatch(const QString &folder, const QString &watched) : m_folder(folder), m_watched(watched)
{
    const int file = ::open(qPrintable(path("state")), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ::ftruncate(file, sizeof(WatchState)) != 0)
        qFatal("no file for the state of the station");
    void *memory = ::mmap(nullptr, sizeof(WatchState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED)
        qFatal("no memory for the state of the station");
    m_state = static_cast<WatchState *>(memory);
    ::close(file);
}

StationWatch::~StationWatch()
{
    ::munmap(m_state, sizeof(WatchState));
}

QString StationWatch::path(const char *name) const
{
    return m_folder + QLatin1String("/watch-") + QLatin1String(name);
}

bool StationWatch::prepare(E2eFixture &e2e)
{
    m_state->isKilled = 0;
    m_state->passedNs = 0;
    for (LoggerCount &count : m_state->loggers) {
        count.port = 0;
        count.asked = 0;
        count.taken = 0;
        count.shown = 0;
    }
    // The variable knows no blanks, which there may be on the way to the build.
    const QString library = path("library");
    if (!QFile::exists(library) && !QFile::link(QStringLiteral(STATION_WATCH), library))
        return false;
    e2e.setVariable(QStringLiteral("LD_PRELOAD"), library);
    e2e.setVariable(QStringLiteral("TORTURE_STATE"), path("state"));
    e2e.setVariable(QStringLiteral("TORTURE_FOLDER"), m_watched);
    e2e.setVariable(QStringLiteral("TORTURE_KILL"), m_kill);
    e2e.setVariable(QStringLiteral("TORTURE_LOG"), m_keepsLog ? path("log") : QString());
    e2e.setVariable(QStringLiteral("TORTURE_SPLASH"), m_splash < 0 ? QString() : QString::number(m_splash));
    e2e.setVariable(QStringLiteral("TORTURE_RIGHTS"), m_takesRights ? QStringLiteral("none") : QString());
    QFile log(path("log"));
    return !log.exists() || log.remove();
}

int StationWatch::shown(quint16 port) const
{
    for (const LoggerCount &count : m_state->loggers) {
        if (count.port == port)
            return int(count.shown);
    }
    return 0;
}

qint64 StationWatch::passedSeconds() const
{
    return m_state->passedNs / 1000000000;
}

bool StationWatch::hasKilled() const
{
    return m_state->isKilled != 0;
}

QByteArray StationWatch::log() const
{
    QFile file(path("log"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
