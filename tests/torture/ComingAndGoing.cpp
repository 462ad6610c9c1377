#include "ComingAndGoing.h"

#include "Shard.h"

#include <QDateTime>

#include <algorithm>
#include <utility>

namespace {

// Then the station has written its first batches and filled what it keeps of the last values.
constexpr int warmUpReadings = 20;
constexpr int shortWarmUpReadings = 3;

constexpr int settlingSeconds = 5;

constexpr int samples = 20;
constexpr int betweenSamplesMs = 170;

} // namespace

ComingAndGoing::ComingAndGoing(Shard &shard, TorturedStation &tortured, int loggers, std::function<void(int)> go,
                               std::function<void(int)> come)
    : m_shard(shard), m_tortured(tortured), m_go(std::move(go)), m_come(std::move(come)), m_loggers(size_t(loggers))
{
}

void ComingAndGoing::setTimes(int awayMs, int backMs)
{
    m_awayMs = awayMs;
    m_backMs = backMs;
}

void ComingAndGoing::run()
{
    if (!m_tortured.start())
        return;
    m_start = QDateTime::currentSecsSinceEpoch();
    const int rounds = m_shard.order().rounds;
    const int first = std::min(rounds, int(m_loggers.size()));
    const auto haveDone = [this](int count) {
        return [this, count] {
            return m_shard.result().rounds >= count;
        };
    };
    if (!turn(haveDone(first)) || !bringAllBack()) {
        m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
        return;
    }
    const ProcessUse before = leastUse();
    if (!turn(haveDone(rounds)) || !bringAllBack()) {
        m_shard.find(QString::fromLocal8Bit(m_tortured.station().lastWords()));
        return;
    }
    const ProcessUse after = leastUse();
    if (const QString more = after.moreThan(before); !more.isEmpty() && !m_shard.order().isShort)
        m_shard.find(more);
    m_shard.result().remarks += QStringLiteral("part %1: %2 after the first round of each, %3 at the end")
                                    .arg(m_shard.order().number)
                                    .arg(before.text(), after.text());
    m_tortured.finish();
    // Those that stand before it never go.
    const int others = m_tortured.e2e().usbLoggerCount() > 0 ? m_tortured.e2e().loggerCount() : 0;
    m_tortured.demandShown([&](int logger, qint64 time) { return isSteady(logger - others, time); });
    m_tortured.judge(m_tortured.e2e().rows());
}

/// A connection that is opened polls for its own sake, and a logger that was asked again answers twice: then more is
/// shown than is to be recorded. On a machine with other things to do the same goes for answers that come ten seconds
/// late.
bool ComingAndGoing::isSteady(int logger, qint64 time) const
{
    if (m_shard.order().isShort)
        return false;
    const auto isNear = [&](qint64 change) {
        return time >= change - 1 && time <= change + settlingSeconds;
    };
    if (isNear(m_start) || logger < 0 || size_t(logger) >= m_loggers.size())
        return !isNear(m_start);
    const QList<qint64> &changes = m_loggers[size_t(logger)].changes;
    return std::none_of(changes.cbegin(), changes.cend(), isNear);
}

void ComingAndGoing::change(int number)
{
    Logger &logger = m_loggers[size_t(number)];
    (logger.isAway ? m_come : m_go)(number);
    logger.isAway = !logger.isAway;
    logger.changes.append(QDateTime::currentSecsSinceEpoch());
}

bool ComingAndGoing::turn(const std::function<bool()> &isOver)
{
    for (Logger &logger : m_loggers)
        logger.next.setRemainingTime(m_shard.below(m_backMs));
    while (!isOver()) {
        const auto next = std::min_element(m_loggers.begin(), m_loggers.end(),
                                           [](const Logger &a, const Logger &b) { return a.next < b.next; });
        if (!m_tortured.e2e().waitUntil([&] { return next->next.hasExpired(); }))
            return false;
        const auto number = int(next - m_loggers.begin());
        change(number);
        if (!next->isAway)
            m_shard.endRound({});
        next->next.setRemainingTime(next->isAway ? leastAwayMs + m_shard.below(m_awayMs) : m_shard.below(m_backMs));
    }
    return true;
}

bool ComingAndGoing::bringAllBack()
{
    std::vector<int> before;
    for (size_t i = 0; i < m_loggers.size(); ++i) {
        if (m_loggers[i].isAway)
            change(int(i));
        before.push_back(servedBy(int(i)));
    }
    const int readings = m_shard.order().isShort ? shortWarmUpReadings : warmUpReadings;
    return m_tortured.e2e().waitUntil([&] {
        for (size_t i = 0; i < m_loggers.size(); ++i) {
            if (servedBy(int(i)) < before[i] + readings)
                return false;
        }
        return true;
    });
}

/// What it always has: a search for loggers or a sound takes something more for a moment.
ProcessUse ComingAndGoing::leastUse()
{
    const qint64 station = m_tortured.station().processId();
    ProcessUse least = ProcessUse::of(station);
    for (int i = 0; i < samples; ++i) {
        const QDeadlineTimer moment(betweenSamplesMs);
        m_tortured.e2e().waitUntil([&] { return moment.hasExpired(); });
        least = least.orLess(ProcessUse::of(station));
    }
    return least;
}

int ComingAndGoing::servedBy(int logger)
{
    E2eFixture &e2e = m_tortured.e2e();
    return e2e.usbLoggerCount() > 0 ? e2e.servedByUsb(logger).count() : e2e.served(logger).count();
}
