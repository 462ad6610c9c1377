#include "store/WriteLog.h"

#include <QFile>

#include <sqlite3.h>

namespace {

WriteLog *activeLog = nullptr;
QByteArray watchedFile;
sqlite3_vfs *realVfs = nullptr;

/// Stands in front of the real file, whose own structure follows it in memory.
struct WatchedFile
{
    sqlite3_file base;
    bool watched;
};

sqlite3_file *realFile(sqlite3_file *file)
{
    return reinterpret_cast<sqlite3_file *>(reinterpret_cast<char *>(file) + sizeof(WatchedFile));
}

int writeThrough(sqlite3_file *file, const void *bytes, int size, sqlite3_int64 offset)
{
    if (activeLog && reinterpret_cast<WatchedFile *>(file)->watched)
        activeLog->add(offset, QByteArray(static_cast<const char *>(bytes), size));
    return realFile(file)->pMethods->xWrite(realFile(file), bytes, size, offset);
}

const sqlite3_io_methods methods{
    1,
    [](sqlite3_file *f) { return realFile(f)->pMethods->xClose(realFile(f)); },
    [](sqlite3_file *f, void *b, int n, sqlite3_int64 o) { return realFile(f)->pMethods->xRead(realFile(f), b, n, o); },
    writeThrough,
    [](sqlite3_file *f, sqlite3_int64 size) { return realFile(f)->pMethods->xTruncate(realFile(f), size); },
    [](sqlite3_file *f, int flags) { return realFile(f)->pMethods->xSync(realFile(f), flags); },
    [](sqlite3_file *f, sqlite3_int64 *size) { return realFile(f)->pMethods->xFileSize(realFile(f), size); },
    [](sqlite3_file *f, int lock) { return realFile(f)->pMethods->xLock(realFile(f), lock); },
    [](sqlite3_file *f, int lock) { return realFile(f)->pMethods->xUnlock(realFile(f), lock); },
    [](sqlite3_file *f, int *result) { return realFile(f)->pMethods->xCheckReservedLock(realFile(f), result); },
    [](sqlite3_file *f, int op, void *arg) { return realFile(f)->pMethods->xFileControl(realFile(f), op, arg); },
    [](sqlite3_file *f) { return realFile(f)->pMethods->xSectorSize(realFile(f)); },
    [](sqlite3_file *f) { return realFile(f)->pMethods->xDeviceCharacteristics(realFile(f)); },
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
};

int openWatched(sqlite3_vfs *, const char *name, sqlite3_file *file, int flags, int *outFlags)
{
    auto *watched = reinterpret_cast<WatchedFile *>(file);
    watched->watched = name && watchedFile == name;
    const int result = realVfs->xOpen(realVfs, name, realFile(file), flags, outFlags);
    watched->base.pMethods = result == SQLITE_OK ? &methods : nullptr;
    return result;
}

sqlite3_vfs &watchingVfs()
{
    static sqlite3_vfs vfs = [] {
        sqlite3_vfs copy = *realVfs;
        copy.zName = "watching";
        copy.szOsFile += int(sizeof(WatchedFile));
        copy.xOpen = openWatched;
        return copy;
    }();
    return vfs;
}

} // namespace

WriteLog::WriteLog(const QString &file)
{
    if (!realVfs)
        realVfs = sqlite3_vfs_find(nullptr);
    watchedFile = QFile::encodeName(file);
    activeLog = this;
    sqlite3_vfs_register(&watchingVfs(), 1);
}

WriteLog::~WriteLog()
{
    activeLog = nullptr;
    sqlite3_vfs_register(realVfs, 1);
}

void apply(const WriteLog::Write &write, QByteArray &content)
{
    applyPart(write, int(write.bytes.size()), content);
}

void applyPart(const WriteLog::Write &write, int size, QByteArray &content)
{
    const int end = int(write.offset) + size;
    if (content.size() < end)
        content.append(end - int(content.size()), '\0');
    content.replace(int(write.offset), size, write.bytes.left(size));
}
