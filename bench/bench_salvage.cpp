// The salvage of a torn recording (--mib=N, 512) against the recovery of the sqlite3 program, in the same run: time
// and rows, and the most memory that the salvage held. Where that recovery fails, the reference is the dump of the
// whole file. The recording is made once, in the working directory, and kept for the next run.

#include "stationcosts/LargeRecording.h"
#include "store/Salvage.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <cstdio>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr qint64 bytesPerMiB = 1024 * 1024;

qint64 rowsIn(const QString &file)
{
    qint64 rows = -1;
    const QString name = QStringLiteral("count");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(file);
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        if (query.exec(QStringLiteral("select count(*) from ostrivane")) && query.next())
            rows = query.value(0).toLongLong();
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

struct Run
{
    double seconds = 0;
    qint64 rows = -1;
    long peakKiB = 0;
};

void print(const char *what, const Run &run)
{
    std::printf("%-36s %8.1f s %12lld rows %9.0f rows/s\n", what, run.seconds, static_cast<long long>(run.rows),
                double(run.rows) / run.seconds);
}

/// In a process of its own, whose memory is known afterwards.
Run salvage(const QString &torn, const QString &target)
{
    Run run;
    QElapsedTimer timer;
    timer.start();
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(salvageRecording(torn, target).complete ? 0 : 1);
    int status = 0;
    rusage used = {};
    ::wait4(child, &status, 0, &used);
    run.seconds = double(timer.elapsed()) / 1000;
    run.peakKiB = used.ru_maxrss;
    run.rows = status == 0 ? rowsIn(target) : -1;
    return run;
}

Run byShell(const QString &command, const QString &target)
{
    Run run;
    QFile::remove(target);
    QElapsedTimer timer;
    timer.start();
    QProcess shell;
    shell.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    shell.start(QStringLiteral("/bin/bash"),
                {QStringLiteral("-o"), QStringLiteral("pipefail"), QStringLiteral("-c"), command});
    shell.waitForFinished(-1);
    run.seconds = double(timer.elapsed()) / 1000;
    run.rows = shell.exitCode() == 0 ? rowsIn(target) : -1;
    return run;
}

qint64 mibOf(const QStringList &arguments)
{
    const QString option = QStringLiteral("--mib=");
    for (const QString &argument : arguments) {
        if (argument.startsWith(option))
            return argument.mid(option.size()).toLongLong();
    }
    return 512;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    const qint64 mib = std::max<qint64>(16, mibOf(QCoreApplication::arguments()));
    const QString whole = QStringLiteral("bench_salvage_%1MiB.dat").arg(mib);
    const QString torn = QStringLiteral("bench_salvage_torn.dat");
    const QString target = QStringLiteral("bench_salvage_new.dat");
    QString error;
    if (!provideLargeRecording(whole, mib * bytesPerMiB, &error))
        qFatal("%s", qPrintable(error));
    QFile::remove(torn);
    QFile file(torn);
    if (!QFile::copy(whole, torn) || !file.resize(file.size() - 4096))
        qFatal("%s cannot be made", qPrintable(torn));

    const Run ours = salvage(torn, target);
    print("salvage", ours);
    std::printf("%-36s %8.1f MiB at most\n", "its memory", double(ours.peakKiB) / 1024);
    QFile::remove(target);
    Run reference = byShell(QStringLiteral("sqlite3 %1 .recover | sqlite3 -bail %2").arg(torn, target), target);
    if (reference.rows < ours.rows) {
        print("sqlite3 .recover (fails)", reference);
        reference = byShell(QStringLiteral("sqlite3 %1 .dump | sqlite3 -bail %2").arg(whole, target), target);
        print("sqlite3 .dump of the whole file", reference);
    } else {
        print("sqlite3 .recover", reference);
    }
    std::printf("%.2f x the speed of the reference\n",
                (double(ours.rows) / ours.seconds) / (double(reference.rows) / reference.seconds));
    for (const QString &made : {torn, target})
        QFile::remove(made);
    return ours.rows > 0 ? 0 : 1;
}
