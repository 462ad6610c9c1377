#include "TortureRows.h"

#include <algorithm>

const QList<TortureRow> &tortureRows()
{
    static const QList<TortureRow> rows{
        {"kills", "killed at any moment", 1000, 12, 20, runKills},
        {"powercut", "power cut at any moment", 200, 8, 10, runPowerCuts},
        {"signals", "told to end at any moment", 100, 6, 10, runSignals},
        {"fulldisk", "disk full, then space again", 500, 4, 25, runFullDisks},
        {"files", "file read, deleted, moved, replaced", 200, 4, 20, runMeddling},
        {"plugs", "USB plugged out and in", 1000, 8, 250, runPlugs},
        {"swaps", "USB ports swapped", 100, 4, 50, runSwaps},
        {"network", "network logger gone and back", 1000, 16, 250, runVanishing},
        {"days", "hours of 64 loggers, DST changes", 144, 0, 72, runDays},
    };
    return rows;
}

const TortureRow *findTortureRow(const QString &name)
{
    const QList<TortureRow> &rows = tortureRows();
    const auto row = std::find_if(rows.cbegin(), rows.cend(),
                                  [&](const TortureRow &each) { return QLatin1String(each.name) == name; });
    return row == rows.cend() ? nullptr : &*row;
}
