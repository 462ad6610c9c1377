#pragma once

#include "ShardPool.h"
#include "TortureRows.h"

/// A line for each row. @p isClean is whether nothing was found in any, and each did all its rounds.
QString resultTable(const QList<const TortureRow *> &rows, const QMap<QString, ShardPool::Sum> &sums, bool *isClean);
