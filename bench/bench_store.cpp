// Rows a second through InsertSerialData::insertNow, against the same statements prebuilt and run through SQLite's own
// interface. Both write to files in the working directory, batch by batch in turn, so that the disk's moods hit both.

#include "SqliteReference.h"
#include "store/InsertSerialData.h"
#include "store/InsertStatement.h"

#include <QCoreApplication>
#include <QFile>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace {

std::vector<PendingRow> batchOf(int size)
{
    std::vector<PendingRow> rows;
    for (int i = 0; i < size; ++i) {
        const QString serial = QStringLiteral("0050C2%1").arg(i % 128, 6, 16, QLatin1Char('0'));
        rows.push_back({serial, 21.5 + 0.01 * i, 40.25 + 0.01 * i, quint32(1700000000 + i / 128)});
    }
    return rows;
}

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

/// A new recording, made by the store itself so that both sides have the same table and index.
QString newRecording(const QString &file)
{
    QFile::remove(file);
    InsertSerialData store(file, QStringLiteral("setup"));
    if (!store.createConnection())
        qFatal("cannot make a recording in the working directory");
    return file;
}

void insertNow(benchmark::State &state)
{
    const int size = int(state.range(0));
    const std::vector<PendingRow> rows = batchOf(size);
    const QByteArray statement = insertStatements(rows).join(QString()).toUtf8();
    InsertSerialData store(newRecording(QStringLiteral("bench_store.dat")), QStringLiteral("bench"));
    if (!store.createConnection())
        qFatal("cannot open the recording");
    SqliteReference reference(QFile::encodeName(newRecording(QStringLiteral("bench_store_reference.dat"))));
    tune(reference);

    std::vector<double> storeTimes;
    std::vector<double> referenceTimes;
    for (auto _ : state) {
        referenceTimes.push_back(seconds([&] {
            reference.exec("BEGIN");
            reference.exec(statement.constData());
            reference.exec("COMMIT");
        }));
        storeTimes.push_back(seconds([&] {
            for (const PendingRow &row : rows)
                InsertSerialData::enqueue(row);
            store.insertNow();
        }));
        state.SetIterationTime(storeTimes.back());
    }
    if (InsertSerialData::pendingCount() != 0)
        state.SkipWithError("rows were not written");
    state.counters["rows_per_s"] = size / median(storeTimes);
    state.counters["reference_rows_per_s"] = size / median(referenceTimes);
    state.counters["ratio"] = median(referenceTimes) / median(storeTimes);
}

BENCHMARK(insertNow)->Arg(8)->Arg(16)->Arg(128)->Arg(500)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    QFile::remove(QStringLiteral("bench_store.dat"));
    QFile::remove(QStringLiteral("bench_store_reference.dat"));
    return 0;
}
