#include "store/ReadingSpool.h"

#include "store/Logging.h"

#include <QFile>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// All loggers of a poll round answer meanwhile, and it is over well before the next round.
constexpr std::chrono::milliseconds gathering(250);
constexpr std::chrono::seconds untilRetry(1);
// Rows that are in both files do no harm: a sync of their own is spared them while further rows are to come.
constexpr std::chrono::minutes untilIdle(1);

} // namespace

ReadingSpool::ReadingSpool(const QString &path, qint64 storedUpTo) : m_path(path), m_storedUpTo(storedUpTo)
{
    m_thread = std::thread(&ReadingSpool::run, this);
}

ReadingSpool::~ReadingSpool()
{
    if (m_thread.joinable())
        finish({});
}

void ReadingSpool::append(const PendingRow &row)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_change.rows.push_back(row);
    becomeDue(gathering);
}

void ReadingSpool::takeOut(const SpoolFile::Range &numbers, qint64 storedUpTo)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    auto &rows = m_change.rows;
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [&numbers](const PendingRow &row) { return numbers.contains(row.number); }),
               rows.end());
    auto &gone = m_change.gone;
    if (!gone.empty() && gone.back().last + 1 == numbers.first)
        gone.back().last = numbers.last;
    else
        gone.push_back(numbers);
    m_change.storedUpTo = m_storedUpTo = storedUpTo;
    becomeDue(untilIdle);
}

void ReadingSpool::writeNow()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    // Where writing fails, the rows of every round would only be tried more often.
    if (m_works && !m_change.rows.empty())
        becomeDue({});
}

/// The mutex is held.
void ReadingSpool::becomeDue(Clock::duration delay)
{
    const Clock::time_point due = Clock::now() + delay;
    if (m_due && *m_due <= due)
        return;
    m_due = due;
    m_wake.notify_one();
}

bool ReadingSpool::finish(const std::vector<PendingRow> &left)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
    if (m_allWritten || left.empty())
        return true;
    SpoolFile file(m_path);
    SpoolFile::Change everything;
    everything.rows = left;
    everything.storedUpTo = m_storedUpTo;
    return file.write(everything);
}

void ReadingSpool::run()
{
    SpoolFile file(m_path);
    std::unique_lock<std::mutex> lock(m_mutex);
    while (!m_isEnding) {
        if (!m_due) {
            m_wake.wait(lock);
        } else if (const Clock::time_point due = *m_due; Clock::now() < due) {
            m_wake.wait_until(lock, due);
        } else {
            m_due.reset();
            if (!write(file, lock))
                becomeDue(untilRetry);
        }
    }
    m_allWritten = write(file, lock);
    file.removeIfEmpty();
}

/// Writes what has come together, without the mutex meanwhile.
bool ReadingSpool::write(SpoolFile &file, std::unique_lock<std::mutex> &lock)
{
    SpoolFile::Change change = std::exchange(m_change, {});
    const bool isLost = file.isLost();
    if (isLost)
        file.close();
    // A new file has to know it, too.
    if (!change.isEmpty() && !file.isOpen())
        change.storedUpTo = m_storedUpTo;
    lock.unlock();
    const bool hasNothingToDo = change.isEmpty() || (change.rows.empty() && !file.isOpen() && !QFile::exists(m_path));
    const bool isWritten = hasNothingToDo || file.write(change);
    tell(isWritten, file.errorText());
    if (isLost)
        emit lost();
    lock.lock();
    if (!isWritten)
        putBack(std::move(change));
    return isWritten && !isLost;
}

/// Rows and ranges that came since stand behind these; the mutex is held.
void ReadingSpool::putBack(SpoolFile::Change &&change)
{
    const auto isGone = [this](const PendingRow &row) {
        return std::any_of(m_change.gone.cbegin(), m_change.gone.cend(),
                           [&row](const SpoolFile::Range &range) { return range.contains(row.number); });
    };
    auto &rows = change.rows;
    rows.erase(std::remove_if(rows.begin(), rows.end(), isGone), rows.end());
    rows.insert(rows.end(), std::make_move_iterator(m_change.rows.begin()),
                std::make_move_iterator(m_change.rows.end()));
    change.gone.insert(change.gone.end(), m_change.gone.cbegin(), m_change.gone.cend());
    m_change = std::move(change);
}

void ReadingSpool::tell(bool works, const QString &error)
{
    if (m_works.exchange(works) == works)
        return;
    if (works) {
        emit restored();
        return;
    }
    qCWarning(lcSpool).noquote().nospace() << "ReadingSpool::write : [ERROR] " << m_path << " : " << error;
    emit failed(error);
}
