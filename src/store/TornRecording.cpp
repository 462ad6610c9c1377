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

/// The rows of a torn recording in a file of their own that is ready to take its place; its name, or nothing.
QString salvaged(PageFile &file, const QString &path, const SalvageProgress &progress, TornRecording &torn)
{
    const QString part = path + QLatin1String(".salvage");
    QString whole = path + QLatin1String(".salvaged");
    const SalvageResult result = salvageRecording(file, part, progress);
    torn.isGivenUp = result.isGivenUp;
    torn.rows = int(std::min<qint64>(result.rows, std::numeric_limits<int>::max()));
    if (result.complete && (!QFile::exists(whole) || QFile::remove(whole)) && QFile::rename(part, whole))
        return whole;
    qCWarning(lcStore).noquote().nospace()
        << "InsertSerialData::createConnection : [ERROR] torn, and not to be replaced : " << path << " : "
        << result.error;
    QFile::remove(part);
    return {};
}

/// Ended between its last two steps, the program has left no recording, only what was to take its place.
void finishEarlierReplacement(const QString &path)
{
    const QString whole = path + QLatin1String(".salvaged");
    if (!QFile::exists(path) && QFile::exists(whole))
        QFile::rename(whole, path);
}

} // namespace

TornRecording replaceTornRecording(const QString &path, const SalvageProgress &progress)
{
    TornRecording torn;
    QString replacement;
    finishEarlierReplacement(path);
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
    if (replacement.isEmpty()) {
        torn.rows = 0;
        return torn;
    }
    const QString aside = setAside(path, QStringLiteral("torn"));
    if (aside.isEmpty()) {
        QFile::remove(replacement);
        return {};
    }
    if (!QFile::rename(replacement, path)) {
        QFile::rename(aside, path);
        return {};
    }
    torn.file = aside;
    qCWarning(lcStore).noquote().nospace()
        << "InsertSerialData::createConnection : [ERROR] torn : set aside as : " << aside
        << " : rows saved : " << torn.rows;
    return torn;
}
