#pragma once

#include "store/PendingRow.h"

#include <QStringList>

#include <vector>

/// The largest number of rows SQLite accepts in one compound statement.
constexpr int maxRowsPerStatement = 500;

/// The row as one term of an insert statement: "select 'A1', 21.5, NULL, 1700000000". Values have six significant
/// digits, so two rows are the same to the recording when their terms are.
QString insertTerm(const PendingRow &row);

/// The statements that store @p rows, one for every 500 of them; none for no rows. Equal rows are stored once:
/// within one statement by its unions, in a larger batch because the repetition is left out.
QStringList insertStatements(const std::vector<PendingRow> &rows);
