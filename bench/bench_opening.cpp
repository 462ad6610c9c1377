// What the opening of a recording costs, with the look whether it is whole and the question from when to when it goes:
// a large one (--gib=N, 3) against an empty one, in turns, from the system's cache and from the disk; and the same
// for a large one without an index on its times, as earlier versions have made it. Both large ones are made once, in
// the working directory, and kept for the next run.

#include "stationcosts/LargeRecording.h"
#include "store/FileCheck.h"
#include "store/InsertSerialData.h"
#include "store/RecordedRange.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace {

const QString emptyFile = QStringLiteral("bench_opening_empty.dat");
constexpr qint64 bytesPerGiB = qint64(1) << 30;

using Work = std::function<void(const QString &file)>;

void open(const QString &file)
{
    InsertSerialData store(file, QStringLiteral("bench"));
    if (!store.createConnection())
        qFatal("%s cannot be opened", qPrintable(file));
    RecordedRange range(store, file);
    range.start();
    range.end();
}

void check(const QString &file)
{
    if (checkRecording(file) != FileVerdict::Whole)
        qFatal("%s is not whole", qPrintable(file));
}

double processorMicroseconds()
{
    timespec time = {};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1000;
}

struct Times
{
    std::vector<double> clock;
    std::vector<double> processor;

    void add(const Work &work, const QString &file)
    {
        const double before = processorMicroseconds();
        QElapsedTimer timer;
        timer.start();
        work(file);
        clock.push_back(double(timer.nsecsElapsed()) / 1000);
        processor.push_back(processorMicroseconds() - before);
    }
};

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + int(values.size() / 2), values.end());
    return values[values.size() / 2];
}

void compare(const char *what, const Work &work, const QString &file, bool fromDisk)
{
    const int rounds = fromDisk ? 21 : 201;
    Times empty;
    Times large;
    for (int i = 0; i < rounds; ++i) {
        if (fromDisk)
            dropFromCache(emptyFile);
        empty.add(work, emptyFile);
        if (fromDisk)
            dropFromCache(file);
        large.add(work, file);
    }
    // On a machine with other work to do only the processor's time is the program's own.
    const auto print = [what](const char *kind, const std::vector<double> &reference,
                              const std::vector<double> &times) {
        std::printf("%-42s %-9s %10.0f us %10.0f us %7.2f x\n", what, kind, median(reference), median(times),
                    median(times) / median(reference));
    };
    print("clock", empty.clock, large.clock);
    print("processor", empty.processor, large.processor);
}

void makeWithoutIndex(const QString &from, const QString &file)
{
    if (QFile::exists(file))
        return;
    const QString part = file + QStringLiteral(".unfinished");
    QFile::remove(part);
    const QString name = QStringLiteral("unindexed");
    bool isMade = QFile::copy(from, part);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(part);
        isMade = isMade && database.open();
        QSqlQuery query(database);
        for (const char *statement : {"PRAGMA journal_mode = OFF", "drop index ostrivane_pointDate"})
            isMade = isMade && query.exec(QLatin1String(statement));
    }
    QSqlDatabase::removeDatabase(name);
    if (!isMade || !QFile::rename(part, file))
        qFatal("%s cannot be made", qPrintable(file));
}

qint64 gibOf(const QStringList &arguments)
{
    const QString option = QStringLiteral("--gib=");
    for (const QString &argument : arguments) {
        if (argument.startsWith(option))
            return argument.mid(option.size()).toLongLong();
    }
    return 3;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    const qint64 gib = std::max<qint64>(1, gibOf(QCoreApplication::arguments()));
    const QString large = QStringLiteral("bench_opening_%1GiB.dat").arg(gib);
    const QString unindexed = QStringLiteral("bench_opening_%1GiB_unindexed.dat").arg(gib);
    QString error;
    if (!provideLargeRecording(large, gib * bytesPerGiB, &error))
        qFatal("%s", qPrintable(error));
    makeWithoutIndex(large, unindexed);
    QFile::remove(emptyFile);
    if (!InsertSerialData(emptyFile, QStringLiteral("bench")).createConnection())
        qFatal("no empty recording");

    std::printf("%-52s %13s %13s %9s\n", "opening of a recording (median)", "empty", "large", "ratio");
    compare("whole check alone, from the cache", check, large, false);
    compare("opening, from the cache", open, large, false);
    compare("opening, from the disk", open, large, true);
    compare("opening without an index, from the cache", open, unindexed, false);
    compare("opening without an index, from the disk", open, unindexed, true);
    QFile::remove(emptyFile);
    return 0;
}
