#pragma once

#include <QString>

/// The journal of the project with that recording: beside it, NAME.events for NAME.dat.
QString journalPath(const QString &recording);
