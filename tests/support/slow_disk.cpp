// Preloaded into a program, makes each of its waits for the disk up to SLOW_DISK_MS milliseconds longer, at random.

#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <random>
#include <thread>

namespace {

int waitAndSync(const char *function, int file)
{
    static const char *const most = std::getenv("SLOW_DISK_MS");
    thread_local std::mt19937 random{std::random_device{}()};
    if (most)
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % unsigned(std::atoi(most) + 1)));
    using Sync = int (*)(int);
    return reinterpret_cast<Sync>(dlsym(RTLD_NEXT, function))(file);
}

} // namespace

extern "C" int fdatasync(int file)
{
    return waitAndSync("fdatasync", file);
}

extern "C" int fsync(int file)
{
    return waitAndSync("fsync", file);
}
