// The power is cut over and over: the station is killed, and what its folder holds then is made anew from what was
// synced and a random part of what was not. What was certain to be on the disk is asked for, and what had been shown
// for more than a second.

#include "DiskModel.h"
#include "LatenessWatch.h"
#include "RecordingReader.h"
#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <cstring>
#include <ctime>
#include <iterator>

using watch::Operation;
using watch::OperationRecord;

namespace {

constexpr int loggers = 8;
constexpr int longestRunMs = 7000;
constexpr int shortSplashMs = 200;
constexpr qint64 nsPerMs = 1000000;
constexpr qint64 mayWaitMs = 1000;

const QString recordingName = QStringLiteral("Kitchen.dat");

qint64 monotonicNs()
{
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

/// Rows that wait in a spool, read as SQLite reads it.
QList<RecordedRow> waitingRows(const QString &path)
{
    const QString name = QStringLiteral("waiting");
    QList<RecordedRow> rows;
    {
        QSqlDatabase spool = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        spool.setDatabaseName(path);
        spool.open();
        QSqlQuery query(spool);
        query.exec(QStringLiteral("select serialno, channel1, channel2, pointDate from waiting"));
        while (query.next())
            rows.append({QString::fromUtf8(query.value(0).toByteArray()), query.value(1), query.value(2),
                         query.value(3).toUInt()});
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

/// What the log tells of times.
class Times
{
public:
    explicit Times(const QByteArray &log)
    {
        OperationRecord record = {};
        for (int at = 0; at + int(sizeof(record)) <= log.size(); at += int(sizeof(record) + record.size)) {
            std::memcpy(&record, log.constData() + at, sizeof(record));
            take(record);
        }
    }

    /// When the logger's reading of that number, from 0 in this run, was shown; 0: it was not.
    qint64 shownNs(quint16 port, int reading) const
    {
        for (const auto &[count, time] : m_shown.value(port)) {
            if (count > reading)
                return time;
        }
        return 0;
    }
    qint64 lastNs() const { return m_last; }
    /// The longest sync, one that was under way at @p cut included.
    qint64 longestSyncNs(qint64 cut) const
    {
        qint64 longest = m_longestSync;
        for (const qint64 begin : m_syncs)
            longest = std::max(longest, cut - begin);
        return longest;
    }

private:
    void take(const OperationRecord &record)
    {
        m_last = record.timeNs;
        if (record.operation == Operation::Shown)
            m_shown[quint16(record.file)].append({int(record.offset), record.timeNs});
        else if (record.operation == Operation::SyncBegin)
            m_syncs.insert(record.file, record.timeNs);
        else if (record.operation == Operation::SyncEnd && m_syncs.contains(record.file))
            m_longestSync = std::max(m_longestSync, record.timeNs - m_syncs.take(record.file));
    }

    QMap<quint16, QList<QPair<int, qint64>>> m_shown;
    QMap<quint64, qint64> m_syncs;
    qint64 m_longestSync = 0;
    qint64 m_last = 0;
};

class PowerCutter
{
public:
    explicit PowerCutter(Shard &shard) : m_shard(shard), m_tortured(shard, loggers)
    {
        m_tortured.watch().keepLog(true);
        m_tortured.watch().setSplash(shortSplashMs);
        m_tortured.e2e().setVariable(QStringLiteral("XDG_RUNTIME_DIR"), m_shard.path("runtime"));
    }

    void run()
    {
        for (int round = 0; round < m_shard.order().rounds; ++round) {
            if (!cutOnce())
                return;
        }
        m_tortured.watch().keepLog(false);
        m_tortured.conclude();
        m_shard.result().remarks += QStringLiteral("part %1: %2 readings were synced, %3 more shown for a second")
                                        .arg(m_shard.order().number)
                                        .arg(m_synced)
                                        .arg(m_longShown);
    }

private:
    struct Target
    {
        const char *operation;
        const char *suffix;
        int most;
    };

    QString drawOrder()
    {
        static constexpr Target targets[] = {
            {"write", ".dat", 40},       {"sync", ".dat", 6},        {"sync", ".spool-wal", 14},
            {"write", ".spool-wal", 60}, {"sync", ".events-wal", 6}, {"write", ".dat", 10},
            {"rename", "", 4},           {"remove", "", 6},          {"write", ".salvage", 12},
            {"sync", ".salvage", 2},     {"sync", "", 12},           {"create", "", 10},
        };
        static const char *const moments[] = {"before", "after"};
        if (m_shard.below(2) == 0)
            return {};
        const Target &target = targets[m_shard.below(int(std::size(targets)))];
        return QStringLiteral("%1:%2:%3:%4")
            .arg(QLatin1String(target.operation), QLatin1String(target.suffix))
            .arg(1 + m_shard.below(target.most))
            .arg(QLatin1String(moments[m_shard.below(2)]));
    }

    bool cutOnce()
    {
        QDir(m_shard.path("runtime")).removeRecursively();
        QDir().mkpath(m_shard.path("runtime"));
        DiskModel disk(m_tortured.folder());
        const QString order = drawOrder();
        const int milliseconds = order.isEmpty() ? m_shard.below(longestRunMs) : longestRunMs;
        m_tortured.watch().setKill(order);
        m_lateness.take();
        if (!m_tortured.start())
            return false;
        // The first start writes the project, which is not what is cut off.
        if (m_shard.result().rounds == 0)
            disk = DiskModel(m_tortured.folder());
        const QDeadlineTimer moment(milliseconds);
        const bool isAlive = m_tortured.e2e().waitUntil([&] { return moment.hasExpired(); });
        const qint64 cutNs = monotonicNs();
        const bool hasKilledItself = m_tortured.watch().hasKilled();
        if (!isAlive && !hasKilledItself)
            m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
        m_tortured.station().end(SIGKILL);

        const QByteArray log = m_tortured.watch().log();
        disk.play(log);
        const Times times(log);
        demand(disk, times, hasKilledItself ? times.lastNs() : cutNs);
        const DiskModel::Content content = disk.afterCut(m_shard.random());
        if (!DiskModel::put(content, m_tortured.folder()))
            m_shard.find(QStringLiteral("the folder cannot be written"));
        m_tortured.noteRound(QStringLiteral("cut after %1 ms %2").arg(milliseconds).arg(order));
        return true;
    }

    /// What must be there whatever else is.
    void demand(const DiskModel &disk, const Times &times, qint64 cutNs)
    {
        const QList<RecordedRow> certain = certainRows(disk);
        const qint64 late = m_lateness.take() * nsPerMs;
        const qint64 before = cutNs - mayWaitMs * nsPerMs - times.longestSyncNs(cutNs) - late;
        m_tortured.settle();
        E2eFixture &e2e = m_tortured.e2e();
        ReadingAudit &audit = m_tortured.audit();
        for (int i = 0; i < e2e.loggerCount(); ++i) {
            const int first = audit.servedBefore(i);
            const quint16 port = e2e.logger(i).port();
            audit.excuseUnless(i, [&](int reading) {
                if (audit.isAmong(i, reading, certain)) {
                    ++m_synced;
                    return true;
                }
                const qint64 shown = times.shownNs(port, reading - first);
                const bool isLongShown = !m_shard.order().isShort && shown > 0 && shown < before;
                m_longShown += isLongShown ? 1 : 0;
                return isLongShown;
            });
        }
    }

    QList<RecordedRow> certainRows(const DiskModel &disk) const
    {
        const QString folder = m_shard.path("certain");
        if (!DiskModel::put(disk.synced(), folder))
            return {};
        const QString path = folder + QLatin1Char('/') + recordingName;
        QList<RecordedRow> rows = waitingRows(path + QStringLiteral(".spool"));
        if (RecordingReader recording(path); recording.integrity() == QLatin1String("ok"))
            rows += recording.rows();
        return rows;
    }

    Shard &m_shard;
    TorturedStation m_tortured;
    LatenessWatch m_lateness;
    int m_synced = 0;
    int m_longShown = 0;
};

} // namespace

void runPowerCuts(Shard &shard)
{
    PowerCutter(shard).run();
}
