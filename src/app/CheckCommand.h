#pragma once

#include <QString>

/// The station asked to look through a recording instead of coming up: says what it finds on the standard output, and
/// how far it is on the standard error. Returns the exit code: 0 whole, 1 damaged, 3 no recording or not to be read.
int checkRecordingCommand(const QString &path);
