// How long opening and stopping takes on a large recording and on an empty one.

#include "stationcosts/LargeRecording.h"
#include "stationcosts/StationCosts.h"
#include "stationcosts/StationRun.h"

#include <QFile>

#include <algorithm>

namespace {

const QString emptyProject = QStringLiteral("Empty");
const QString largeProject = QStringLiteral("Large");

constexpr qint64 bytesPerGiB = 1024LL * 1024 * 1024;
constexpr int timeoutMs = 60000;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

double longest(const std::vector<double> &values)
{
    return *std::max_element(values.cbegin(), values.cend());
}

QString text(const std::vector<double> &values)
{
    return QStringLiteral("%1 s (longest %2)").arg(median(values), 0, 'f', 3).arg(longest(values), 0, 'f', 3);
}

} // namespace

bool StationCosts::measureOpenings()
{
    const QString large = file(largeProject + QStringLiteral(".dat"));
    if (!provideLargeRecording(large, m_options.largeGiB * bytesPerGiB, &m_error))
        return false;
    Opened ofEmpty;
    Opened ofLarge;
    const auto openEmpty = [&] {
        QFile::remove(file(emptyProject + QStringLiteral(".dat")));
        return openAndStop(emptyProject, &ofEmpty);
    };
    const auto openLarge = [&] {
        dropFromCache(large);
        return openAndStop(largeProject, &ofLarge);
    };
    // In turn, so that neither profits from what the other has left behind.
    for (int i = 0; i < m_options.openings; ++i) {
        const bool done = i % 2 == 0 ? openEmpty() && openLarge() : openLarge() && openEmpty();
        if (!done)
            return false;
    }
    addOpenings(ofEmpty, ofLarge);
    return true;
}

/// From the start of the program until it records, and from the request to end until it has ended.
bool StationCosts::openAndStop(const QString &name, Opened *opened)
{
    if (!prepareProject(name))
        return false;
    StationRun station;
    QElapsedTimer clock;
    clock.start();
    const QString rules = QStringLiteral("sorvanto.*.debug=false;sorvanto.app.debug=true;sorvanto.store.debug=true");
    if (!station.start({program(QStringLiteral("sorvanto-lite"))}, environment(rules)) ||
        !station.waitForLine("SorvantoMain::toggleRecordState : m_bIsRecordStart : true", timeoutMs))
        return fail(QStringLiteral("the station did not open %1:\n").arg(name) + station.lastWords());
    const double openSeconds = double(clock.nsecsElapsed()) / 1e9;
    if (!station.waitForLine("commit transaction : true", timeoutMs))
        return fail(QStringLiteral("the station did not record into %1:\n").arg(name) + station.lastWords());
    clock.start();
    if (!station.end())
        return fail(QStringLiteral("the station did not end well:\n") + station.lastWords());
    opened->stopSeconds.push_back(double(clock.nsecsElapsed()) / 1e9);
    opened->openSeconds.push_back(openSeconds);
    return true;
}

void StationCosts::addOpenings(const Opened &empty, const Opened &large)
{
    // Single runs scatter: the large one takes longer only when its usual time exceeds what the empty one can take.
    const auto addRow = [&](const QString &what, const std::vector<double> &onEmpty,
                            const std::vector<double> &onLarge) {
        m_table.add(QStringLiteral("%1 a recording of %2 GiB, median of %3")
                        .arg(what)
                        .arg(m_options.largeGiB)
                        .arg(m_options.openings),
                    QStringLiteral("as on an empty one"), text(onLarge),
                    CostTable::verdict(median(onLarge) <= longest(onEmpty)), QStringLiteral("empty: ") + text(onEmpty));
    };
    addRow(QStringLiteral("opening"), empty.openSeconds, large.openSeconds);
    addRow(QStringLiteral("stopping"), empty.stopSeconds, large.stopSeconds);
}
