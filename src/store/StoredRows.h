#pragma once

#include "store/PendingRow.h"

#include <QSqlError>

#include <optional>
#include <vector>

class QSqlDatabase;

/// Recorded rows that removeStoredRows() looks at for a batch, or as many as it has to find. A recording may be larger
/// than the memory, and what was perhaps stored was stored last.
constexpr int newestRowsSearched = 100000;

/// What is known of rows of which some may be in the recording.
enum class PerhapsStored {
    AsOneBatch,     ///< all of them were written at once, or were to be
    InEarlyBatches, ///< batches took rows from the front; what came later may well be equal to what they stored
};

/// The highest row id of a recording, 0 when it is empty; none when the recording cannot be asked.
std::optional<qint64> newestRowId(const QSqlDatabase &recording);

/// Whether no table or index of the recording has had to be spread over a second page yet: at most a few hundred rows.
bool fitsFirstPage(const QSqlDatabase &recording);

/// All rows of a recording, in the order of their ids.
std::vector<PendingRow> allRows(const QSqlDatabase &recording);

/// Takes those of the first @p count rows out that the recording holds already, under a row id above @p after.
QSqlError removeStoredRows(const QSqlDatabase &recording, std::vector<PendingRow> &rows, int count, qint64 after,
                           PerhapsStored kind);
