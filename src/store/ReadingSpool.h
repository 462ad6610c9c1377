#pragma once

#include "store/SpoolFile.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Brings queued rows to the disk beside their recording, on a thread of its own: a caller never waits for the disk.
/// Rows that come shortly after one another go there together, with one sync; so do the rows that leave.
class ReadingSpool : public QObject
{
    Q_OBJECT

public:
    /// No row that waits was stored in the recording under the id @p storedUpTo or a lower one.
    ReadingSpool(const QString &path, qint64 storedUpTo);
    ~ReadingSpool() override;

    void append(const PendingRow &row);
    /// The rows of these numbers need not wait any more. They leave together with the next rows that come, much later
    /// only when none do.
    void takeOut(const SpoolFile::Range &numbers, qint64 storedUpTo);
    /// Does not wait for further rows.
    void writeNow();
    /// Whether what was appended reaches the disk.
    bool isWorking() const { return m_works; }
    /// Ends the thread, once @p left is on the disk: all rows that have to wait. False when they are not. A file in
    /// which none wait is deleted.
    bool finish(const std::vector<PendingRow> &left);

signals:
    /// Rows do not reach the disk. They are tried again until restored().
    void failed(const QString &reason);
    void restored();
    /// The file was deleted, moved or replaced, and with it went the rows that waited in it.
    void lost();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void becomeDue(Clock::duration delay);
    bool write(SpoolFile &file, std::unique_lock<std::mutex> &lock);
    void putBack(SpoolFile::Change &&change);
    void tell(bool works, const QString &error);

    const QString m_path;
    std::mutex m_mutex; ///< for the following
    std::condition_variable m_wake;
    SpoolFile::Change m_change;
    qint64 m_storedUpTo;
    std::optional<Clock::time_point> m_due;
    bool m_isEnding = false;

    std::atomic_bool m_works{true};
    bool m_allWritten = true; ///< for the thread, and after its end
    std::thread m_thread;
};
