#pragma once

#include <ctime>
#include <poll.h>

/// A clock of the station's own, where TORTURE_CLOCK asks for one: it stands still while the station has something to
/// do or a logger owes it an answer, and leaps to the next moment for which the station waits.
bool hasStationClock();

/// What takes the place of poll() in the main thread then; null as timeout: until something comes.
int pollByStationClock(pollfd *descriptors, nfds_t count, const timespec *timeout, bool isAnswerOwed);
/// A duration in which another thread waits for something.
timespec shortDuration(const timespec &duration);
/// The main thread sleeps.
void sleepByStationClock(const timespec &duration);
