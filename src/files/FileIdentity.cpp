#include "files/FileIdentity.h"

#include <QFile>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

QByteArray fileIdentity(const QString &path)
{
#ifdef Q_OS_UNIX
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return QByteArray::number(quint64(status.st_dev)) + ':' + QByteArray::number(quint64(status.st_ino));
#else
    return QFile::exists(path) ? QByteArrayLiteral("file") : QByteArray();
#endif
}
