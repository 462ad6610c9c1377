#pragma once

#include "WatchProtocol.h"

#include <cstddef>
#include <string>
#include <sys/types.h>

namespace watch {

/// Which descriptors lead to files of the watched folder, and the log of what happens to them.
class WatchedFiles
{
public:
    static WatchedFiles &instance();

    bool isWatched(const char *path) const;
    bool isWatched(int descriptor) const;
    void opened(int descriptor, const char *path, bool isNew, bool isEmptied);
    void closed(int descriptor);

    /// To be called right before an operation on a descriptor or path takes place.
    void note(Operation operation, int descriptor, int64_t offset = 0, const void *bytes = nullptr, size_t size = 0);
    void note(Operation operation, const std::string &text);
    void noteShown(uint32_t port, uint32_t count);

    /// Whether the station is to be ended at this operation: 'b' before, 'h' half way, 'a' after it; 0: it is not.
    char moment(const char *operation, int descriptor);
    char moment(const char *operation, const char *path);

private:
    WatchedFiles();
    void append(const OperationRecord &record, const void *text);

    static constexpr int mostDescriptors = 4096;
    struct Descriptor
    {
        bool isWatched = false;
        bool isFolder = false;
        uint64_t file = 0;
        std::string path;
    };

    std::string m_folder;
    int m_log = -1;
    std::string m_killOperation;
    std::string m_killSuffix;
    int m_killLeft = 0;
    char m_killMoment = 0;
    Descriptor m_descriptors[mostDescriptors];
};

int64_t monotonicNs();
[[noreturn]] void endStation();
WatchState *watchState();

} // namespace watch
