#pragma once

#include <QtGlobal>

/// Milliseconds of a clock that nobody can set and that goes on while the computer sleeps, from some beginning.
qint64 steadyTimeMs();
