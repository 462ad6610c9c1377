#include "ProcessUse.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {

// Less is in a heap that is a little less well filled.
constexpr double mebibyte = 1;

} // namespace

ProcessUse ProcessUse::of(qint64 processId)
{
    ProcessUse use;
    const QString folder = QStringLiteral("/proc/%1/").arg(processId);
    const QStringList descriptors =
        QDir(folder + QStringLiteral("fd")).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
    use.descriptors = int(descriptors.size());
    for (const QString &descriptor : descriptors) {
        if (QFile::symLinkTarget(folder + QStringLiteral("fd/") + descriptor).contains(QLatin1String("socket:")))
            ++use.sockets;
    }
    QFile status(folder + QStringLiteral("status"));
    const QList<QByteArray> lines =
        status.open(QIODevice::ReadOnly) ? status.readAll().split('\n') : QList<QByteArray>();
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            use.residentMiB = line.mid(6).simplified().split(' ').first().toDouble() / 1024;
    }
    return use;
}

QString ProcessUse::text() const
{
    return QStringLiteral("%1 descriptors, %2 sockets, %3 MiB")
        .arg(descriptors)
        .arg(sockets)
        .arg(residentMiB, 0, 'f', 1);
}

ProcessUse ProcessUse::orLess(const ProcessUse &other) const
{
    return {std::min(descriptors, other.descriptors), std::min(sockets, other.sockets),
            std::min(residentMiB, other.residentMiB)};
}

QString ProcessUse::moreThan(const ProcessUse &before) const
{
    const bool isMore =
        descriptors > before.descriptors || sockets > before.sockets || residentMiB >= before.residentMiB + mebibyte;
    return isMore ? QStringLiteral("%1 instead of %2").arg(text(), before.text()) : QString();
}
