#include "TortureRows.h"

#include <algorithm>

const QList<TortureRow> &tortureRows()
{
    static const QList<TortureRow> rows{
        {"kills", "killed at any moment", 1000, 16, 20, runKills},
        {"powercut", "power cut at any moment", 200, 8, 10, runPowerCuts},
        {"signals", "told to end at any moment", 100, 6, 10, runSignals},
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
