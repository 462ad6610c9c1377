#include "stationcosts/ProcessFigures.h"

#include <QFile>

#include <unistd.h>

namespace {

QByteArray contentOf(qint64 processId, const char *name)
{
    QFile file(QStringLiteral("/proc/%1/%2").arg(processId).arg(QLatin1String(name)));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// A line such as "Pss:   1024 kB".
double mebibytes(const QByteArray &content, const QByteArray &label)
{
    const QList<QByteArray> lines = content.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(label))
            return line.mid(label.size()).simplified().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

} // namespace

MemoryUse memoryOf(qint64 processId)
{
    const QByteArray content = contentOf(processId, "smaps_rollup");
    return {mebibytes(content, "Pss:"), mebibytes(content, "Rss:"), mebibytes(content, "Anonymous:")};
}

double residentMiB(qint64 processId)
{
    return mebibytes(contentOf(processId, "status"), "VmRSS:");
}

double processorSeconds(qint64 processId)
{
    const QByteArray content = contentOf(processId, "stat");
    // The name in parentheses may hold blanks; the state comes after it.
    const QList<QByteArray> fields = content.mid(content.lastIndexOf(')') + 2).split(' ');
    constexpr int userTime = 11;
    constexpr int systemTime = 12;
    if (fields.size() <= systemTime)
        return 0;
    return (fields.at(userTime).toDouble() + fields.at(systemTime).toDouble()) / double(::sysconf(_SC_CLK_TCK));
}
