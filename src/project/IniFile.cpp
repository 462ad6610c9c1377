#include "project/IniFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

// Thousands of loggers; what is larger was not written by a station, and must not fill the memory.
constexpr qint64 largestFile = 4 * 1024 * 1024;

} // namespace

std::optional<IniText> readIniFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.read(largestFile + 1);
    if (file.error() != QFileDevice::NoError || content.size() > largestFile)
        return std::nullopt;
    return IniText(content);
}

bool replaceFile(const QString &path, const QByteArray &content)
{
    // Unbuffered, so that a short write shows here and not after the file is in its place.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || file.write(content) != content.size())
        return false;
    // The toolkit's own reader reads a file again only when size or time differ: never give two versions the same time.
    const QFileInfo old(path);
    if (old.exists()) {
        const QDateTime later = old.lastModified().addMSecs(1);
        file.setFileTime(qMax(QDateTime::currentDateTime(), later), QFileDevice::FileModificationTime);
    }
    return file.commit();
}

bool rewriteIniFile(const QString &path, const IniValues &values)
{
    std::optional<IniText> text = QFileInfo::exists(path) ? readIniFile(path) : IniText();
    if (!text)
        return false;
    for (const auto &[key, value] : values)
        text->setValue(key, value);
    return replaceFile(path, text->toBytes());
}
