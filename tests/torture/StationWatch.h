#pragma once

#include "watch/WatchProtocol.h"

#include <QByteArray>
#include <QString>

class E2eFixture;

/// Loads the library stationwatch into the stations of a fixture, and reads what it tells.
class StationWatch
{
public:
    /// @p folder is for its own files; @p watched is the folder whose files are watched.
    StationWatch(const QString &folder, const QString &watched);
    ~StationWatch();
    StationWatch(const StationWatch &) = delete;
    StationWatch &operator=(const StationWatch &) = delete;

    /// The splash stays for so long; below 0 as long as it does.
    void setSplash(int milliseconds) { m_splash = milliseconds; }
    /// OPERATION:SUFFIX:N:MOMENT of TORTURE_KILL; empty: it is ended from outside.
    void setKill(const QString &kill) { m_kill = kill; }
    /// Files that are read-only are so for the superuser's station, too.
    void takeRights() { m_takesRights = true; }
    void keepLog(bool isKept) { m_keepsLog = isKept; }
    /// To be called before each start of the station.
    bool prepare(E2eFixture &e2e);

    /// Readings of the logger at that port that the station has shown in its last run.
    int shown(quint16 port) const;
    bool hasKilled() const;
    /// By the station's own clock, since its start.
    qint64 passedSeconds() const;
    QByteArray log() const;

private:
    QString path(const char *name) const;

    const QString m_folder;
    const QString m_watched;
    int m_splash = -1;
    QString m_kill;
    bool m_keepsLog = false;
    bool m_takesRights = false;
    watch::WatchState *m_state = nullptr;
};
