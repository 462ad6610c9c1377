#pragma once

#include "store/PendingRow.h"

#include <QByteArray>

#include <optional>
#include <vector>

/// What is to become of the rows that wait beside a recording.
struct SpoolChange
{
    /// The numbers of rows that need not wait any more.
    struct Range
    {
        qint64 first = 0;
        qint64 last = 0;
        bool contains(qint64 number) const { return first <= number && number <= last; }
    };

    std::vector<PendingRow> rows; ///< to be added; a row of the same number is replaced
    std::vector<Range> gone;      ///< to be taken out, also of the rows added
    std::optional<qint64> storedUpTo;
    QByteArray takenIn;

    bool isEmpty() const { return rows.empty() && gone.empty() && !storedUpTo && takenIn.isEmpty(); }
    /// Makes this change and then @p later one change.
    void add(const SpoolChange &later);
    /// What this makes of rows that stand in the order of their numbers.
    void applyTo(std::vector<PendingRow> &waiting) const;
};
