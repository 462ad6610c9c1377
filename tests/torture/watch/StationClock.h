#pragma once

#include <ctime>

/// Whether the station has a clock of its own.
bool hasStationClock();
/// How long a duration of the station's lasts.
timespec realDuration(const timespec &duration);
