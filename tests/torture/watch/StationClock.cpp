// A clock that runs faster: every hour lasts as many seconds as TORTURE_CLOCK has it. Times that the station is told
// are those of that clock, and its waits end by it. Not in the picture: clocks of processor time, what the kernel
// stamps, and waits on locks below the threads' library; the station bounds no wait by these.

#include "StationClock.h"

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

/// TORTURE_CLOCK is START:FACTOR:BASE, the station's time in Unix seconds when the monotonic clock showed BASE
/// nanoseconds.
struct StationClock
{
    int64_t startNs = 0;
    int64_t factor = 1;
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
        long long factor = 1;
        long long base = 0;
        const char *text = std::getenv("TORTURE_CLOCK");
        if (text && std::sscanf(text, "%lld:%lld:%lld", &start, &factor, &base) == 3)
            clock = {start * nsPerSecond, factor, base};
        return clock;
    }

    bool isOn() const { return startNs != 0; }
    int64_t sinceBase(int64_t realMonotonicNs) const { return (realMonotonicNs - baseNs) * factor; }
};

timespec timeOf(int64_t ns)
{
    return {time_t(ns / nsPerSecond), long(ns % nsPerSecond)};
}

int64_t nsOf(const timespec &time)
{
    return int64_t(time.tv_sec) * nsPerSecond + time.tv_nsec;
}

int64_t realMonotonicNs()
{
    timespec time = {};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return nsOf(time);
}

/// The moment of either clock of the station as one of the real clock of the same kind.
timespec realMoment(const timespec &moment)
{
    const StationClock &clock = StationClock::instance();
    const bool isDate = moment.tv_sec > leastDate;
    const int64_t sinceBase = nsOf(moment) - (isDate ? clock.startNs : clock.baseNs);
    const int64_t monotonic = clock.baseNs + sinceBase / clock.factor;
    if (!isDate)
        return timeOf(monotonic);
    timespec now = {};
    ::syscall(SYS_clock_gettime, CLOCK_REALTIME, &now);
    return timeOf(nsOf(now) + monotonic - realMonotonicNs());
}

template <typename Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

} // namespace

timespec realDuration(const timespec &duration)
{
    const StationClock &clock = StationClock::instance();
    return clock.isOn() ? timeOf(nsOf(duration) / clock.factor) : duration;
}

bool hasStationClock()
{
    return StationClock::instance().isOn();
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
    *time = timeOf((isDate ? clock.startNs : clock.baseNs) + clock.sinceBase(realMonotonicNs()));
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
    const timespec until = hasStationClock() ? realMoment(*moment) : *moment;
    return wait(condition, mutex, &until);
}

int pthread_cond_clockwait(pthread_cond_t *condition, pthread_mutex_t *mutex, clockid_t id, const timespec *moment)
{
    static const auto wait =
        real<int(pthread_cond_t *, pthread_mutex_t *, clockid_t, const timespec *)>("pthread_cond_clockwait");
    const timespec until = hasStationClock() ? realMoment(*moment) : *moment;
    return wait(condition, mutex, id, &until);
}

} // extern "C"
