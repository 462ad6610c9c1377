// What happens to a recording while the station has it open: somebody reads it for long, deletes, moves or replaces it,
// makes it read-only, or its folder is gone for a while, as a network drive may be. What an operator has taken away
// counts as kept: all its files together hold every reading once.

#include "RecordingReader.h"
#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QUuid>

namespace {

constexpr int loggers = 8;
constexpr int longestRunMs = 5000;
constexpr int longestTroubleMs = 5000;
constexpr int longReadingMs = 60000;
constexpr int splashMs = 200;

const QString committed = QStringLiteral("commit transaction : true");

/// A recording without rows, as another project would have it.
bool makeEmptyRecording(const QString &from, const QString &path)
{
    const QString name = QUuid::createUuid().toString();
    bool isMade = QFile::copy(from, path);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        isMade = isMade && database.open() && QSqlQuery(database).exec(QStringLiteral("delete from ostrivane")) &&
                 QSqlQuery(database).exec(QStringLiteral("delete from sqlite_sequence"));
    }
    QSqlDatabase::removeDatabase(name);
    return isMade;
}

class Meddler
{
public:
    explicit Meddler(Shard &shard)
        : m_shard(shard), m_tortured(shard, loggers), m_file(m_tortured.e2e().recordingFile())
    {
        m_tortured.watch().setSplash(splashMs);
        // For whom nothing is read-only, it cannot be made so.
        m_tortured.watch().takeRights();
    }

    void run()
    {
        for (int round = 0; round < m_shard.order().rounds; ++round) {
            if (!meddleOnce(round))
                return;
        }
        m_tortured.conclude([this] { return allRows(); });
    }

private:
    enum class Trouble { Reader, Deleted, Moved, Replaced, ReadOnly, FolderGone };

    bool meddleOnce(int round)
    {
        static constexpr const char *names[] = {"reader", "deleted", "moved", "replaced", "read-only", "folder gone"};
        const bool isLongReading = round == 0 && !m_shard.order().isShort;
        const auto trouble = isLongReading ? Trouble::Reader : Trouble(m_shard.below(6));
        const int before = m_shard.below(longestRunMs);
        const int during = isLongReading ? longReadingMs : m_shard.below(longestTroubleMs);
        const bool isKilled = m_shard.below(3) == 0;
        const QString how = QStringLiteral("%1 after %2 ms for %3 ms, then %4")
                                .arg(QLatin1String(names[int(trouble)]))
                                .arg(before)
                                .arg(during)
                                .arg(isKilled ? QStringLiteral("killed") : QStringLiteral("ended"));
        if (!m_tortured.start())
            return false;
        StationProcess &station = m_tortured.station();
        const bool isRunning = m_tortured.e2e().waitUntil([&] { return station.count(committed) > 0; }) &&
                               wait(before) && meddle(trouble, during) && wait(m_shard.below(longestRunMs));
        if (!isRunning)
            m_shard.find(how + QStringLiteral(": ") + QString::fromLocal8Bit(station.lastWords()));
        else if (isKilled)
            station.end(SIGKILL);
        else
            m_tortured.end();
        m_tortured.endRound(how);
        return isRunning;
    }

    bool wait(int milliseconds)
    {
        const QDeadlineTimer moment(milliseconds);
        return m_tortured.e2e().waitUntil([&] { return moment.hasExpired(); });
    }

    bool meddle(Trouble trouble, int milliseconds)
    {
        const QString aside = m_shard.path("aside-") + QString::number(m_asides);
        const QString away = m_tortured.folder() + QStringLiteral("-away");
        switch (trouble) {
        case Trouble::Reader: {
            RecordingReader reader(m_file);
            return reader.hold() && wait(milliseconds);
        }
        case Trouble::Deleted:
        case Trouble::Moved:
            ++m_asides;
            return QFile::rename(m_file, aside) && wait(milliseconds);
        case Trouble::Replaced: {
            ++m_asides;
            const QString other = aside + QStringLiteral("-other");
            return makeEmptyRecording(m_file, other) && QFile::rename(m_file, aside) && QFile::rename(other, m_file) &&
                   wait(milliseconds);
        }
        case Trouble::ReadOnly: {
            QFile file(m_file);
            const QFile::Permissions permissions = file.permissions();
            return file.setPermissions(QFile::ReadOwner | QFile::ReadUser) && wait(milliseconds) &&
                   file.setPermissions(permissions);
        }
        case Trouble::FolderGone:
            return QDir().rename(m_tortured.folder(), away) && wait(milliseconds) &&
                   QDir().rename(away, m_tortured.folder());
        }
        return false;
    }

    /// Once each that any of the files has; what waits while its file is taken away may come into the next one as well.
    QList<RecordedRow> allRows()
    {
        QList<RecordedRow> all = m_tortured.e2e().rows();
        for (int i = 0; i < m_asides; ++i) {
            RecordingReader aside(m_shard.path("aside-") + QString::number(i));
            QMultiMap<QString, quint32> known;
            for (const RecordedRow &row : qAsConst(all))
                known.insert(row.serial + ServedReadings::textOf(row), row.time);
            for (const RecordedRow &row : aside.rows()) {
                if (known.remove(row.serial + ServedReadings::textOf(row), row.time) == 0)
                    all.append(row);
            }
            if (const QString integrity = aside.integrity(); integrity != QLatin1String("ok")) {
                ++m_shard.result().unsound;
                m_shard.find(QStringLiteral("integrity of file %1 taken away: %2").arg(i).arg(integrity));
            }
        }
        return all;
    }

    Shard &m_shard;
    TorturedStation m_tortured;
    const QString m_file;
    int m_asides = 0;
};

} // namespace

void runMeddling(Shard &shard)
{
    Meddler(shard).run();
}
