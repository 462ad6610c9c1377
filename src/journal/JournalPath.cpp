#include "journal/JournalPath.h"

QString journalPath(const QString &recording)
{
    // A recording with another suffix keeps it, or two of them would share a journal.
    const QString suffix = QStringLiteral(".dat");
    const QString name = recording.endsWith(suffix) ? recording.chopped(suffix.size()) : recording;
    return name + QStringLiteral(".events");
}
