#include "StationClock.h"

#include "WatchedFiles.h"

#include <cerrno>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

constexpr int64_t nsPerSecond = 1000000000;
// No computer has been running for so long, and no date is so old.
constexpr int64_t leastDate = 900000000;
constexpr int64_t pieceNs = 2000000;
constexpr int64_t longestAnswerNs = 5 * nsPerSecond;
// What threads that are not the station's own wait for is seldom a time; how long it seems to them does not matter.
constexpr int64_t otherThreadsFactor = 100;

/// TORTURE_CLOCK is START:BASE, the station's time in Unix seconds when the monotonic clock showed BASE nanoseconds.
struct StationClock
{
    int64_t startNs = 0;
    int64_t baseNs = 0;

    static const StationClock &instance()
    {
        static const StationClock clock = fromEnvironment();
        return clock;
    }

    static StationClock fromEnvironment()
    {
        StationClock clock;
        long long start = 0;
        long long base = 0;
        const char *text = std::getenv("TORTURE_CLOCK");
        if (text && watch::watchState() && std::sscanf(text, "%lld:%lld", &start, &base) == 2)
            clock = {start * nsPerSecond, base};
        return clock;
    }

    bool isOn() const { return startNs != 0; }
    static int64_t passedNs() { return watch::watchState()->passedNs; }
};

timespec timeOf(int64_t ns)
{
    return {time_t(ns / nsPerSecond), long(ns % nsPerSecond)};
}

int64_t nsOf(const timespec &time)
{
    return int64_t(time.tv_sec) * nsPerSecond + time.tv_nsec;
}

timespec realTimeAfter(clockid_t id, int64_t ns)
{
    timespec now = {};
    ::syscall(SYS_clock_gettime, id, &now);
    return timeOf(nsOf(now) + ns);
}

bool isDate(const timespec &moment)
{
    return moment.tv_sec > leastDate;
}

bool hasPassed(const timespec &moment)
{
    const StationClock &clock = StationClock::instance();
    return nsOf(moment) <= (isDate(moment) ? clock.startNs : clock.baseNs) + StationClock::passedNs();
}

/// Waits in short pieces, as the clock leaps without a word.
template <typename Wait>
int waitUntil(const timespec &moment, const Wait &wait)
{
    while (!hasPassed(moment)) {
        const timespec until = realTimeAfter(isDate(moment) ? CLOCK_REALTIME : CLOCK_MONOTONIC, pieceNs);
        if (const int result = wait(until); result != ETIMEDOUT)
            return result;
    }
    return ETIMEDOUT;
}

template <typename Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

} // namespace

bool hasStationClock()
{
    return StationClock::instance().isOn();
}

timespec shortDuration(const timespec &duration)
{
    return StationClock::instance().isOn() ? timeOf(nsOf(duration) / otherThreadsFactor) : duration;
}

void sleepByStationClock(const timespec &duration)
{
    watch::watchState()->passedNs += nsOf(duration);
}

int pollByStationClock(pollfd *descriptors, nfds_t count, const timespec *timeout, bool isAnswerOwed)
{
    static const auto ppoll = real<int(pollfd *, nfds_t, const timespec *, const sigset_t *)>("ppoll");
    static const timespec longest = timeOf(longestAnswerNs);
    static const timespec none = {};
    const int ready = ppoll(descriptors, count, isAnswerOwed ? &longest : &none, nullptr);
    if (ready != 0)
        return ready;
    if (!timeout)
        return ppoll(descriptors, count, nullptr, nullptr);
    watch::watchState()->passedNs += nsOf(*timeout);
    return 0;
}

extern "C" {

int clock_gettime(clockid_t id, timespec *time) noexcept
{
    const StationClock &clock = StationClock::instance();
    const bool isDate = id == CLOCK_REALTIME || id == CLOCK_REALTIME_COARSE;
    const bool isMonotonic =
        id == CLOCK_MONOTONIC || id == CLOCK_MONOTONIC_COARSE || id == CLOCK_MONOTONIC_RAW || id == CLOCK_BOOTTIME;
    if (!clock.isOn() || (!isDate && !isMonotonic)) {
        static const auto gettime = real<int(clockid_t, timespec *)>("clock_gettime");
        return gettime(id, time);
    }
    *time = timeOf((isDate ? clock.startNs : clock.baseNs) + StationClock::passedNs());
    return 0;
}

int gettimeofday(timeval *time, void *) noexcept
{
    timespec now = {};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, now.tv_nsec / 1000};
    return result;
}

time_t time(time_t *seconds) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    if (seconds)
        *seconds = now.tv_sec;
    return now.tv_sec;
}

int pthread_cond_timedwait(pthread_cond_t *condition, pthread_mutex_t *mutex, const timespec *moment)
{
    static const auto wait = real<int(pthread_cond_t *, pthread_mutex_t *, const timespec *)>("pthread_cond_timedwait");
    if (!hasStationClock())
        return wait(condition, mutex, moment);
    return waitUntil(*moment, [&](const timespec &until) { return wait(condition, mutex, &until); });
}

int pthread_cond_clockwait(pthread_cond_t *condition, pthread_mutex_t *mutex, clockid_t id, const timespec *moment)
{
    static const auto wait =
        real<int(pthread_cond_t *, pthread_mutex_t *, clockid_t, const timespec *)>("pthread_cond_clockwait");
    if (!hasStationClock())
        return wait(condition, mutex, id, moment);
    return waitUntil(*moment, [&](const timespec &until) { return wait(condition, mutex, id, &until); });
}

} // extern "C"
