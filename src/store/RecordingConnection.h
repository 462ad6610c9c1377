#pragma once

#include <QSqlDatabase>
#include <QString>

/// The connection that is registered under this name, if any, as it stands.
QSqlDatabase recordingConnection(const QString &name);

/// Opens @p file under that name, in place of an earlier connection, and makes it ready: for batches, with its table
/// and little patience with other programs, or for reading only. While it opens it waits 5 s for them. False when the
/// file cannot be used; the reason is in the log.
bool openRecording(const QString &name, const QString &file, bool isReadOnly);
