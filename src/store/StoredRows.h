#pragma once

#include "store/PendingRow.h"

#include <QSqlError>

#include <vector>

class QSqlDatabase;

/// Recorded rows that removeStoredRows() looks at, or as many as it has to find. A recording may be larger than the
/// memory, and what was perhaps stored was stored last.
constexpr int newestRowsSearched = 100000;

/// Takes those of the first @p count rows out that the recording holds already.
QSqlError removeStoredRows(const QSqlDatabase &recording, std::vector<PendingRow> &rows, int count);
