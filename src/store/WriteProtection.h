#pragma once

#include <QString>

class QSqlDatabase;

/// Whether a file that is there is marked as one not to be written, also for the superuser, who could; or whether it
/// lies where nobody can write.
bool isWriteProtected(const QString &path);

/// Whether SQLite can only read an open recording. It opens such a file without a word and would tell no sooner than
/// when something is to be written.
bool refusesToWrite(const QSqlDatabase &database);
