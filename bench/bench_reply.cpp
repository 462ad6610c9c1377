// From the bytes of a reply to history, alarm flags and a queued row, beside the least that any program must do for it.

#include "device/ConfiguredDevice.h"
#include "device/WireText.h"
#include "store/InsertSerialData.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rowsBeforeDraining = 10000;

const QByteArray &replyBytes(int number)
{
    static const std::array<QByteArray, 4> replies{"ATDC 21.50,45.10\r\n", "ATDC 21.51,45.12\r\n",
                                                   "ATDC 31.49,-5.08\r\n", "ATDC 21.47,----\r\n"};
    return replies[static_cast<size_t>(number) % replies.size()];
}

/// A recording to empty the queue into, which is not timed.
class Drain
{
public:
    Drain() : m_store(m_folder.filePath("bench.dat"), "bench") { m_store.createConnection(); }
    void drain()
    {
        if (InsertSerialData::pendingCount() >= rowsBeforeDraining)
            m_store.insertNow();
    }

private:
    QTemporaryDir m_folder;
    InsertSerialData m_store;
};

void replyToRow(benchmark::State &state)
{
    Drain store;
    QDateTime now = QDateTime::fromSecsSinceEpoch(1700000000);
    ConfiguredDevice device("001EC0AABB01", NetworkInterface);
    device.setClock([&now] { return now; });
    device.setAlarmRange(10, 30, 20, 60);
    device.setRecording(true);
    int number = 0;
    for (auto _ : state) {
        now = now.addSecs(1);
        device.pollForRecord();
        const QByteArray &bytes = replyBytes(number++);
        const Clock::time_point start = Clock::now();
        QString text = wireText(bytes);
        if (text.contains(QLatin1String("ATDC"))) {
            text.remove(QLatin1Char(' '));
            text.remove(QLatin1String("ATDC"));
            device.readData(text);
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        store.drain();
    }
}
BENCHMARK(replyToRow)->UseManualTime();

/// The toolkit's own splitting and conversion, and the same three arrays and row.
void reference(benchmark::State &state)
{
    std::array<std::array<double, historyLength>, 3> history{};
    std::vector<PendingRow> queue;
    const QString serial("001EC0AABB01");
    double time = 1700000000;
    int number = 0;
    for (auto _ : state) {
        const QByteArray &bytes = replyBytes(number++);
        time += 1;
        const Clock::time_point start = Clock::now();
        QString text = QString::fromLatin1(bytes);
        text.remove('\r').remove(' ').remove(QLatin1String("ATDC"));
        const QStringList lines = text.split('\n');
        for (const QString &line : lines) {
            const QStringList fields = line.split(',');
            if (fields.size() < 2)
                continue;
            const std::array<double, 3> sample{time, fields[0].toDouble(), fields[1].toDouble()};
            for (size_t i = 0; i < sample.size(); ++i) {
                std::memmove(history[i].data(), history[i].data() + 1, (historyLength - 1) * sizeof(double));
                history[i].back() = sample[i];
            }
            queue.push_back({serial, sample[1], sample[2], static_cast<quint32>(time)});
        }
        benchmark::ClobberMemory();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        if (queue.size() >= rowsBeforeDraining)
            queue.clear();
    }
    benchmark::DoNotOptimize(history);
}
BENCHMARK(reference)->UseManualTime();

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules("sorvanto.*.debug=false");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
