#include "store/RowQueue.h"

#include <algorithm>
#include <utility>

RowQueue &RowQueue::instance()
{
    static RowQueue queue;
    return queue;
}

const PendingRow &RowQueue::append(const PendingRow &row)
{
    m_rows.push_back(row);
    m_rows.back().number = nextNumber();
    return m_rows.back();
}

void RowQueue::prepend(const std::vector<PendingRow> &rows)
{
    m_rows.insert(m_rows.begin(), rows.begin(), rows.end());
}

std::vector<PendingRow> RowQueue::takeAll()
{
    return std::exchange(m_rows, {});
}

qint64 RowQueue::nextNumber()
{
    return m_lastNumber = numberAfter(m_lastNumber);
}

void RowQueue::skipNumbersUpTo(qint64 number)
{
    m_lastNumber = std::max(m_lastNumber, number);
}

int RowQueue::takeDropped()
{
    return std::exchange(m_dropped, 0);
}
