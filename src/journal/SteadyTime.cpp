#include "journal/SteadyTime.h"

#ifdef Q_OS_LINUX
#include <ctime>
#else
#include <chrono>
#endif

qint64 steadyTimeMs()
{
#ifdef Q_OS_LINUX
    // The monotonic clock stands still in a suspended computer.
    timespec time = {};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
#else
    using std::chrono::steady_clock;
    return std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count();
#endif
}
