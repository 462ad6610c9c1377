#pragma once

#include <QString>

/// Makes a recording of at least @p bytes at @p path, as a station of 64 loggers has it after some weeks, unless there
/// is one. It only appears there once it is whole. False, with the reason in @p error, when it cannot be made.
bool provideLargeRecording(const QString &path, qint64 bytes, QString *error);

/// Makes the system forget the file's content, so that it is read from the disk again.
void dropFromCache(const QString &path);
