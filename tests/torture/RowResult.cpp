#include "RowResult.h"

#include <QDataStream>

namespace {

constexpr int mostNamed = 20;

void name(QStringList &findings, const QString &what, const QStringList &readings)
{
    for (const QString &reading : readings.mid(0, mostNamed))
        findings += what + QLatin1Char(' ') + reading;
    if (readings.size() > mostNamed)
        findings += QStringLiteral("%1 %2 more").arg(what).arg(readings.size() - mostNamed);
}

} // namespace

void RowResult::add(const RowResult &other)
{
    rounds += other.rounds;
    served += other.served;
    shown += other.shown;
    recorded += other.recorded;
    lost += other.lost;
    doubled += other.doubled;
    unsound += other.unsound;
    findings += other.findings;
    remarks += other.remarks;
}

void RowResult::add(const ReadingAudit::Verdict &verdict)
{
    served += verdict.served;
    shown += verdict.shown;
    recorded += verdict.recorded;
    lost += int(verdict.lost.size());
    doubled += int(verdict.doubled.size());
    name(findings, QStringLiteral("lost:"), verdict.lost);
    name(findings, QStringLiteral("double:"), verdict.doubled);
    name(findings, QStringLiteral("foreign:"), verdict.foreign);
}

QByteArray RowResult::toLine() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << rounds << served << shown << recorded << lost << doubled << unsound << findings << remarks;
    return bytes.toHex();
}

std::optional<RowResult> RowResult::fromLine(const QByteArray &line)
{
    RowResult result;
    QDataStream stream(QByteArray::fromHex(line));
    stream >> result.rounds >> result.served >> result.shown >> result.recorded >> result.lost >> result.doubled >>
        result.unsound >> result.findings >> result.remarks;
    return stream.status() == QDataStream::Ok ? std::make_optional(result) : std::nullopt;
}
