#include "ShardPool.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int progressMs = 15000;

QStringList argumentsFor(const Shard::Order &order)
{
    QStringList arguments{QStringLiteral("--shard"),    QString::number(order.number),
                          QStringLiteral("--row"),      order.row,
                          QStringLiteral("--count"),    QString::number(order.rounds),
                          QStringLiteral("--seed"),     QString::number(order.seed),
                          QStringLiteral("--folder"),   order.folder,
                          QStringLiteral("--evidence"), order.evidence};
    if (order.isShort)
        arguments += QStringLiteral("--short");
    if (order.keepsAll)
        arguments += QStringLiteral("--keep");
    return arguments;
}

} // namespace

struct ShardPool::Running
{
    Shard::Order order;
    QProcess process;
    QElapsedTimer time;
    int rounds = 0;
    std::optional<RowResult> result;
};

ShardPool::ShardPool(int jobs, QObject *parent) : QObject(parent), m_jobs(jobs)
{
    connect(&m_progress, &QTimer::timeout, this, &ShardPool::tellProgress);
}

ShardPool::~ShardPool() = default;

void ShardPool::add(const Shard::Order &order)
{
    m_waiting.push_back(order);
    m_sums[order.row].ordered += order.rounds;
}

void ShardPool::start()
{
    m_time.start();
    m_progress.start(progressMs);
    for (int i = 0; i < m_jobs; ++i)
        startNext();
}

void ShardPool::startNext()
{
    if (m_waiting.empty()) {
        if (m_running.empty())
            emit finished();
        return;
    }
    auto running = std::make_unique<Running>();
    Running *shard = running.get();
    shard->order = m_waiting.front();
    m_waiting.pop_front();
    QDir().mkpath(shard->order.folder);
    shard->process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(&shard->process, &QProcess::readyReadStandardOutput, this, [this, shard] { readFrom(shard); });
    connect(&shard->process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            [this, shard] { ended(shard); });
    shard->time.start();
    // Whatever becomes of this program, its parts go with it.
    shard->process.start(QStringLiteral("setpriv"),
                         QStringList{QStringLiteral("--pdeathsig"), QStringLiteral("KILL"),
                                     QStringLiteral(WITH_OWN_LOCKS), QCoreApplication::applicationFilePath()} +
                             argumentsFor(shard->order));
    m_running.push_back(std::move(running));
}

void ShardPool::readFrom(Running *running)
{
    while (running->process.canReadLine()) {
        const QByteArray line = running->process.readLine().trimmed();
        if (line == "round") {
            ++running->rounds;
            ++m_sums[running->order.row].begun;
        } else if (line.startsWith("result ")) {
            running->result = RowResult::fromLine(line.mid(7));
        }
    }
}

void ShardPool::ended(Running *running)
{
    readFrom(running);
    Sum &sum = m_sums[running->order.row];
    RowResult result = running->result.value_or(RowResult());
    if (!running->result)
        result.findings += QStringLiteral("ended with code %1 after %2 rounds, without a result")
                               .arg(running->process.exitCode())
                               .arg(running->rounds);
    for (QString &finding : result.findings) {
        finding.prepend(QStringLiteral("%1 part %2: ").arg(running->order.row).arg(running->order.number));
        QTextStream(stdout) << finding << Qt::endl;
    }
    sum.result.add(result);
    sum.milliseconds += running->time.elapsed();
    QDir(running->order.folder).removeRecursively();
    running->process.disconnect(this);
    const auto mine =
        std::find_if(m_running.begin(), m_running.end(), [running](const auto &each) { return each.get() == running; });
    // Not before its signal is over.
    QTimer::singleShot(0, this, [done = std::shared_ptr<Running>(std::move(*mine))] {});
    m_running.erase(mine);
    startNext();
}

void ShardPool::tellProgress()
{
    QStringList rows;
    for (auto sum = m_sums.cbegin(); sum != m_sums.cend(); ++sum)
        rows += QStringLiteral("%1 %2/%3").arg(sum.key()).arg(sum->begun).arg(sum->ordered);
    QTextStream(stdout) << QStringLiteral("%1 s: ").arg(m_time.elapsed() / 1000) << rows.join(QStringLiteral(", "))
                        << Qt::endl;
}
