// One poll round's readings through the spool file, against a bare append and fdatasync of the bytes that the spool
// itself writes for them. Both write to files in the working directory, round by round in turn, so that the disk's
// moods hit both. And the same rounds into the log in memory.

#include "store/MemoryFolders.h"
#include "store/RedoLog.h"
#include "store/SpoolFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

int syncs = 0;

const QString spoolPath = QStringLiteral("bench_spool.dat.spool");
const char *const barePath = "bench_spool_bare";

template <class Work>
double seconds(const Work &work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + values.size() / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The readings of @p loggers; those of the round before leave.
SpoolFile::Change roundOf(int loggers, qint64 &number)
{
    SpoolFile::Change change;
    change.gone.push_back({number - loggers + 1, number});
    change.storedUpTo = number;
    for (int i = 0; i < loggers; ++i) {
        const QString serial = QStringLiteral("0050C2%1").arg(i, 6, 16, QLatin1Char('0'));
        change.rows.push_back({serial, 21.5 + 0.01 * i, 40.25, quint32(1700000000), ++number});
    }
    return change;
}

qint64 bytesWritten()
{
    QFile file(QStringLiteral("/proc/self/io"));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read /proc/self/io");
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("wchar: "))
            return line.mid(7).toLongLong();
    }
    return 0;
}

void writeRound(benchmark::State &state)
{
    const int loggers = int(state.range(0));
    QFile::remove(spoolPath);
    SpoolFile spool(spoolPath);
    const int bare = open(barePath, O_CREAT | O_TRUNC | O_WRONLY | O_APPEND, 0600);
    qint64 number = loggers;
    spool.write(roundOf(loggers, number));

    std::vector<double> spoolTimes;
    std::vector<double> bareTimes;
    std::vector<double> bytes;
    const int syncsBefore = syncs;
    for (auto _ : state) {
        const SpoolFile::Change change = roundOf(loggers, number);
        const qint64 before = bytesWritten();
        spoolTimes.push_back(seconds([&] {
            if (!spool.write(change))
                state.SkipWithError("the spool cannot be written");
        }));
        bytes.push_back(double(bytesWritten() - before));
        const QByteArray same(int(bytes.back()), 'x');
        bareTimes.push_back(seconds([&] {
            if (write(bare, same.constData(), size_t(same.size())) != same.size())
                state.SkipWithError("the bare file cannot be written");
            fdatasync(bare);
        }));
        state.SetIterationTime(spoolTimes.back());
    }
    close(bare);
    const double rounds = double(spoolTimes.size());
    // Each round has one sync of the bare file as well.
    state.counters["syncs_per_round"] = (syncs - syncsBefore) / rounds - 1;
    state.counters["bytes_per_round"] = median(bytes);
    state.counters["bare_us"] = 1e6 * median(bareTimes);
    state.counters["ratio"] = median(spoolTimes) / median(bareTimes);
}

/// The same rounds into the log that the caller waits for.
void logRound(benchmark::State &state)
{
    const int loggers = int(state.range(0));
    const auto log = RedoLog::open(spoolPath, memoryFolders());
    if (!log) {
        state.SkipWithError("there is no log");
        return;
    }
    qint64 number = loggers;
    for (auto _ : state) {
        const SpoolChange change = roundOf(loggers, number);
        const quint64 saved = log->end();
        state.SetIterationTime(seconds([&] {
            if (!log->append(change))
                state.SkipWithError("the log is full");
        }));
        log->discard(saved);
    }
    log->discard(log->end());
}

BENCHMARK(logRound)->Arg(1)->Arg(4)->Arg(64)->UseManualTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(writeRound)->Arg(1)->Arg(4)->Arg(64)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

// What SQLite syncs with goes through here and is counted.
extern "C" int fdatasync(int file)
{
    using Sync = int (*)(int);
    static const Sync real = reinterpret_cast<Sync>(dlsym(RTLD_NEXT, "fdatasync"));
    ++syncs;
    return real(file);
}

extern "C" int fsync(int file)
{
    return fdatasync(file);
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    QFile::remove(spoolPath);
    QFile::remove(spoolPath + QStringLiteral("-wal"));
    QFile::remove(QString::fromLatin1(barePath));
    return 0;
}
