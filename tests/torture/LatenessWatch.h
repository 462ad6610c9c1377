#pragma once

#include <atomic>
#include <thread>

/// How late this machine lets a program do what is due: what is too late by no more than that says nothing of the
/// program.
class LatenessWatch
{
public:
    LatenessWatch();
    ~LatenessWatch();
    LatenessWatch(const LatenessWatch &) = delete;
    LatenessWatch &operator=(const LatenessWatch &) = delete;

    /// The latest since the last call, in milliseconds.
    int take() { return m_latest.exchange(0); }

private:
    void run();

    std::atomic_int m_latest{0};
    std::atomic_bool m_isEnding{false};
    std::thread m_thread;
};
