#include "store/MemoryFolders.h"

#include <QDir>
#include <QFile>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/vfs.h>
#endif

namespace {

#ifdef Q_OS_UNIX
/// Whether the folder is there and nobody else can put anything into it: in a folder for all, its name may be taken.
bool makeOwnFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    ::mkdir(name.constData(), S_IRWXU);
    struct stat status = {};
    return ::lstat(name.constData(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}
#else
bool makeOwnFolder(const QString &path)
{
    return QDir().mkpath(path);
}
#endif

#ifdef Q_OS_LINUX
/// Writing into the mapped file of a disk may wait for it.
bool isInMemory(const QString &folder)
{
    constexpr decltype(statfs::f_type) tmpfs = 0x01021994;
    constexpr decltype(statfs::f_type) ramfs = 0x858458f6;
    struct statfs status = {};
    return ::statfs(QFile::encodeName(folder).constData(), &status) == 0 &&
           (status.f_type == tmpfs || status.f_type == ramfs);
}
#endif

QStringList candidates()
{
    const QString name = QStringLiteral("sorvanto-lite");
#ifdef Q_OS_LINUX
    QStringList folders;
    // The toolkit's own answer falls back to a folder on the disk, and complains.
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && isInMemory(runtime))
        folders += runtime + QLatin1Char('/') + name;
    const QString shared = QStringLiteral("/dev/shm");
    if (isInMemory(shared))
        folders += QStringLiteral("%1/%2-%3").arg(shared, name).arg(::geteuid());
    return folders;
#else
    return {QDir::tempPath() + QLatin1Char('/') + name};
#endif
}

} // namespace

QStringList memoryFolders()
{
    QStringList folders;
    const QStringList all = candidates();
    for (const QString &folder : all) {
        if (makeOwnFolder(folder))
            folders += folder;
    }
    return folders;
}
