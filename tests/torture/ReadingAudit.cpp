#include "ReadingAudit.h"

#include "RecordingReader.h"
#include "ServedReadings.h"

#include <algorithm>

namespace {

// A reading has the time of its poll. Slow loggers and machines answer seconds later; and of two polls under way of
// which one is never answered the station takes the later for the one that was, so its time may also be after the
// answer's.
constexpr qint64 mostSecondsBetween = 15;
// Started again, the station dates its first reading early by the splash's wait. Equal rows of one second are one row
// when they come into the same batch, as they do when the first rows of a recording are brought back.
constexpr qint64 mostSecondsBetweenEqual = 4;

} // namespace

void ReadingAudit::follow(const ServedReadings &served)
{
    m_loggers.push_back({&served, {served.count()}, {}});
}

void ReadingAudit::beginRound()
{
    ++m_round;
    for (Logger &logger : m_loggers)
        logger.starts.append(logger.served->count());
}

void ReadingAudit::excuseUnless(int logger, const std::function<bool(int reading)> &mustBeThere)
{
    Logger &excused = m_loggers.at(size_t(logger));
    for (int reading = excused.starts.last(); reading < excused.served->count(); ++reading) {
        if (!mustBeThere(reading))
            excused.excused.insert(reading);
    }
}

bool ReadingAudit::isAmong(int logger, int reading, const QList<RecordedRow> &rows) const
{
    const Logger &served = m_loggers.at(size_t(logger));
    return std::any_of(rows.cbegin(), rows.cend(), [&](const RecordedRow &row) {
        return row.serial == served.served->serial() && isOfTime(served, reading, row.time) &&
               ServedReadings::textOf(row) == served.served->at(reading);
    });
}

ReadingAudit::Verdict ReadingAudit::judge(const QList<RecordedRow> &rows) const
{
    Verdict verdict;
    QSet<QString> keys;
    for (const Logger &logger : m_loggers) {
        keys.insert(logger.served->serial());
        judge(logger, rows, verdict);
    }
    for (const RecordedRow &row : rows) {
        if (!keys.contains(row.serial))
            verdict.foreign +=
                QStringLiteral("%1 [%2]: there is no such logger").arg(row.serial, ServedReadings::textOf(row));
    }
    return verdict;
}

void ReadingAudit::judge(const Logger &logger, const QList<RecordedRow> &rows, Verdict &verdict)
{
    Rows left;
    const QList<RecordedRow> readings = readingsOf(logger.served->serial(), rows);
    for (const RecordedRow &row : readings)
        left.insert(ServedReadings::textOf(row), row.time);

    verdict.served += logger.served->count();
    verdict.shown += logger.served->count() - int(logger.excused.size());
    verdict.recorded += int(readings.size());
    QSet<QString> served;
    // Of equal readings those that must be there come first, or one that may be missing would take their row.
    for (const bool isExcused : {false, true}) {
        for (int reading = 0; reading < logger.served->count(); ++reading) {
            served.insert(logger.served->at(reading));
            if (logger.excused.contains(reading) == isExcused && !takeRow(logger, reading, left) && !isExcused &&
                !isOneWithAnEarlier(logger, reading))
                verdict.lost += describe(logger, reading);
        }
    }
    for (auto row = left.cbegin(); row != left.cend(); ++row) {
        const QString text = QStringLiteral("%1 [%2] at %3").arg(logger.served->serial(), row.key()).arg(row.value());
        (served.contains(row.key()) ? verdict.doubled : verdict.foreign) += text;
    }
}

bool ReadingAudit::isOfTime(const Logger &logger, int reading, qint64 time)
{
    const qint64 served = logger.served->timeOf(reading);
    return qAbs(time - served) <= mostSecondsBetween;
}

/// Loggers repeat themselves after a while: of rows with the same values one of the right time is taken.
bool ReadingAudit::takeRow(const Logger &logger, int reading, Rows &rows)
{
    for (auto row = rows.find(logger.served->at(reading)); row != rows.end() && row.key() == logger.served->at(reading);
         ++row) {
        if (isOfTime(logger, reading, row.value())) {
            rows.erase(row);
            return true;
        }
    }
    return false;
}

bool ReadingAudit::isOneWithAnEarlier(const Logger &logger, int reading)
{
    const int start = *std::prev(std::upper_bound(logger.starts.cbegin(), logger.starts.cend(), reading));
    for (int earlier = start - 1; earlier >= 0; --earlier) {
        if (logger.served->timeOf(reading) - logger.served->timeOf(earlier) > mostSecondsBetweenEqual)
            return false;
        if (logger.served->at(earlier) == logger.served->at(reading))
            return true;
    }
    return false;
}

QString ReadingAudit::describe(const Logger &logger, int reading)
{
    const auto next = std::upper_bound(logger.starts.cbegin(), logger.starts.cend(), reading);
    const auto round = int(next - logger.starts.cbegin()) - 1;
    const int last = next == logger.starts.cend() ? logger.served->count() : *next;
    return QStringLiteral("%1 [%2]: number %3 of %4 of round %5")
        .arg(logger.served->serial(), logger.served->at(reading))
        .arg(reading - logger.starts.at(round) + 1)
        .arg(last - logger.starts.at(round))
        .arg(round);
}
