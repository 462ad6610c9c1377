// The station is killed over and over: at random moments, shortly after it has begun something, and at a chosen write,
// sync or renaming of one of its files, so also in the middle of a commit, of a replay and of a salvage.

#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <QDeadlineTimer>

#include <iterator>

namespace {

constexpr int loggers = 8;
constexpr int longestRunMs = 7000;
constexpr int longestEndMs = 400;
constexpr int shortSplashMs = 200;

const QString opened = QStringLiteral("SorvantoMain::createInsertSerialData");

struct Target
{
    const char *operation;
    const char *suffix;
    int most; ///< of such operations to come in a run
};

constexpr Target inCommits[] = {
    {"write", ".dat", 7},
    {"write", ".dat", 18},
    {"sync", ".dat", 4},
};
constexpr Target anywhere[] = {
    {"write", ".dat", 12},        {"write", ".spool-wal", 25}, {"sync", ".spool-wal", 8},
    {"write", ".spool", 4},       {"create", ".spool", 1},     {"remove", ".spool-journal", 1},
    {"write", ".events-wal", 20}, {"sync", ".events-wal", 8},  {"rename", ".tpc", 3},
    {"create", "", 12},
};
constexpr Target inEnding[] = {
    {"remove", ".spool", 1}, {"remove", ".spool-wal", 1}, {"write", ".dat", 10},
    {"sync", ".dat", 3},     {"rename", ".tpc", 2},
};
constexpr Target inSalvage[] = {
    {"write", ".salvage", 12}, {"sync", ".salvage", 2}, {"rename", ".salvaged", 1}, {"rename", ".dat", 1},
    {"rename", "", 4},         {"write", ".dat", 3},    {"create", ".salvage", 1},
};

const char *const beginnings[] = {
    "InsertSerialData::insertNow : starttime",
    "begin transaction",
    "commit transaction",
    "SorvantoMain::createInsertSerialData",
    "InsertSerialData::createTable",
    "SorvantoMain::reportSavedRows",
};

class Killer
{
public:
    explicit Killer(Shard &shard) : m_shard(shard), m_tortured(shard, loggers) {}

    void run()
    {
        for (int round = 0; round < m_shard.order().rounds; ++round) {
            // The splash's own wait is the same in every run; one of a few has it.
            m_tortured.watch().setSplash(m_shard.below(8) == 0 ? -1 : shortSplashMs);
            const QString how = killOnce();
            if (how.isEmpty())
                return;
            m_tortured.endRound(how);
        }
        m_tortured.conclude();
    }

private:
    /// How it was killed; empty when there is nothing to go on with.
    QString killOnce()
    {
        const int kind = m_shard.below(100);
        m_isInCommit = false;
        if (m_mayBeTorn && kind < 70)
            return killDuring(inSalvage[m_shard.below(int(std::size(inSalvage)))]);
        if (kind < 25)
            return killAt(m_shard.below(longestRunMs));
        if (kind < 33)
            return killWhileEnding();
        if (kind < 43)
            return killSoonAfter(QString::fromLatin1(beginnings[m_shard.below(int(std::size(beginnings)))]));
        if (kind < 83) {
            m_isInCommit = true;
            return killDuring(inCommits[m_shard.below(int(std::size(inCommits)))]);
        }
        return killDuring(anywhere[m_shard.below(int(std::size(anywhere)))]);
    }

    QString killAt(int milliseconds)
    {
        const QDeadlineTimer moment(milliseconds);
        return kill(
            {}, [&] { return moment.hasExpired(); }, QStringLiteral("killed after %1 ms").arg(milliseconds));
    }

    QString killSoonAfter(const QString &line)
    {
        const QDeadlineTimer latest(longestRunMs + m_shard.below(1000));
        const int times = 1 + m_shard.below(3);
        const int more = m_shard.below(30);
        const auto hasBegun = [&] {
            return m_tortured.station().count(line) >= times || latest.hasExpired();
        };
        QDeadlineTimer moment(QDeadlineTimer::Forever);
        const auto isTime = [&] {
            if (moment.isForever() && hasBegun())
                moment.setRemainingTime(more);
            return moment.hasExpired();
        };
        return kill({}, isTime, QStringLiteral("killed %1 ms after line %2 \"%3\"").arg(more).arg(times).arg(line));
    }

    QString orderFor(const Target &target)
    {
        static const char *const moments[] = {"before", "half", "after"};
        return QStringLiteral("%1:%2:%3:%4")
            .arg(QLatin1String(target.operation), QLatin1String(target.suffix))
            .arg(1 + m_shard.below(target.most))
            .arg(QLatin1String(moments[m_shard.below(int(std::size(moments)))]));
    }

    QString killDuring(const Target &target)
    {
        const QString order = orderFor(target);
        const QDeadlineTimer latest(longestRunMs + m_shard.below(1000));
        return kill(
            order, [&] { return latest.hasExpired(); }, QStringLiteral("killed at ") + order);
    }

    /// It has been told to end, and is nearly done with it.
    QString killWhileEnding()
    {
        const bool isCounted = m_shard.below(2) == 0;
        const QString order = isCounted ? orderFor(inEnding[m_shard.below(int(std::size(inEnding)))]) : QString();
        const int before = m_shard.below(longestRunMs);
        const int more = isCounted ? longestRunMs : m_shard.below(longestEndMs);
        const StationProcess &station = m_tortured.station();
        QDeadlineTimer end(QDeadlineTimer::Forever);
        QDeadlineTimer moment(QDeadlineTimer::Forever);
        const auto isTime = [&] {
            if (end.isForever() && station.count(opened) > 0)
                end.setRemainingTime(before);
            if (end.hasExpired() && moment.isForever()) {
                ::kill(pid_t(station.processId()), SIGTERM);
                moment.setRemainingTime(more);
            }
            return moment.hasExpired();
        };
        return kill(order, isTime, QStringLiteral("killed %1 ms after it was told to end %2").arg(more).arg(order));
    }

    template <typename Condition>
    QString kill(const QString &order, const Condition &isTime, const QString &how)
    {
        m_tortured.watch().setKill(order);
        if (!m_tortured.start())
            return {};
        StationProcess &station = m_tortured.station();
        const bool isAlive = m_tortured.e2e().waitUntil(isTime);
        const bool hasKilledItself = m_tortured.watch().hasKilled();
        m_mayBeTorn = m_isInCommit && hasKilledItself;
        if (!isAlive && !hasKilledItself && !station.hasSucceeded())
            m_shard.find(how + QStringLiteral(": ") + QString::fromLocal8Bit(station.lastWords()));
        station.end(SIGKILL);
        return hasKilledItself || order.isEmpty() ? how : how + QStringLiteral(" (did not come to it)");
    }

    Shard &m_shard;
    TorturedStation m_tortured;
    bool m_isInCommit = false;
    bool m_mayBeTorn = false;
};

} // namespace

void runKills(Shard &shard)
{
    Killer(shard).run();
}
