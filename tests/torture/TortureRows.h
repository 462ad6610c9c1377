#pragma once

#include <QList>
#include <QString>

class Shard;

/// A row of the table.
struct TortureRow
{
    const char *name;
    const char *title;
    int rounds;      ///< of the long form
    int shortRounds; ///< of the short form; 0: it leaves the row out
    int shardRounds; ///< that one process carries out
    void (*run)(Shard &shard);
};

const QList<TortureRow> &tortureRows();
/// Null when there is none of that name.
const TortureRow *findTortureRow(const QString &name);

// What the rows do, each in a source of its own.
void runKills(Shard &shard);
void runPowerCuts(Shard &shard);
void runSignals(Shard &shard);
void runFullDisks(Shard &shard);
void runMeddling(Shard &shard);
void runPlugs(Shard &shard);
void runSwaps(Shard &shard);
void runVanishing(Shard &shard);
void runDays(Shard &shard);
