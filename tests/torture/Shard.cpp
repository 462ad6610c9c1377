#include "Shard.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

quint32 seedOf(const Shard::Order &order)
{
    const QString text = QStringLiteral("%1 %2 %3").arg(order.seed).arg(order.row).arg(order.number);
    const QByteArray hash = QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256);
    return hash.left(4).toHex().toUInt(nullptr, 16);
}

void copyFolder(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString target = to + QLatin1Char('/') + QDir(from).relativeFilePath(file);
        QDir().mkpath(QFileInfo(target).path());
        QFile::copy(file, target);
    }
}

} // namespace

Shard::Shard(const Order &order) : m_order(order), m_random(seedOf(order)) {}

void Shard::endRound(const QString &log)
{
    ++m_result.rounds;
    m_logs += log;
    QTextStream(stdout) << "round" << Qt::endl;
}

void Shard::find(const QString &what)
{
    m_result.findings += QStringLiteral("round %1: %2").arg(m_result.rounds + 1).arg(what);
}

void Shard::keepEvidence()
{
    if ((m_result.isClean() && !m_order.keepsAll) || m_order.evidence.isEmpty())
        return;
    const QString folder = QStringLiteral("%1/%2-%3").arg(m_order.evidence, m_order.row).arg(m_order.number);
    copyFolder(m_order.folder, folder);
    QFile log(folder + QStringLiteral("/rounds.log"));
    if (!log.open(QIODevice::WriteOnly))
        return;
    for (int round = 0; round < m_logs.size(); ++round)
        log.write(QStringLiteral("==== round %1\n%2\n").arg(round + 1).arg(m_logs.at(round)).toUtf8());
    log.write(m_result.findings.join(QLatin1Char('\n')).toUtf8() + '\n');
}
