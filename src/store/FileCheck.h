#pragma once

#include <QString>

class PageFile;

enum class FileVerdict {
    Missing, ///< there is no file, or an empty one: a recording can begin
    Whole,   ///< also a file that only SQLite itself can judge
    Torn,    ///< a recording whose last commit is not there as a whole
    Foreign, ///< nothing of ours: no SQLite file, encrypted, or without a table that can be recognised
};

/// Whether a recording was cut in the middle of a commit, by its header and what a commit writes: as fast for a large
/// recording as for a small one. Nobody may write into the file meanwhile.
FileVerdict checkRecording(const QString &path);
/// The same for a file that is there. It is opened or, if it is open already, read anew.
FileVerdict checkRecording(PageFile &file);
