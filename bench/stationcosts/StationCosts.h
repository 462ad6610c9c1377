#pragma once

#include "ServedReadings.h"
#include "loggersim/Fleet.h"
#include "stationcosts/CostTable.h"
#include "stationcosts/PollTimes.h"
#include "stationcosts/ProcessFigures.h"
#include "support/NullSinkServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <memory>
#include <vector>

class StationRun;

struct CostOptions
{
    int loggers = 64;
    int hostileLoggers = 0; ///< beside those
    QString fault;          ///< of the hostile loggers
    int seconds = 60;
    int openings = 5;            ///< of each recording; 0: the large one is not needed
    int largeGiB = 3;            ///< size of the large recording
    bool withDiagnostics = true; ///< the station prints its diagnostic lines, as it does unless told otherwise
    QString folder;              ///< for recordings, logs and the table
};

/// The whole benchmark: loggers in this process, the station beside it, every figure in one table.
class StationCosts
{
public:
    explicit StationCosts(const CostOptions &options);
    ~StationCosts();

    /// False, with the reason in errorString(), when something did not run to its end. What was measured until then
    /// is in the table.
    bool run();
    QString errorString() const { return m_error; }
    const CostTable &table() const { return m_table; }
    bool hasLostReadings() const { return m_hasLostReadings; }

private:
    struct Used
    {
        double processorShare = 0;
        MemoryUse memory;
    };
    struct Opened
    {
        std::vector<double> openSeconds;
        std::vector<double> stopSeconds;
    };

    bool setUp();
    bool addLoggers();
    bool spoilLoggers();
    bool prepareProject(const QString &name);
    void setFaults(const QString &fault);

    bool measureEmptyProgram();
    bool measureRecording();
    bool record(StationRun &station, Used *used);
    void noteProgress(const StationRun &station, double processorBefore);
    /// Into the log that tells how a long run goes.
    void note(const QString &text) const;
    void addReadings();
    void addUse(const Used &used);
    void addStretches(const QString &figuresFile);
    void addPollTimes();

    bool measureOpenings();
    bool openAndStop(const QString &name, Opened *opened);
    void addOpenings(const Opened &empty, const Opened &large);

    bool fail(const QString &reason);
    QString file(const QString &name) const { return m_folder.filePath(name); }
    QString program(const QString &name) const;
    QProcessEnvironment environment(const QString &logRules) const;

    const CostOptions m_options;
    const QDir m_folder;
    QString m_error;
    CostTable m_table;
    bool m_hasLostReadings = false;

    NullSinkServer m_soundServer;
    QTemporaryDir m_config;
    std::vector<std::unique_ptr<ServedReadings>> m_served;
    loggersim::Fleet m_fleet;
    PollTimes m_pollTimes;
    bool m_isMeasuring = false;
    QElapsedTimer m_clock;
    Used m_empty;
    MemoryUse m_atFirst;
};
