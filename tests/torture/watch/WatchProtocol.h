#pragma once

#include <atomic>
#include <cstdint>

/// What the library that is loaded into a station (stationwatch) and the harness outside have in common. The library is
/// told what to do in the environment:
///   TORTURE_STATE   a file of a WatchState, which outlives the station
///   TORTURE_FOLDER  the folder whose files are watched
///   TORTURE_LOG     a file that gets an OperationRecord for everything that changes files there; may be missing
///   TORTURE_KILL    OPERATION:SUFFIX:N:MOMENT ends the station at its Nth such operation on a file whose name ends so;
///                   MOMENT is before, half or after; may be missing
///   TORTURE_SPLASH  milliseconds that a long sleep of the main thread takes; may be missing
///   TORTURE_CLOCK   START:BASE, a clock of the station's own (StationClock) that showed START, in Unix seconds, when
///   the
///                   monotonic clock showed BASE nanoseconds; may be missing
///   TORTURE_RIGHTS  none: what permissions forbid is forbidden to the superuser, too; may be missing
namespace watch {

constexpr int mostLoggers = 64;

/// Readings of the logger behind one TCP port since the station was started.
struct LoggerCount
{
    std::atomic<uint32_t> port;
    std::atomic<uint32_t> asked; ///< polls written
    std::atomic<uint32_t> taken; ///< read from the socket
    std::atomic<uint32_t> shown; ///< and the main thread has done with them what it does: it waits for events again
};

struct WatchState
{
    LoggerCount loggers[mostLoggers];
    std::atomic<uint32_t> isKilled; ///< by TORTURE_KILL
    std::atomic<int64_t> passedNs;  ///< by TORTURE_CLOCK
};

enum class Operation : uint32_t {
    Open,      ///< text: path
    Create,    ///< text: path
    Write,     ///< text: the bytes
    Truncate,  ///< offset: the new size
    SyncBegin, ///< of a file, or of the folder if file is 0
    SyncEnd,   ///< the same
    Rename,    ///< text: both paths, separated by a zero byte
    Link,      ///< the same
    Remove,    ///< text: path
    Map,       ///< writable and shared: what is written so is not seen; text: path
    Shown,     ///< file: port; offset: readings shown so far
};

struct OperationRecord
{
    Operation operation;
    uint32_t size; ///< of the text that follows
    uint64_t file; ///< inode
    int64_t offset;
    int64_t timeNs; ///< of the monotonic clock
};

} // namespace watch
