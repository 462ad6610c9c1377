#pragma once

#include <QString>

#include <functional>

class PageFile;

struct SalvageResult
{
    bool complete = false; ///< the new file holds every row that could be read, and is on the disk
    qint64 rows = 0;
    QString error; ///< why not
    bool isGivenUp = false;
};

/// Told again and again how many pages have been looked at, of how many; false gives it up.
using SalvageProgress = std::function<bool(quint32 done, quint32 all)>;

/// Makes a recording at @p newPath, in place of any file there, of the rows that can still be read in a torn one. They
/// are looked for in every page whatever the torn file's own order says, and keep their row ids; the torn file is only
/// read.
SalvageResult salvageRecording(const QString &tornPath, const QString &newPath, const SalvageProgress &progress = {});
/// The same from a file that stays open, and locked.
SalvageResult salvageRecording(PageFile &torn, const QString &newPath, const SalvageProgress &progress = {});
