#pragma once

#include "E2eFixture.h"
#include "ReadingAudit.h"
#include "StationWatch.h"

class Shard;

/// A recording station with its loggers, whose every reading is followed from round to round, each a run of the
/// station.
class TorturedStation
{
public:
    TorturedStation(Shard &shard, int loggers);

    E2eFixture &e2e() { return m_e2e; }
    StationProcess &station() { return m_e2e.station(); }
    StationWatch &watch() { return m_watch; }
    ReadingAudit &audit() { return m_audit; }
    QString folder() const { return m_folder; }

    /// Begins a round. False, told to the shard, when the station cannot be started.
    bool start();
    /// Ends it, once the station has gone. What it had not shown by then may be missing.
    void endRound(const QString &how);
    /// The same in two steps, for who asks for other readings: waits until all that the station was served is counted
    /// ...
    void settle();
    /// ... and closes the round.
    void noteRound(const QString &how);
    /// A last run that ends cleanly, and the comparison of all that was served with the recording.
    void conclude();

private:
    static QString prepared(const QString &folder);

    Shard &m_shard;
    const QString m_folder;
    E2eFixture m_e2e;
    StationWatch m_watch;
    ReadingAudit m_audit;
};
