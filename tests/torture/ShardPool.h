#pragma once

#include "Shard.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QTimer>

#include <deque>
#include <memory>
#include <vector>

class QProcess;

/// Carries out the parts of all rows, several at a time, each in a process with locks of serial ports of its own.
class ShardPool : public QObject
{
    Q_OBJECT

public:
    struct Sum
    {
        RowResult result;
        int ordered = 0;         ///< rounds
        int begun = 0;           ///< rounds done so far, also of parts that are not over
        qint64 milliseconds = 0; ///< of all parts, as if they had run one after another
    };

    /// @p jobs at a time.
    explicit ShardPool(int jobs, QObject *parent = nullptr);
    ~ShardPool() override;

    void add(const Shard::Order &order);
    void start();
    /// By row, in no order.
    const QMap<QString, Sum> &sums() const { return m_sums; }

signals:
    void finished();

private:
    struct Running;

    void startNext();
    void readFrom(Running *running);
    void ended(Running *running);
    void tellProgress();

    const int m_jobs;
    std::deque<Shard::Order> m_waiting;
    std::vector<std::unique_ptr<Running>> m_running;
    QMap<QString, Sum> m_sums;
    QTimer m_progress;
    QElapsedTimer m_time;
};
