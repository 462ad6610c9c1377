#include "store/TornRecording.h"

#include "store/FileCheck.h"
#include "store/Logging.h"
#include "store/PageFile.h"
#include "store/ReadLock.h"
#include "store/SetAside.h"

#include <QFile>

#include <algorithm>
#include <limits>

namespace {

QString placeOfSalvaged(const QString &path)
{
    return path + QLatin1String(".salvaged");
}

void warnNotReplaced(const QString &path, const QString &reason)
{
    qCWarning(lcStore).noquote().nospace()
        << "InsertSerialData::createConnection : [ERROR] torn, and not to be replaced : " << path << " : " << reason;
}

/// The rows of a torn recording in a file of their own that is ready to take its place; its name, or nothing.
QString salvaged(PageFile &file, const QString &path, const SalvageProgress &progress, TornRecording &torn)
{
    const QString part = path + QLatin1String(".salvage");
    QString whole = placeOfSalvaged(path);
    const SalvageResult result = salvageRecording(file, part, progress);
    torn.isGivenUp = result.isGivenUp;
    torn.rows = int(std::min<qint64>(result.rows, std::numeric_limits<int>::max()));
    if (result.complete && (!QFile::exists(whole) || QFile::remove(whole)) && QFile::rename(part, whole))
        return whole;
    warnNotReplaced(path, result.error);
    QFile::remove(part);
    return {};
}

/// Ended between its last two steps, the program has left no recording, only what was to take its place.
void finishEarlierReplacement(const QString &path)
{
    if (!QFile::exists(path) && QFile::exists(placeOfSalvaged(path)))
        QFile::rename(placeOfSalvaged(path), path);
}

/// Where the torn file is then; nothing when it could not be replaced.
QString exchange(const QString &path, const QString &replacement)
{
    QString aside = setAside(path, QStringLiteral("torn"));
    if (!aside.isEmpty() && QFile::rename(replacement, path))
        return aside;
    // Without either in its place, the next opening needs it.
    if (aside.isEmpty() || QFile::rename(aside, path))
        QFile::remove(replacement);
    warnNotReplaced(path, QStringLiteral("it cannot be renamed"));
    return {};
}

} // namespace

TornRecording replaceTornRecording(const QString &path, const SalvageProgress &progress)
{
    TornRecording torn;
    QString replacement;
    finishEarlierReplacement(path);
    if (!QFile::exists(path) && QFile::exists(placeOfSalvaged(path))) {
        warnNotReplaced(path, QStringLiteral("what was saved of it cannot be renamed"));
        torn.mustStay = true;
        return torn;
    }
    if (checkRecording(path) != FileVerdict::Torn)
        return torn;
    {
        PageFile file(path);
        // What looks torn may be a commit on its way.
        const ReadLock lock(path);
        if (!lock.isHeld() || checkRecording(file) != FileVerdict::Torn)
            return torn;
        replacement = salvaged(file, path, progress, torn);
    }
    if (!replacement.isEmpty())
        torn.file = exchange(path, replacement);
    if (torn.file.isEmpty()) {
        torn.rows = 0;
        torn.mustStay = true;
        return torn;
    }
    qCWarning(lcStore).noquote().nospace()
        << "InsertSerialData::createConnection : [ERROR] torn : set aside as : " << torn.file
        << " : rows saved : " << torn.rows;
    return torn;
}
