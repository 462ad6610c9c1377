#include "store/KeptRows.h"

#include "store/Logging.h"
#include "store/PendingRowFile.h"
#include "store/SpoolFile.h"
#include "store/StoredRows.h"

#include <QSqlDatabase>

#include <algorithm>
#include <optional>

namespace {

void warn(const QString &path, const QString &what)
{
    qCWarning(lcStore).noquote().nospace() << "InsertSerialData::createConnection : [ERROR] " << what << " : " << path;
}

void warnSetAside(const QString &path, const QString &aside)
{
    qCWarning(lcStore).noquote().nospace()
        << "InsertSerialData::createConnection : [ERROR] damaged : " << path << " : set aside as : " << aside;
}

/// The id that a stored row must be above to be looked for where nothing is known of it.
qint64 beforeNewest(qint64 newest, const std::vector<PendingRow> &rows)
{
    return std::max<qint64>(0, newest - std::max<qint64>(newestRowsSearched, qint64(rows.size())));
}

/// Ids begin anew in a recording that was replaced; what is read must not say then that rows were stored long ago.
void correctStoredUpTo(SpoolFile &spool, KeptRows &kept, qint64 newest)
{
    if (kept.rows.empty() || kept.storedUpTo <= newest)
        return;
    SpoolFile::Change change;
    change.storedUpTo = kept.storedUpTo = newest;
    spool.write(change);
}

void takeInSpool(SpoolFile &spool, const SpoolFile::Content &content, KeptRows &kept)
{
    kept.rows = content.rows;
    if (content.state == SpoolFile::State::Unreadable)
        warn(spool.path(), spool.errorText());
    if (content.state != SpoolFile::State::Damaged)
        return;
    kept.setAside = SpoolFile::setAside(spool.path());
    warnSetAside(spool.path(), kept.setAside);
    SpoolFile::Change saved;
    saved.rows = content.rows;
    saved.storedUpTo = kept.storedUpTo;
    saved.takenIn = content.takenIn;
    if (!kept.setAside.isEmpty() && !saved.rows.empty() && !spool.write(saved))
        warn(spool.path(), spool.errorText());
}

void putAway(const PendingRowFile &file, bool isDamaged, KeptRows &kept)
{
    if (isDamaged)
        warnSetAside(file.path(), kept.setAside = file.setAside());
    else
        file.remove();
}

/// The file goes once its rows are in the spool, together with its digest: an interruption takes nothing in twice.
void takeInSideFile(const PendingRowFile &file, const QSqlDatabase &recording, SpoolFile &spool,
                    const QByteArray &takenIn, qint64 newest, KeptRows &kept)
{
    const PendingRowFile::Content content = file.read();
    if (content.digest == takenIn) {
        putAway(file, content.damaged, kept);
        return;
    }
    SpoolFile::Change change;
    change.rows = content.rows;
    change.storedUpTo = kept.storedUpTo;
    change.takenIn = content.digest;
    const QSqlError error = removeStoredRows(recording, change.rows, int(change.rows.size()),
                                             beforeNewest(newest, change.rows), PerhapsStored::AsOneBatch);
    kept.highestNumber = numberAfter(kept.highestNumber);
    for (PendingRow &row : change.rows)
        row.number = kept.highestNumber++;
    if (error.type() != QSqlError::NoError || !spool.write(change)) {
        warn(file.path(), error.type() != QSqlError::NoError ? error.text() : spool.errorText());
        return;
    }
    putAway(file, content.damaged, kept);
    kept.rows.insert(kept.rows.end(), change.rows.cbegin(), change.rows.cend());
}

} // namespace

KeptRows takeInKeptRows(const QSqlDatabase &recording, const QString &databaseFile)
{
    SpoolFile spool(SpoolFile::pathOf(databaseFile));
    const SpoolFile::Content content = spool.read();
    const std::optional<qint64> newest = newestRowId(recording);
    KeptRows kept;
    if (content.state == SpoolFile::State::Whole && !content.rows.empty())
        kept.storedUpTo = content.storedUpTo;
    else if (content.state == SpoolFile::State::Damaged)
        kept.storedUpTo = std::min(content.storedUpTo, beforeNewest(newest.value_or(0), content.rows));
    else
        kept.storedUpTo = newest.value_or(0);
    takeInSpool(spool, content, kept);
    if (!kept.rows.empty())
        kept.highestNumber = kept.rows.back().number;
    if (newest)
        correctStoredUpTo(spool, kept, *newest);

    const int count = int(kept.rows.size());
    const bool isAsked =
        count == 0 ||
        removeStoredRows(recording, kept.rows, count, kept.storedUpTo, PerhapsStored::InEarlyBatches).type() ==
            QSqlError::NoError;
    kept.perhapsStored = isAsked ? 0 : count;
    if (const PendingRowFile sideFile(databaseFile); sideFile.exists() && newest)
        takeInSideFile(sideFile, recording, spool, content.takenIn, *newest, kept);
    return kept;
}
