#pragma once

#include "journal/JournalEntry.h"

/// The entry as one line for people: time, kind, and after it what has an answer.
QString plainLine(const JournalEntry &entry);
/// The entry as one line of JSON. All eleven names are there; null stands for what is absent.
QByteArray jsonLine(const JournalEntry &entry);
