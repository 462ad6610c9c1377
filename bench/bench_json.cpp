// The station's device list read and written by its own JSON classes, beside the toolkit's.

#include "project/DeviceList.h"
#include "json/QJsonDocument.h"
#include "json/QJsonValue.h"
#include "json/Reader.h"
#include "json/Writer.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <benchmark/benchmark.h>

namespace {

QByteArray deviceList(int count)
{
    QList<DeviceEntry> devices;
    for (int i = 0; i < count; ++i) {
        DeviceEntry entry;
        entry.name = QStringLiteral("K\u00FChlraum \u00B0C \u2013 %1").arg(i);
        entry.ch1Name = QStringLiteral("Temperature %1").arg(i);
        entry.ch2Name = QStringLiteral("Humidity %1").arg(i);
        entry.serialNumber = QStringLiteral("0008DC%1").arg(i, 6, 16, QLatin1Char('0')).toUpper();
        entry.address = QStringLiteral("192.168.%1.%2").arg(i / 250).arg(i % 250 + 1);
        entry.ch1Unit = 1;
        entry.ch2Unit = i % 5;
        entry.range = {-10.0F, 30.5F, 20.0F, 80.0F};
        entry.ch2CustomUnit = i % 5 == 4 ? QStringLiteral("ppm") : QString();
        entry.dashboardNumber = i % 4;
        devices << entry;
    }
    return encodeDeviceList(devices);
}

void finish(benchmark::State &state, const QByteArray &text)
{
    state.SetBytesProcessed(state.iterations() * text.size());
}

void readOwn(benchmark::State &state)
{
    const QByteArray text = deviceList(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(json::parse(text));
    finish(state, text);
}

void readQt(benchmark::State &state)
{
    const QByteArray text = deviceList(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(text));
    finish(state, text);
}

void writeOwn(benchmark::State &state)
{
    const QByteArray text = deviceList(static_cast<int>(state.range(0)));
    const json::QJsonValue value = json::QJsonDocument(json::parse(text)).object();
    for (auto _ : state)
        benchmark::DoNotOptimize(json::serialise(value));
    finish(state, text);
}

void writeOwnUtf8(benchmark::State &state)
{
    const QByteArray text = deviceList(static_cast<int>(state.range(0)));
    const json::QJsonValue value = json::QJsonDocument(json::parse(text)).object();
    for (auto _ : state)
        benchmark::DoNotOptimize(json::serialise(value).toUtf8());
    finish(state, text);
}

void writeQt(benchmark::State &state)
{
    const QByteArray text = deviceList(static_cast<int>(state.range(0)));
    const QJsonDocument document = QJsonDocument::fromJson(text);
    for (auto _ : state)
        benchmark::DoNotOptimize(document.toJson(QJsonDocument::Compact));
    finish(state, text);
}

} // namespace

BENCHMARK(readOwn)->Arg(64)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(readQt)->Arg(64)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeOwn)->Arg(64)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeOwnUtf8)->Arg(64)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(writeQt)->Arg(64)->Arg(10000)->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
