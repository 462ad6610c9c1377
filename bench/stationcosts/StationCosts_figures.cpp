// The rows of the table that tell about the recording.

#include "RecordingReader.h"
#include "stationcosts/StationCosts.h"

#include <QSettings>

namespace {

constexpr double processorGoal = 0.10;
constexpr double memoryGoal = 2;
constexpr double plainStretchGoalMs = 16;
constexpr double flushStretchGoalMs = 50;
constexpr double latenessGoalMs = 20;
constexpr double nearlyAll = 0.999;

QString percent(double share)
{
    return QStringLiteral("%1 %").arg(share * 100, 0, 'f', 1);
}

QString milliseconds(double value)
{
    return QStringLiteral("%1 ms").arg(value, 0, 'f', 1);
}

QString mebibytes(double value)
{
    return QStringLiteral("%1 MiB").arg(value, 0, 'f', 1);
}

QString emptyHas(double value)
{
    return QStringLiteral("empty program: ") + mebibytes(value);
}

} // namespace

void StationCosts::addReadings()
{
    const QList<RecordedRow> rows = RecordingReader(file(QStringLiteral("Recorded.dat"))).rows();
    qint64 served = 0;
    qint64 recorded = 0;
    QStringList differences;
    for (const auto &readings : m_served) {
        served += readings->count();
        recorded += readingsOf(readings->serial(), rows).size();
        const QString difference = readings->differences(rows, false);
        if (!difference.isEmpty())
            differences += difference;
    }
    m_hasLostReadings = served == 0 || !differences.isEmpty();
    if (m_hasLostReadings)
        note(QStringLiteral("served and recorded differ:\n") + differences.join(QLatin1Char('\n')));
    m_table.add(QStringLiteral("readings recorded, of %1 loggers").arg(m_options.loggers), QStringLiteral("all served"),
                QString::number(recorded), CostTable::verdict(!m_hasLostReadings),
                QStringLiteral("served: %1").arg(served));
}

void StationCosts::addUse(const Used &used)
{
    m_table.add(QStringLiteral("processor, user and system, share of one core"),
                QStringLiteral("at most ") + percent(processorGoal), percent(used.processorShare),
                CostTable::verdict(used.processorShare <= processorGoal),
                QStringLiteral("empty program: ") + percent(m_empty.processorShare));
    const double ratio = used.memory.rssMiB / m_empty.memory.rssMiB;
    m_table.add(QStringLiteral("memory at the end (RSS: all that is resident)"),
                QStringLiteral("at most %1").arg(mebibytes(memoryGoal * m_empty.memory.rssMiB)),
                QStringLiteral("%1, %2 times").arg(mebibytes(used.memory.rssMiB)).arg(ratio, 0, 'f', 2),
                CostTable::verdict(ratio <= memoryGoal), emptyHas(m_empty.memory.rssMiB));
    m_table.addRemark(QStringLiteral("the same when the measurement began"), mebibytes(m_atFirst.rssMiB));
    m_table.addRemark(QStringLiteral("of it heap and stacks"), mebibytes(used.memory.anonymousMiB),
                      emptyHas(m_empty.memory.anonymousMiB));
    // Whatever else runs with the toolkit takes its share of the libraries.
    m_table.addRemark(QStringLiteral("of it without the share of other programs (PSS)"), mebibytes(used.memory.pssMiB),
                      emptyHas(m_empty.memory.pssMiB));
}

void StationCosts::addStretches(const QString &figuresFile)
{
    const QSettings figures(figuresFile, QSettings::IniFormat);
    const auto figure = [&figures](const QString &kind, const QString &name) {
        return figures.value(kind + QLatin1Char('/') + name).toDouble();
    };
    const auto text = [&figure](const QString &kind, const QString &clock) {
        return QStringLiteral("%1 (99.9 %: %2)")
            .arg(milliseconds(figure(kind, clock + QStringLiteral("Max"))),
                 milliseconds(figure(kind, clock + QStringLiteral("NearlyAll"))));
    };
    const auto addRow = [&](const QString &what, const QString &kind, double goalMs) {
        const int count = int(figure(kind, QStringLiteral("count")));
        if (count == 0) {
            m_table.addRemark(what, QStringLiteral("not measured"));
            return;
        }
        m_table.add(QStringLiteral("%1, longest of %2").arg(what).arg(count),
                    QStringLiteral("at most ") + milliseconds(goalMs), text(kind, QStringLiteral("wall")),
                    CostTable::verdict(figure(kind, QStringLiteral("wallMax")) <= goalMs),
                    QStringLiteral("processor time: ") + text(kind, QStringLiteral("processor")));
    };
    addRow(QStringLiteral("GUI thread busy without a flush"), QStringLiteral("plain"), plainStretchGoalMs);
    addRow(QStringLiteral("GUI thread busy with a flush"), QStringLiteral("flush"), flushStretchGoalMs);
    m_table.addRemark(QStringLiteral("GUI thread busy while starting, not counted above"),
                      text(QStringLiteral("start"), QStringLiteral("wall")),
                      QStringLiteral("processor time: ") + text(QStringLiteral("start"), QStringLiteral("processor")));
}

void StationCosts::addPollTimes()
{
    m_table.addRemark(QStringLiteral("polls received within the measurement"), QString::number(m_pollTimes.polls()),
                      QStringLiteral("%1 loggers, %2 s").arg(m_options.loggers).arg(m_pollTimes.seconds()));
    m_table.add(QStringLiteral("lateness of polls on arrival, most"),
                QStringLiteral("at most ") + milliseconds(latenessGoalMs), milliseconds(m_pollTimes.latestMs()),
                CostTable::verdict(m_pollTimes.latestMs() <= latenessGoalMs),
                QStringLiteral("99.9 %: ") + milliseconds(m_pollTimes.percentileMs(nearlyAll)));
    // A millisecond is what the system's timers promise.
    m_table.add(QStringLiteral("drift of polls over the measurement"), QStringLiteral("none (1 ms)"),
                milliseconds(m_pollTimes.driftMs()), CostTable::verdict(qAbs(m_pollTimes.driftMs()) <= 1));
}
