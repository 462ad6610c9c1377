// From process start to a loaded project of 64 devices, and to its dashboard painted, beside an empty window linked
// with the same libraries. The station says that it records as the last step of loading; the splash's fixed wait, which
// comes after that, is left out of the second.

#include "project/AppSettings.h"
#include "project/ProjectFile.h"
#include "support/NullSinkServer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int deviceCount = 64;

void writeProject(const QString &path)
{
    QList<DeviceEntry> devices;
    for (int i = 0; i < deviceCount; ++i) {
        DeviceEntry entry;
        entry.name = QStringLiteral("Room %1").arg(i + 1);
        entry.ch1Name = QStringLiteral("Temperature");
        entry.ch2Name = QStringLiteral("Humidity");
        entry.serialNumber = QStringLiteral("0200AA%1").arg(i, 6, 16, QLatin1Char('0')).toUpper();
        entry.address = QStringLiteral("127.0.2.%1").arg(i + 1);
        entry.dashboardNumber = i / 16;
        devices.append(entry);
    }
    ProjectFile file(path);
    file.create(QStringLiteral("Start"), 1000);
    file.saveDevices(devices);
    file.saveLayout(1000, {QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"), QStringLiteral("D")});
}

void writeSettings(const QString &projectPath)
{
    AppSettings settings;
    settings.autoLoad = true;
    settings.autoRecord = true;
    settings.addRecentProject(QStringLiteral("Start"), projectPath);
}

/// Kilobytes; 0 where the system does not tell.
double peakMemory(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble();
    }
    return 0;
}

void start(benchmark::State &state, const QString &program, const QByteArray &readyLine)
{
    double memory = 0;
    for (auto _ : state) {
        QProcess process;
        process.setReadChannel(QProcess::StandardError);
        QElapsedTimer timer;
        timer.start();
        process.start(program, QStringList());
        QByteArray output;
        while (!output.contains(readyLine) && process.waitForReadyRead(30000))
            output += process.readAllStandardError();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!output.contains(readyLine))
            state.SkipWithError("the program did not become ready");
        memory = qMax(memory, peakMemory(process.processId()));
        process.terminate(); // as after a kill it would tell the operator so at the next start
        process.waitForFinished();
    }
    state.counters["peak_MiB"] = memory / 1024.0;
}

} // namespace

int main(int argc, char **argv)
{
    QTemporaryDir folder;
    qputenv("XDG_CONFIG_HOME", folder.filePath(QStringLiteral("config")).toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // An ordinary screen: the offscreen one has a density of its own, for which every background is looked for twice.
    qputenv("QT_FONT_DPI", "96");
    qputenv("QT_LOGGING_RULES", "sorvanto.*.debug=false;sorvanto.app.debug=true");
    NullSinkServer soundServer;
    if (!soundServer.start())
        return 1;
    soundServer.useHere();

    QCoreApplication application(argc, argv);
    const QString project = folder.filePath(QStringLiteral("Start.tpc"));
    writeProject(project);
    writeSettings(project);

    const QString programs = QCoreApplication::applicationDirPath();
    const auto measure = [](const char *name, const QString &program, const QByteArray &readyLine) {
        benchmark::RegisterBenchmark(name, [=](benchmark::State &state) { start(state, program, readyLine); })
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Iterations(10);
    };
    measure("empty_window", programs + QStringLiteral("/empty_window"), "ready");
    measure("station_with_64_devices", programs + QStringLiteral("/sorvanto-lite"), "SorvantoMain::toggleRecordState");
    measure("painted_with_64_devices", programs + QStringLiteral("/painted_station"), "painted");

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
