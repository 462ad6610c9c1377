// The range queries on a recording of 20 million rows against an empty one. The large recording is made once, in the
// working directory (about 1 GiB), and kept for the next run.

#include "SqliteReference.h"
#include "store/InsertSerialData.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

namespace {

constexpr int largeRowCount = 20000000;
constexpr quint32 firstTime = 1600000000;
constexpr int devices = 128;
constexpr quint32 lastTime = firstTime + (largeRowCount - 1) / devices;

const QString largeFile = QStringLiteral("bench_range_20M.dat");
const QString emptyFile = QStringLiteral("bench_range_empty.dat");

void fill(const QString &file)
{
    SqliteReference database(QFile::encodeName(file));
    tune(database);
    database.exec("PRAGMA synchronous = OFF");
    database.exec("BEGIN EXCLUSIVE");
    sqlite3_stmt *insert = nullptr;
    sqlite3_prepare_v2(database.handle(),
                       "insert into ostrivane (serialno, channel1, channel2, pointDate) values (?1, ?2, ?3, ?4)", -1,
                       &insert, nullptr);
    for (int i = 0; i < largeRowCount; ++i) {
        const QByteArray serial = "0050C2" + QByteArray::number(i % devices).rightJustified(6, '0');
        sqlite3_bind_text(insert, 1, serial.constData(), int(serial.size()), SQLITE_STATIC);
        sqlite3_bind_double(insert, 2, 21.5 + 0.01 * (i % 500));
        sqlite3_bind_double(insert, 3, 40.25 + 0.01 * (i % 700));
        sqlite3_bind_int64(insert, 4, firstTime + i / devices);
        if (sqlite3_step(insert) != SQLITE_DONE)
            qFatal("%s", sqlite3_errmsg(database.handle()));
        sqlite3_reset(insert);
    }
    sqlite3_finalize(insert);
    database.exec("COMMIT");
}

bool isComplete(const QString &file)
{
    if (!QFile::exists(file))
        return false;
    InsertSerialData store(file, QStringLiteral("check"));
    return store.createConnection() && store.endDateTime() == lastTime;
}

void makeRecordings()
{
    QFile::remove(emptyFile);
    InsertSerialData empty(emptyFile, QStringLiteral("empty"));
    bool made = empty.createConnection();
    if (!isComplete(largeFile)) {
        QFile::remove(largeFile);
        {
            InsertSerialData large(largeFile, QStringLiteral("large"));
            made = made && large.createConnection();
        }
        if (made)
            fill(largeFile);
    }
    if (!made)
        qFatal("cannot make a recording in the working directory");
}

void startDateTime(benchmark::State &state, const QString &file, quint32 expected)
{
    InsertSerialData store(file, QStringLiteral("range"));
    if (!store.createConnection() || store.startDateTime() != expected)
        state.SkipWithError("the recording is not what it should be");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.startDateTime());
}

void endDateTime(benchmark::State &state, const QString &file, quint32 expected)
{
    InsertSerialData store(file, QStringLiteral("range"));
    if (!store.createConnection() || store.endDateTime() != expected)
        state.SkipWithError("the recording is not what it should be");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.endDateTime());
}

/// What opening a project costs: connection, table check and both ends of the range.
void openWithRange(benchmark::State &state, const QString &file, quint32 expected)
{
    for (auto _ : state) {
        InsertSerialData store(file, QStringLiteral("range"));
        if (!store.createConnection() || store.endDateTime() < store.startDateTime() || store.endDateTime() != expected)
            state.SkipWithError("the recording is not what it should be");
    }
}

BENCHMARK_CAPTURE(startDateTime, empty, emptyFile, 0u)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(startDateTime, rows_20M, largeFile, firstTime)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(endDateTime, empty, emptyFile, 0u)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(endDateTime, rows_20M, largeFile, lastTime)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(openWithRange, empty, emptyFile, 0u)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(openWithRange, rows_20M, largeFile, lastTime)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    benchmark::Initialize(&argc, argv);
    makeRecordings();
    benchmark::RunSpecifiedBenchmarks();
    QFile::remove(emptyFile);
    return 0;
}
