// Tortures the station and prints a table of what became of its readings. Called by scripts/torture, which gives it
// mounts, network and processes of its own.

#include "ResultTable.h"
#include "ShardPool.h"
#include "TortureRows.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int usageError = 2;

struct Options
{
    QStringList rows; ///< empty: all
    int count = 0;    ///< rounds of each row; 0: as the row has them
    int jobs = 1;
    quint32 seed = 0;
    int shard = -1; ///< of the one row; below 0: this is no part
    bool keepsAll = false;
    bool isShort = false;
    QString folder;
    QString evidence;
};

[[noreturn]] void refuse(const QString &reason)
{
    QTextStream(stderr) << "torture: " << reason << '\n';
    std::exit(usageError);
}

quint32 number(const QCommandLineParser &parser, const char *name)
{
    bool ok = false;
    const quint32 value = parser.value(QLatin1String(name)).toUInt(&ok);
    if (!ok)
        refuse(QStringLiteral("--%1 takes a number").arg(QLatin1String(name)));
    return value;
}

Options readOptions(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    const auto add = [&parser](const char *name, const char *help, const char *value, const char *usual) {
        parser.addOption(
            QCommandLineOption(QLatin1String(name), QLatin1String(help), QLatin1String(value), QLatin1String(usual)));
    };
    add("row", "Only this row; may be given several times.", "NAME", "");
    add("count", "Rounds of each row (0: as many as it has).", "N", "0");
    add("jobs", "Stations at a time (8).", "N", "8");
    add("seed", "What all moments depend on (0: another one each time).", "N", "0");
    add("shard", "Carries out this part of the one row only.", "N", "");
    add("folder", "For the files of the stations.", "DIR", ".");
    add("evidence", "For the files of stations that were found at fault.", "DIR", "");
    parser.addOption(QCommandLineOption(QStringLiteral("short"), QStringLiteral("Few rounds, and no time is judged.")));
    parser.addOption(
        QCommandLineOption(QStringLiteral("keep"), QStringLiteral("Files of stations that were not at fault, too.")));
    parser.process(application);

    Options options;
    options.rows = parser.values(QStringLiteral("row"));
    options.rows.removeAll({});
    options.count = int(number(parser, "count"));
    options.jobs = std::max(1, int(number(parser, "jobs")));
    options.seed = number(parser, "seed");
    options.keepsAll = parser.isSet(QStringLiteral("keep"));
    options.isShort = parser.isSet(QStringLiteral("short"));
    options.folder = parser.value(QStringLiteral("folder"));
    options.evidence = parser.value(QStringLiteral("evidence"));
    if (parser.isSet(QStringLiteral("shard")))
        options.shard = int(number(parser, "shard"));
    for (const QString &name : qAsConst(options.rows)) {
        if (!findTortureRow(name))
            refuse(QStringLiteral("there is no row \"%1\"").arg(name));
    }
    return options;
}

int runShard(const Options &options)
{
    const TortureRow *row = findTortureRow(options.rows.value(0));
    if (!row)
        refuse(QStringLiteral("--shard takes a --row"));
    Shard shard({options.rows.first(), options.shard, options.count, options.seed, options.keepsAll, options.isShort,
                 options.folder, options.evidence});
    row->run(shard);
    shard.keepEvidence();
    QTextStream(stdout) << "result " << shard.result().toLine() << Qt::endl;
    return 0;
}

void order(ShardPool &pool, const TortureRow &row, const Options &options)
{
    const int rounds = options.count > 0 ? options.count : options.isShort ? row.shortRounds : row.rounds;
    const QString name = QLatin1String(row.name);
    if (rounds == 0)
        return;
    const int most = options.isShort ? std::min(row.shardRounds, (rounds + 1) / 2) : row.shardRounds;
    for (int first = 0, number = 0; first < rounds; first += most, ++number) {
        pool.add({name, number, std::min(most, rounds - first), options.seed, options.keepsAll, options.isShort,
                  QStringLiteral("%1/%2-%3").arg(options.folder, name).arg(number), options.evidence});
    }
}

int runAll(QCoreApplication &application, const Options &options)
{
    QTextStream(stdout) << "The moments are those of seed " << options.seed << Qt::endl;
    ShardPool pool(options.jobs);
    QList<const TortureRow *> rows;
    for (const TortureRow &row : tortureRows()) {
        if (options.rows.isEmpty() || options.rows.contains(QLatin1String(row.name)))
            rows.append(&row);
    }
    // The last rows have the longest parts.
    for (auto row = rows.crbegin(); row != rows.crend(); ++row)
        order(pool, **row, options);
    QObject::connect(&pool, &ShardPool::finished, &application, &QCoreApplication::quit);
    pool.start();
    QCoreApplication::exec();
    bool isClean = true;
    QTextStream(stdout) << '\n' << resultTable(rows, pool.sums(), &isClean) << Qt::flush;
    return isClean ? 0 : 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    Options options = readOptions(application);
    if (options.shard >= 0)
        return runShard(options);
    while (options.seed == 0)
        options.seed = QRandomGenerator::global()->bounded(1000000);
    return runAll(application, options);
}
