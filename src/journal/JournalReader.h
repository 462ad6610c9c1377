#pragma once

#include "journal/JournalEntry.h"

#include <functional>

/// What reading a journal from its beginning came to.
struct JournalVerdict
{
    enum State { Whole, Broken, Unreadable };
    State state = Unreadable;
    qint64 entries = 0;       ///< that were read
    qint64 brokenAt = 0;      ///< id of the first entry that does not follow from those before it
    QByteArray head;          ///< hash of the last entry read
    QString reason;           ///< of Unreadable, a sentence
    bool isNoJournal = false; ///< unreadable because of what the file holds, rather than by lack of access
    JournalEntry last;        ///< the last entry read, empty when there is none

    bool isWhole() const { return state == Whole; }
};

/// Reads a journal in the order of its entries and follows its chain, without changing a byte of it, also while a
/// station writes it. Every entry is handed to @p take, those behind a break too.
JournalVerdict readJournal(const QString &path, const std::function<void(const JournalEntry &)> &take = {});
