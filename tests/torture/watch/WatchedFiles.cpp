#include "WatchedFiles.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <mutex>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace watch {

namespace {

std::mutex &mutex()
{
    static std::mutex mutex;
    return mutex;
}

std::string text(const char *variable)
{
    const char *value = std::getenv(variable);
    return value ? value : std::string();
}

bool endsWith(const std::string &text, const std::string &end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// Past the functions that are watched.
int openUnwatched(const std::string &path, int flags)
{
    return path.empty() ? -1 : int(::syscall(SYS_openat, AT_FDCWD, path.c_str(), flags | O_CLOEXEC, 0600));
}

WatchState *mapState()
{
    const int file = openUnwatched(text("TORTURE_STATE"), O_RDWR);
    if (file < 0)
        return nullptr;
    void *memory = ::mmap(nullptr, sizeof(WatchState), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ::syscall(SYS_close, file);
    return memory == MAP_FAILED ? nullptr : static_cast<WatchState *>(memory);
}

} // namespace

int64_t monotonicNs()
{
    timespec time = {};
    ::syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &time);
    return int64_t(time.tv_sec) * 1000000000 + time.tv_nsec;
}

WatchState *watchState()
{
    static WatchState *const state = mapState();
    return state;
}

void endStation()
{
    if (WatchState *state = watchState())
        state->isKilled = 1;
    ::kill(::getpid(), SIGKILL);
    while (true)
        ::pause();
}

WatchedFiles &WatchedFiles::instance()
{
    // Files are closed until the very end of the program: it is never destroyed.
    static WatchedFiles *const files = new WatchedFiles;
    return *files;
}

WatchedFiles::WatchedFiles() : m_folder(text("TORTURE_FOLDER"))
{
    m_log = openUnwatched(text("TORTURE_LOG"), O_WRONLY | O_APPEND | O_CREAT);
    const std::string kill = text("TORTURE_KILL");
    const size_t first = kill.find(':');
    const size_t second = kill.find(':', first + 1);
    const size_t third = kill.find(':', second + 1);
    if (first == std::string::npos || second == std::string::npos || third == std::string::npos)
        return;
    m_killOperation = kill.substr(0, first);
    m_killSuffix = kill.substr(first + 1, second - first - 1);
    m_killLeft = std::atoi(kill.c_str() + second + 1);
    m_killMoment = kill[third + 1];
}

bool WatchedFiles::isWatched(const char *path) const
{
    return path && !m_folder.empty() && std::strncmp(path, m_folder.c_str(), m_folder.size()) == 0 &&
           (path[m_folder.size()] == '/' || path[m_folder.size()] == '\0');
}

bool WatchedFiles::isWatched(int descriptor) const
{
    return descriptor >= 0 && descriptor < mostDescriptors && m_descriptors[descriptor].isWatched;
}

void WatchedFiles::opened(int descriptor, const char *path, bool isNew, bool isEmptied)
{
    if (descriptor < 0 || descriptor >= mostDescriptors)
        return;
    struct stat status = {};
    ::fstat(descriptor, &status);
    const bool isFolder = S_ISDIR(status.st_mode);
    m_descriptors[descriptor] = {true, isFolder, isFolder ? 0 : status.st_ino, path};
    if (isFolder)
        return;
    note(isNew ? Operation::Create : Operation::Open, descriptor, 0, path, std::strlen(path));
    if (isEmptied && !isNew)
        note(Operation::Truncate, descriptor, 0);
}

void WatchedFiles::closed(int descriptor)
{
    if (isWatched(descriptor))
        m_descriptors[descriptor].isWatched = false;
}

void WatchedFiles::note(Operation operation, int descriptor, int64_t offset, const void *bytes, size_t size)
{
    append({operation, uint32_t(size), m_descriptors[descriptor].file, offset, monotonicNs()}, bytes);
}

void WatchedFiles::note(Operation operation, const std::string &text)
{
    append({operation, uint32_t(text.size()), 0, 0, monotonicNs()}, text.data());
}

void WatchedFiles::noteShown(uint32_t port, uint32_t count)
{
    append({Operation::Shown, 0, port, count, monotonicNs()}, nullptr);
}

/// At once, so that a record is whole whenever the station ends.
void WatchedFiles::append(const OperationRecord &record, const void *text)
{
    if (m_log < 0)
        return;
    const int before = errno;
    iovec parts[2] = {{const_cast<OperationRecord *>(&record), sizeof(record)},
                      {const_cast<void *>(text), record.size}};
    ::syscall(SYS_writev, m_log, parts, text ? 2 : 1);
    errno = before;
}

char WatchedFiles::moment(const char *operation, int descriptor)
{
    return isWatched(descriptor) ? moment(operation, m_descriptors[descriptor].path.c_str()) : char(0);
}

char WatchedFiles::moment(const char *operation, const char *path)
{
    if (m_killLeft <= 0)
        return 0;
    const std::lock_guard<std::mutex> lock(mutex());
    if (m_killOperation != operation || !endsWith(path, m_killSuffix) || --m_killLeft > 0)
        return 0;
    return m_killMoment;
}

} // namespace watch
