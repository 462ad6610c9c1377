#include "store/FileCheck.h"

#include "store/PageFile.h"
#include "store/RecordingLayout.h"
#include "store/RecordingTail.h"

#include <QFileInfo>

namespace {

// Two tables and an index, each on a page of its own: with more, the first page was written long ago.
constexpr quint32 pagesOfANewRecording = 4;

} // namespace

FileVerdict checkRecording(const QString &path)
{
    const QFileInfo info(path);
    if (!info.exists() || info.size() == 0)
        return FileVerdict::Missing;
    PageFile file(path);
    return checkRecording(file);
}

FileVerdict checkRecording(PageFile &file)
{
    if (!file.open())
        return FileVerdict::Foreign;
    if (file.hasWriteAheadLog())
        return FileVerdict::Whole;
    const RecordingLayout layout = RecordingLayout::read(file);
    if (layout.table == 0) {
        if (layout.readable)
            return FileVerdict::Whole;
        return file.pageCount() <= pagesOfANewRecording ? FileVerdict::Torn : FileVerdict::Foreign;
    }
    const bool sound = !file.isCutOff() && layout.readable && RecordingTail(file, layout).isSound();
    return sound ? FileVerdict::Whole : FileVerdict::Torn;
}
