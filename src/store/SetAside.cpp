#include "store/SetAside.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

namespace {

QString freeName(const QString &path, const QString &word, const QStringList &endings)
{
    for (int number = 1;; ++number) {
        QString name = QStringLiteral("%1.%2-%3").arg(path, word).arg(number);
        // What stands there of a file whose setting aside was cut off is its own.
        const auto isTaken = [&path, &name](const QString &ending) {
            return QFile::exists(path + ending) && QFile::exists(name + ending);
        };
        if (std::none_of(endings.cbegin(), endings.cend(), isTaken))
            return name;
    }
}

} // namespace

QString setAside(const QString &path, const QString &word, const QStringList &endings)
{
    // What belongs to the file goes first: beside another file of its name, a log would bring its rows into that.
    const QStringList parts = endings + QStringList(QString());
    QString name = freeName(path, word, parts);
    QStringList renamed;
    for (const QString &part : parts) {
        if (!part.isEmpty() && !QFile::exists(path + part))
            continue;
        // QFile::rename never replaces a file.
        if (QFile::rename(path + part, name + part)) {
            renamed.prepend(part);
            continue;
        }
        for (const QString &moved : std::as_const(renamed))
            QFile::rename(name + moved, path + moved);
        return {};
    }
    return name;
}

QString lastSetAside(const QString &path, const QString &word)
{
    const QFileInfo file(path);
    const QString beginning = QStringLiteral("%1.%2-").arg(file.fileName(), word);
    const auto isOne = [&beginning](const QString &name) {
        bool isNumber = false;
        name.mid(beginning.size()).toUInt(&isNumber);
        return name.startsWith(beginning) && isNumber;
    };
    QFileInfo last;
    const QFileInfoList files = file.dir().entryInfoList(QDir::Files | QDir::Hidden);
    for (const QFileInfo &other : files) {
        // A name given last may have a lower number than those before it.
        if (isOne(other.fileName()) &&
            (last.filePath().isEmpty() || other.metadataChangeTime() > last.metadataChangeTime()))
            last = other;
    }
    return last.filePath();
}
