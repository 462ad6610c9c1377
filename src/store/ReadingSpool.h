#pragma once

#include "store/RedoLog.h"
#include "store/SpoolFile.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Brings queued rows to the disk beside their recording, on a thread of its own: a caller never waits for the disk.
/// Rows that come shortly after one another go there together, with one sync; so do the rows that leave. Until then
/// they are in a log that outlives the program, where there is one.
class ReadingSpool : public QObject
{
    Q_OBJECT

public:
    /// No row that waits was stored in the recording under the id @p storedUpTo or a lower one.
    explicit ReadingSpool(const QString &path, qint64 storedUpTo = 0, std::unique_ptr<RedoLog> log = {});
    ~ReadingSpool() override;

    /// Before any other: what stands in the log already goes to the disk at once.
    void bring(const SpoolChange &change);

    /// When this returns the change outlives the program, if there is a log. Rows that only leave go to the disk
    /// together with the next ones that come, much later only when none do.
    void apply(const SpoolChange &change);
    /// Does not wait for further rows.
    void writeNow();
    /// Whether what was appended reaches the disk.
    bool isWorking() const { return m_works; }
    /// Ends the thread, once @p left is on the disk: all rows that have to wait. False when they are not. A file in
    /// which none wait is deleted.
    bool finish(const std::vector<PendingRow> &left);

    // From the owner's event loop, so that nobody who connects before it runs misses what the thread told at once.
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
    void log(SpoolChange change);
    bool writeAll(const std::vector<PendingRow> &rows) const;
    void tell(bool works, const QString &error);

    const QString m_path;
    std::mutex m_mutex; ///< for the following
    std::condition_variable m_wake;
    SpoolChange m_change;
    qint64 m_storedUpTo;
    std::unique_ptr<RedoLog> m_log;
    bool m_isLogFull = false;
    std::optional<Clock::time_point> m_due;
    bool m_isEnding = false;

    std::atomic_bool m_works{true};
    bool m_allWritten = true; ///< for the thread, and after its end
    std::thread m_thread;
};
