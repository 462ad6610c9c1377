#include "store/KeptRows.h"

#include "store/Logging.h"
#include "store/PendingRowFile.h"
#include "store/SpoolReplacement.h"
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
void correctStoredUpTo(SpoolFile &spool, const SpoolFile::Content &content, KeptRows &kept, qint64 newest)
{
    if (content.rows.empty() || kept.storedUpTo <= newest)
        return;
    kept.storedUpTo = newest;
    SpoolChange change;
    change.storedUpTo = newest;
    if (content.state == SpoolFile::State::Whole)
        spool.write(change);
}

/// Where no row of the spool can be told from those stored by an earlier version, the newest are looked at.
qint64 storedUpToOf(const SpoolFile::Content &content, const SpoolChange &redo, qint64 newest)
{
    const qint64 known = redo.storedUpTo.value_or(content.storedUpTo);
    if (content.state == SpoolFile::State::Damaged || content.state == SpoolFile::State::Unreadable)
        return std::min(known, beforeNewest(newest, content.rows));
    const bool isKnown = redo.storedUpTo || (content.state == SpoolFile::State::Whole && !content.rows.empty());
    return isKnown ? known : newest;
}

void replaceDamaged(SpoolFile &spool, const QByteArray &takenIn, KeptRows &kept)
{
    SpoolChange saved;
    saved.rows = kept.rows;
    saved.storedUpTo = kept.storedUpTo;
    saved.takenIn = takenIn;
    QString error;
    if (!kept.rows.empty())
        kept.setAside = replaceSpool(spool.path(), saved, &error);
    if (kept.setAside.isEmpty()) {
        kept.setAside = SpoolFile::setAside(spool.path());
        kept.notInSpool = saved;
    }
    warnSetAside(spool.path(), kept.setAside);
    if (!error.isEmpty())
        warn(spool.path(), error);
}

void takeInSpool(SpoolFile &spool, const SpoolFile::Content &content, const SpoolChange &redo, KeptRows &kept)
{
    kept.rows = content.rows;
    kept.notInSpool = redo;
    kept.isUnreadable = content.state == SpoolFile::State::Unreadable;
    if (kept.isUnreadable)
        warn(spool.path(), spool.errorText());
    if (content.state == SpoolFile::State::Damaged)
        replaceDamaged(spool, content.takenIn, kept);
    if (!kept.notInSpool.isEmpty())
        kept.notInSpool.storedUpTo = kept.storedUpTo;
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

KeptRows takeInKeptRows(const QSqlDatabase &recording, const QString &databaseFile, const SpoolChange &redo)
{
    SpoolFile spool(SpoolFile::pathOf(databaseFile));
    KeptRows kept;
    const QString setAside = finishSpoolReplacement(spool.path());
    SpoolFile::Content content = spool.read();
    redo.applyTo(content.rows);
    const std::optional<qint64> newest = newestRowId(recording);
    kept.storedUpTo = storedUpToOf(content, redo, newest.value_or(0));
    if (newest)
        correctStoredUpTo(spool, content, kept, *newest);
    takeInSpool(spool, content, redo, kept);
    if (kept.setAside.isEmpty())
        kept.setAside = setAside;
    if (!kept.rows.empty())
        kept.highestNumber = kept.rows.back().number;

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
