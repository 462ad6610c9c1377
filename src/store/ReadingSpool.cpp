#include "store/ReadingSpool.h"

#include "store/Logging.h"

#include <QFile>

#include <utility>

namespace {

// All loggers of a poll round answer meanwhile, and it is over well before the next round.
constexpr std::chrono::milliseconds gathering(250);
constexpr std::chrono::seconds untilRetry(1);
// Rows that are in both files do no harm: a sync of their own is spared them while further rows are to come.
constexpr std::chrono::minutes untilIdle(1);

} // namespace

ReadingSpool::ReadingSpool(const QString &path, qint64 storedUpTo, std::unique_ptr<RedoLog> log)
    : m_path(path), m_storedUpTo(storedUpTo), m_log(std::move(log))
{
    m_thread = std::thread(&ReadingSpool::run, this);
}

ReadingSpool::~ReadingSpool()
{
    if (m_thread.joinable())
        finish({});
}

void ReadingSpool::bring(const SpoolChange &change)
{
    if (change.isEmpty())
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_change = change;
    becomeDue({});
}

void ReadingSpool::apply(const SpoolChange &change)
{
    if (change.isEmpty())
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_storedUpTo = change.storedUpTo.value_or(m_storedUpTo);
    if (m_log)
        log(change);
    m_change.add(change);
    becomeDue(change.rows.empty() ? Clock::duration(untilIdle) : gathering);
}

/// The mutex is held.
void ReadingSpool::log(SpoolChange change)
{
    // What is found there may be all that is known of the rows.
    change.storedUpTo = m_storedUpTo;
    const bool isFull = !m_log->append(change);
    if (isFull && !m_isLogFull)
        qCWarning(lcSpool).noquote().nospace() << "ReadingSpool::log : [ERROR] no room : " << m_log->path();
    m_isLogFull = isFull;
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
    const bool areSaved = m_allWritten || left.empty() || writeAll(left);
    // What the disk does not take is found there as long as the computer runs.
    if (m_log && areSaved)
        m_log->discard(m_log->end());
    m_log.reset();
    return areSaved;
}

/// After the end of the thread.
bool ReadingSpool::writeAll(const std::vector<PendingRow> &rows) const
{
    SpoolChange everything;
    everything.rows = rows;
    everything.storedUpTo = m_storedUpTo;
    return SpoolFile(m_path).write(everything);
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
    SpoolChange change = std::exchange(m_change, {});
    const qint64 storedUpTo = m_storedUpTo;
    const quint64 logged = m_log ? m_log->end() : 0;
    lock.unlock();
    const bool isLost = file.isLost();
    if (isLost)
        file.close();
    // A new file has to know it, too.
    if (!change.isEmpty() && !file.isOpen())
        change.storedUpTo = storedUpTo;
    const bool hasNothingToDo = change.isEmpty() || (change.rows.empty() && !file.isOpen() && !QFile::exists(m_path));
    const bool isWritten = hasNothingToDo || file.write(change);
    tell(isWritten, file.errorText());
    if (isLost)
        QMetaObject::invokeMethod(this, &ReadingSpool::lost, Qt::QueuedConnection);
    lock.lock();
    if (!isWritten) {
        // What came meanwhile stands behind it.
        change.add(std::exchange(m_change, {}));
        m_change = std::move(change);
    } else if (m_log) {
        m_log->discard(logged);
    }
    return isWritten && !isLost;
}

void ReadingSpool::tell(bool works, const QString &error)
{
    if (m_works.exchange(works) == works)
        return;
    if (works) {
        QMetaObject::invokeMethod(this, &ReadingSpool::restored, Qt::QueuedConnection);
        return;
    }
    qCWarning(lcSpool).noquote().nospace() << "ReadingSpool::write : [ERROR] " << m_path << " : " << error;
    QMetaObject::invokeMethod(
        this, [this, error] { emit failed(error); }, Qt::QueuedConnection);
}
