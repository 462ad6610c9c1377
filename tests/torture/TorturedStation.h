#pragma once

#include "E2eFixture.h"
#include "ReadingAudit.h"
#include "StationWatch.h"

#include <functional>

class Shard;

/// A recording station with its loggers, whose every reading is followed from round to round, each a run of the
/// station.
class TorturedStation
{
public:
    TorturedStation(Shard &shard, int loggers, int usbLoggers = 0);

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
    /// Ends a run once no reading is on its way any more. Told to the shard when that is no clean end.
    void finish();
    /// Ends it at once, cleanly.
    void end();
    /// What must be there is what the station of this run has said that it showed, as far as @p counts says so of a
    /// logger and the time when it was served. For a single run, ended already.
    void demandShown(const std::function<bool(int logger, qint64 time)> &counts);
    /// Compares all that was served with the rows, and looks through the recording.
    void judge(const QList<RecordedRow> &rows);
    /// A last run of some readings, and the judgement. @p rows gets them then; without, they are those of the
    /// recording.
    void conclude(const std::function<QList<RecordedRow>()> &rows = {});

private:
    ServedReadings &served(int logger);
    QStringList shownLines() const;
    static QString prepared(const QString &folder);

    Shard &m_shard;
    const QString m_folder;
    E2eFixture m_e2e;
    StationWatch m_watch;
    ReadingAudit m_audit;
    int m_salvages = 0;
    int m_replays = 0;
};
