#include "store/SpoolReplacement.h"

#include <QFile>

namespace {

const QString logSuffix = QStringLiteral("-wal");

/// Whole whenever it is there.
QString replacementOf(const QString &path)
{
    return path + QLatin1String(".whole");
}

} // namespace

QString replaceSpool(const QString &path, const SpoolFile::Change &content, QString *error)
{
    const QString part = path + QLatin1String(".part");
    QFile::remove(part);
    QFile::remove(part + logSuffix);
    SpoolFile replacement(part);
    const bool isWritten = replacement.write(content);
    *error = replacement.errorText();
    replacement.close(); // and its log is worked into the file
    if (!isWritten || !QFile::rename(part, replacementOf(path)))
        return {};
    return finishSpoolReplacement(path);
}

QString finishSpoolReplacement(const QString &path)
{
    if (!QFile::exists(replacementOf(path)))
        return {};
    QString aside = QFile::exists(path) ? SpoolFile::setAside(path) : SpoolFile::lastSetAside(path);
    // Left for later, it would replace what is written meanwhile.
    if (QFile::exists(path) || !QFile::rename(replacementOf(path), path))
        QFile::remove(replacementOf(path));
    return aside;
}
