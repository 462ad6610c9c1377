// A library that is loaded in front of a station's others (LD_PRELOAD). It tells the harness outside which readings the
// station has taken from its sockets and shown, keeps a log of what changes the files of one folder, and can end the
// station at a chosen operation. What the station does and gets is the same as without it.

#include "StationClock.h"
#include "WatchedFiles.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

using watch::Operation;
using watch::WatchedFiles;

namespace {

constexpr int mostSockets = 4096;
constexpr size_t pageSize = 4096;

int socketPorts[mostSockets];
bool areOpening[mostSockets];
int openings = 0; ///< connections that are being made

void opening(int descriptor, bool isOpening)
{
    if (areOpening[descriptor] == isOpening)
        return;
    areOpening[descriptor] = isOpening;
    openings += isOpening ? 1 : -1;
}

template <typename Function>
Function *real(const char *name)
{
    return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

bool isMainThread()
{
    return ::syscall(SYS_gettid) == ::getpid();
}

watch::LoggerCount *countOf(int port)
{
    watch::WatchState *state = port > 0 ? watch::watchState() : nullptr;
    if (!state)
        return nullptr;
    for (watch::LoggerCount &count : state->loggers) {
        if (count.port == 0)
            count.port = uint32_t(port);
        if (count.port == uint32_t(port))
            return &count;
    }
    return nullptr;
}

void took(int descriptor, const char *bytes, ssize_t size)
{
    if (size <= 0 || descriptor < 0 || descriptor >= mostSockets)
        return;
    if (watch::LoggerCount *count = countOf(socketPorts[descriptor]))
        count->taken += uint32_t(std::count(bytes, bytes + size, '\n'));
}

void beginConnecting(int descriptor, int port)
{
    socketPorts[descriptor] = port;
    opening(descriptor, true);
}

void asked(int descriptor, const char *bytes, size_t size)
{
    if (descriptor < 0 || descriptor >= mostSockets || socketPorts[descriptor] == 0)
        return;
    opening(descriptor, false);
    if (watch::LoggerCount *count = countOf(socketPorts[descriptor]))
        count->asked += uint32_t(std::count(bytes, bytes + size, '\n'));
}

/// What is owed on a connection that is closed does not come.
void forget(int descriptor)
{
    if (socketPorts[descriptor] == 0)
        return;
    opening(descriptor, false);
    if (watch::LoggerCount *count = countOf(std::exchange(socketPorts[descriptor], 0)))
        count->asked = count->taken.load();
}

/// The main thread waits for events: what it has read it has queued and shown.
void turnEnds()
{
    watch::WatchState *state = isMainThread() ? watch::watchState() : nullptr;
    if (!state)
        return;
    for (watch::LoggerCount &count : state->loggers) {
        if (count.port == 0)
            return;
        if (count.shown == count.taken)
            continue;
        count.shown = count.taken.load();
        WatchedFiles::instance().noteShown(count.port, count.shown);
    }
}

/// Whether a connection is being made, or a poll was written and not answered.
bool isAnswerOwed()
{
    if (openings > 0)
        return true;
    for (const watch::LoggerCount &count : watch::watchState()->loggers) {
        if (count.asked > count.taken)
            return true;
    }
    return false;
}

int pollLoggersFirst(pollfd *descriptors, nfds_t count, const timespec *timeout)
{
    const bool isOwed = isAnswerOwed();
    const int ready = pollByStationClock(descriptors, count, timeout, isOwed);
    // It does not come any more.
    if (isOwed && ready == 0) {
        openings = 0;
        for (watch::LoggerCount &logger : watch::watchState()->loggers)
            logger.asked = logger.taken.load();
    }
    return ready;
}

/// Carries an operation out, unless the station is to be ended before or in the middle of it.
template <typename Done, typename Half>
auto carryOut(char moment, const Done &operation, const Half &half)
{
    if (moment == 'h')
        half();
    if (moment == 'b' || moment == 'h')
        watch::endStation();
    const auto result = operation();
    if (moment == 'a')
        watch::endStation();
    return result;
}

template <typename Done>
auto carryOut(char moment, const Done &operation)
{
    return carryOut(moment, operation, [] {});
}

int openWatched(const char *path, int flags, mode_t mode)
{
    WatchedFiles &files = WatchedFiles::instance();
    static const auto open = real<int(const char *, int, ...)>("open64");
    if (!files.isWatched(path))
        return open(path, flags, mode);
    struct stat status = {};
    const bool isNew = (flags & O_CREAT) && ::stat(path, &status) != 0;
    return carryOut(isNew ? files.moment("create", path) : char(0), [&] {
        const int descriptor = open(path, flags, mode);
        if (descriptor >= 0)
            files.opened(descriptor, path, isNew, flags & O_TRUNC);
        return descriptor;
    });
}

int syncWatched(const char *name, int descriptor)
{
    WatchedFiles &files = WatchedFiles::instance();
    const auto sync = real<int(int)>(name);
    if (!files.isWatched(descriptor))
        return sync(descriptor);
    return carryOut(files.moment("sync", descriptor), [&] {
        files.note(Operation::SyncBegin, descriptor);
        const int result = sync(descriptor);
        if (result == 0)
            files.note(Operation::SyncEnd, descriptor);
        return result;
    });
}

template <typename Function>
int onTwoPaths(const char *name, Operation operation, const char *from, const char *to, const Function &function)
{
    WatchedFiles &files = WatchedFiles::instance();
    if (!files.isWatched(from) && !files.isWatched(to))
        return function();
    return carryOut(files.moment(name, to), [&] {
        const int result = function();
        if (result == 0)
            files.note(operation, from + std::string(1, '\0') + to);
        return result;
    });
}

/// To where the kernel may have got when a signal ends the program: a border of its pages.
size_t halfOf(int64_t offset, size_t size)
{
    const size_t border = pageSize - size_t(offset) % pageSize;
    return border < size ? border : 0;
}

/// So that the evidence tells where a station has crashed.
void tellCrash(int number)
{
    void *calls[64];
    ::backtrace_symbols_fd(calls, ::backtrace(calls, 64), STDERR_FILENO);
    ::signal(number, SIG_DFL);
    ::raise(number);
}

[[gnu::constructor]] void watchForCrashes()
{
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        ::signal(number, tellCrash);
}

[[gnu::constructor]] void giveUpRights()
{
    const char *rights = std::getenv("TORTURE_RIGHTS");
    if (!rights || *rights == '\0')
        return;
    __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct data[2] = {};
    ::syscall(SYS_capget, &header, data);
    data[0].effective &= ~(1U << CAP_DAC_OVERRIDE | 1U << CAP_DAC_READ_SEARCH | 1U << CAP_FOWNER);
    ::syscall(SYS_capset, &header, data);
}

} // namespace

extern "C" {

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openWatched(path, flags, mode);
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = flags & (O_CREAT | O_TMPFILE) ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return openWatched(path, flags, mode);
}

int close(int descriptor)
{
    static const auto close = real<int(int)>("close");
    WatchedFiles::instance().closed(descriptor);
    if (descriptor >= 0 && descriptor < mostSockets)
        forget(descriptor);
    return close(descriptor);
}

ssize_t write(int descriptor, const void *bytes, size_t size)
{
    static const auto write = real<ssize_t(int, const void *, size_t)>("write");
    WatchedFiles &files = WatchedFiles::instance();
    asked(descriptor, static_cast<const char *>(bytes), size);
    if (!files.isWatched(descriptor))
        return write(descriptor, bytes, size);
    const off_t offset = ::lseek(descriptor, 0, SEEK_CUR);
    const auto perform = [&](size_t count) {
        const ssize_t written = write(descriptor, bytes, count);
        if (written > 0)
            files.note(Operation::Write, descriptor, offset, bytes, size_t(written));
        return written;
    };
    return carryOut(
        files.moment("write", descriptor), [&] { return perform(size); }, [&] { perform(halfOf(offset, size)); });
}

ssize_t pwrite64(int descriptor, const void *bytes, size_t size, off64_t offset)
{
    static const auto pwrite = real<ssize_t(int, const void *, size_t, off64_t)>("pwrite64");
    WatchedFiles &files = WatchedFiles::instance();
    if (!files.isWatched(descriptor))
        return pwrite(descriptor, bytes, size, offset);
    const auto perform = [&](size_t count) {
        const ssize_t written = pwrite(descriptor, bytes, count, offset);
        if (written > 0)
            files.note(Operation::Write, descriptor, offset, bytes, size_t(written));
        return written;
    };
    return carryOut(
        files.moment("write", descriptor), [&] { return perform(size); }, [&] { perform(halfOf(offset, size)); });
}

ssize_t pwrite(int descriptor, const void *bytes, size_t size, off_t offset)
{
    return pwrite64(descriptor, bytes, size, offset);
}

int ftruncate64(int descriptor, off64_t size) noexcept
{
    static const auto truncate = real<int(int, off64_t)>("ftruncate64");
    WatchedFiles &files = WatchedFiles::instance();
    if (!files.isWatched(descriptor))
        return truncate(descriptor, size);
    return carryOut(files.moment("truncate", descriptor), [&] {
        const int result = truncate(descriptor, size);
        if (result == 0)
            files.note(Operation::Truncate, descriptor, size);
        return result;
    });
}

int ftruncate(int descriptor, off_t size) noexcept
{
    return ftruncate64(descriptor, size);
}

int fsync(int descriptor)
{
    return syncWatched("fsync", descriptor);
}

int fdatasync(int descriptor)
{
    return syncWatched("fdatasync", descriptor);
}

int unlink(const char *path) noexcept
{
    static const auto unlink = real<int(const char *)>("unlink");
    WatchedFiles &files = WatchedFiles::instance();
    if (!files.isWatched(path))
        return unlink(path);
    return carryOut(files.moment("remove", path), [&] {
        const int result = unlink(path);
        if (result == 0)
            files.note(Operation::Remove, path);
        return result;
    });
}

int rename(const char *from, const char *to) noexcept
{
    static const auto rename = real<int(const char *, const char *)>("rename");
    return onTwoPaths("rename", Operation::Rename, from, to, [&] { return rename(from, to); });
}

int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept
{
    static const auto rename = real<int(int, const char *, int, const char *, unsigned)>("renameat2");
    return onTwoPaths("rename", Operation::Rename, from, to,
                      [&] { return rename(fromFolder, from, toFolder, to, flags); });
}

int link(const char *from, const char *to) noexcept
{
    static const auto link = real<int(const char *, const char *)>("link");
    return onTwoPaths("link", Operation::Link, from, to, [&] { return link(from, to); });
}

void *mmap64(void *address, size_t size, int protection, int flags, int descriptor, off64_t offset) noexcept
{
    static const auto map = real<void *(void *, size_t, int, int, int, off64_t)>("mmap64");
    if ((protection & PROT_WRITE) && (flags & MAP_SHARED) && WatchedFiles::instance().isWatched(descriptor))
        WatchedFiles::instance().note(Operation::Map, descriptor);
    return map(address, size, protection, flags, descriptor, offset);
}

int connect(int descriptor, const sockaddr *address, socklen_t size)
{
    static const auto connect = real<int(int, const sockaddr *, socklen_t)>("connect");
    if (descriptor >= 0 && descriptor < mostSockets && address->sa_family == AF_INET)
        beginConnecting(descriptor, ntohs(reinterpret_cast<const sockaddr_in *>(address)->sin_port));
    return connect(descriptor, address, size);
}

ssize_t read(int descriptor, void *bytes, size_t size)
{
    static const auto read = real<ssize_t(int, void *, size_t)>("read");
    const ssize_t count = read(descriptor, bytes, size);
    took(descriptor, static_cast<const char *>(bytes), count);
    return count;
}

int ppoll(pollfd *descriptors, nfds_t count, const timespec *timeout, const sigset_t *mask)
{
    static const auto ppoll = real<int(pollfd *, nfds_t, const timespec *, const sigset_t *)>("ppoll");
    turnEnds();
    if (hasStationClock() && isMainThread())
        return pollLoggersFirst(descriptors, count, timeout);
    if (!timeout)
        return ppoll(descriptors, count, nullptr, mask);
    const timespec duration = shortDuration(*timeout);
    return ppoll(descriptors, count, &duration, mask);
}

int poll(pollfd *descriptors, nfds_t count, int timeout)
{
    const timespec duration{timeout / 1000, timeout % 1000 * 1000000L};
    return ppoll(descriptors, count, timeout < 0 ? nullptr : &duration, nullptr);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec *time, timespec *left)
{
    static const auto sleep = real<int(clockid_t, int, const timespec *, timespec *)>("clock_nanosleep");
    static const char *const splash = ::getenv("TORTURE_SPLASH");
    if (flags != 0)
        return sleep(clock, flags, time, left);
    // What is left is asked for after a signal; nobody here minds a shorter sleep then.
    if (left)
        *left = {};
    if (hasStationClock() && isMainThread()) {
        sleepByStationClock(*time);
        return 0;
    }
    timespec duration = shortDuration(*time);
    if (splash && *splash != '\0' && time->tv_sec >= 2 && isMainThread()) {
        const int milliseconds = std::atoi(splash);
        duration = {milliseconds / 1000, milliseconds % 1000 * 1000000L};
    }
    return sleep(clock, flags, &duration, nullptr);
}

int nanosleep(const timespec *time, timespec *left)
{
    const int error = clock_nanosleep(CLOCK_REALTIME, 0, time, left);
    errno = error;
    return error == 0 ? 0 : -1;
}

int usleep(useconds_t microseconds)
{
    const timespec time{time_t(microseconds / 1000000), long(microseconds % 1000000) * 1000};
    return nanosleep(&time, nullptr);
}

} // extern "C"
