#pragma once

#include "store/PendingRow.h"

#include <vector>

/// The rows that wait for the next batch, of all devices of the process, in the order of their arrival.
class RowQueue
{
public:
    static RowQueue &instance();

    std::vector<PendingRow> &rows() { return m_rows; }
    int count() const { return int(m_rows.size()); }
    /// Appends a row under a number of its own and returns it as it stands now.
    const PendingRow &append(const PendingRow &row);
    void prepend(const std::vector<PendingRow> &rows);
    std::vector<PendingRow> takeAll();

    /// A number higher than any before.
    qint64 nextNumber();
    /// The numbers up to this one were given by an earlier run.
    void skipNumbersUpTo(qint64 number);

    void drop() { ++m_dropped; }
    /// The rows that found no place since the last call.
    int takeDropped();

private:
    std::vector<PendingRow> m_rows;
    qint64 m_lastNumber = 0;
    int m_dropped = 0;
};
