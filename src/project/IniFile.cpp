#include "project/IniFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>
#include <QTemporaryDir>
#include <cctype>
#include <optional>

// The settings class must not write the file itself. When the disk fills up in the middle of a write it puts the
// truncated text in place of the old file and reports success, and what it could not write at all it keeps for the
// next object with the same path. So it works on a copy, under a path that is used once.

namespace {

std::optional<QByteArray> contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray content = file.readAll();
    return file.error() == QFileDevice::NoError ? std::optional(content) : std::nullopt;
}

/// Unbuffered, so that a short write shows here and not after the file is in its place.
bool writeTo(QFileDevice &file, const QByteArray &content)
{
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(content) == content.size();
}

bool writeCopy(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return writeTo(file, content);
}

/// A key takes one line: a text with the last line's end and every key is not truncated.
bool isComplete(const QByteArray &text, const QString &path, const QStringList &keys)
{
    return (text.isEmpty() || text.endsWith('\n')) && QSettings(path, QSettings::IniFormat).allKeys() == keys;
}

/// As every generation of the toolkit reads it. What is not ASCII the older one takes for Latin-1, while the newer one
/// writes UTF-8.
QByteArray escaped(const QByteArray &text)
{
    QByteArray result;
    bool afterEscape = false;
    const QString characters = QString::fromUtf8(text);
    for (const QChar character : characters) {
        const ushort code = character.unicode();
        // A digit would count as one more of the escape before it.
        const bool escape = code >= 0x80 || (afterEscape && std::isxdigit(code));
        if (escape)
            result.append("\\x").append(QByteArray::number(code, 16));
        else
            result.append(static_cast<char>(code));
        afterEscape = escape;
    }
    return result;
}

/// The text that @p before becomes with the values set.
std::optional<QByteArray> changedText(const QByteArray &before, const IniValues &values)
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("copy"));
    const QString written = folder.filePath(QStringLiteral("written"));
    if (!folder.isValid() || !writeCopy(copy, before))
        return std::nullopt;
    QSettings settings(copy, QSettings::IniFormat);
    setValues(settings, values);
    settings.sync();
    if (settings.status() == QSettings::AccessError || !QFile::rename(copy, written))
        return std::nullopt;
    const std::optional<QByteArray> text = contentOf(written);
    if (!text || !isComplete(*text, written, settings.allKeys()))
        return std::nullopt;
    return escaped(*text);
}

} // namespace

void setValues(QSettings &settings, const IniValues &values)
{
    for (const auto &[key, value] : values) {
        if (value.isValid())
            settings.setValue(key, value);
        else
            settings.remove(key);
    }
}

bool replaceFile(const QString &path, const QByteArray &content)
{
    QSaveFile file(path);
    if (!writeTo(file, content))
        return false;
    // A settings object reads its file again only when size or time differ: never give two versions the same time.
    const QFileInfo old(path);
    if (old.exists()) {
        const QDateTime later = old.lastModified().addMSecs(1);
        file.setFileTime(qMax(QDateTime::currentDateTime(), later), QFileDevice::FileModificationTime);
    }
    return file.commit();
}

bool rewriteIniFile(const QString &path, const IniValues &values)
{
    const std::optional<QByteArray> before = QFileInfo::exists(path) ? contentOf(path) : QByteArray();
    if (!before)
        return false;
    const std::optional<QByteArray> after = changedText(*before, values);
    return after && replaceFile(path, *after);
}
