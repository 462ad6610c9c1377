#pragma once

#include <QString>

class QSqlDatabase;

/// What makes the index on the time of the readings.
QString timeIndexStatement();

/// Page size, cache size and no journal. False when one of them is refused; the reason is in the log.
bool tuneForAppending(const QSqlDatabase &database);

/// Makes the table of readings, and an index on their time with it, where there is none yet. False when the file is
/// no database or cannot be changed; the reason is in the log.
bool createTable(const QSqlDatabase &database);

/// Whether a file that is only to be read is a database, with or without readings.
bool isDatabase(const QSqlDatabase &database);
