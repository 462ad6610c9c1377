// What the station costs its machine while it records many network loggers, as one table. Called by bench/costs, which
// provides a display.

#include "stationcosts/StationCosts.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

#include <optional>

namespace {

std::optional<int> number(const QCommandLineParser &parser, const QString &name, int lowest, int highest)
{
    bool ok = false;
    const int value = parser.value(name).toInt(&ok);
    if (ok && value >= lowest && value <= highest)
        return value;
    QTextStream(stderr) << QStringLiteral("costs: --%1 takes a number from %2 to %3, not \"%4\"\n")
                               .arg(name)
                               .arg(lowest)
                               .arg(highest)
                               .arg(parser.value(name));
    return std::nullopt;
}

std::optional<CostOptions> readOptions(QCommandLineParser &parser, const QCoreApplication &application)
{
    constexpr int loggersMax = 64;
    constexpr int daySeconds = 24 * 3600;
    parser.setApplicationDescription(
        QStringLiteral("Lets the station record network loggers in software and prints what that costs."));
    parser.addHelpOption();
    parser.addOptions({
        {QStringLiteral("loggers"), QStringLiteral("Number of network loggers (64)."), QStringLiteral("N"),
         QStringLiteral("64")},
        {QStringLiteral("hostile"), QStringLiteral("Number of further loggers with a fault (0)."), QStringLiteral("N"),
         QStringLiteral("0")},
        {QStringLiteral("fault"), QStringLiteral("Their fault, as loggersim --help lists it (largenumbers)."),
         QStringLiteral("FAULT"), QStringLiteral("largenumbers")},
        {QStringLiteral("seconds"), QStringLiteral("Length of the measurement (60)."), QStringLiteral("S"),
         QStringLiteral("60")},
        {QStringLiteral("openings"), QStringLiteral("How often each recording is opened (5). 0 saves the large one."),
         QStringLiteral("N"), QStringLiteral("5")},
        {QStringLiteral("large"), QStringLiteral("Size of the large recording (3)."), QStringLiteral("GIB"),
         QStringLiteral("3")},
        {QStringLiteral("silent"), QStringLiteral("The station prints no diagnostic lines.")},
        {QStringLiteral("folder"), QStringLiteral("For recordings, logs and the table (costs)."), QStringLiteral("DIR"),
         QStringLiteral("costs")},
    });
    parser.process(application);
    const auto loggers = number(parser, QStringLiteral("loggers"), 1, loggersMax);
    const auto hostile = number(parser, QStringLiteral("hostile"), 0, loggersMax);
    const auto seconds = number(parser, QStringLiteral("seconds"), 4, daySeconds);
    const auto openings = number(parser, QStringLiteral("openings"), 0, 100);
    const auto large = number(parser, QStringLiteral("large"), 1, 100);
    if (!loggers || !hostile || !seconds || !openings || !large)
        return std::nullopt;
    CostOptions options;
    options.loggers = *loggers;
    options.hostileLoggers = *hostile;
    options.fault = parser.value(QStringLiteral("fault"));
    options.seconds = *seconds;
    options.openings = *openings;
    options.largeGiB = *large;
    options.withDiagnostics = !parser.isSet(QStringLiteral("silent"));
    options.folder = parser.value(QStringLiteral("folder"));
    return options;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("sorvanto.*=false"));
    QCommandLineParser parser;
    const auto options = readOptions(parser, application);
    if (!options)
        return 2;
    StationCosts costs(*options);
    const bool complete = costs.run();
    QTextStream(stdout) << costs.table().toText();
    if (!complete)
        QTextStream(stderr) << "costs: " << costs.errorString() << "\n";
    return complete && !costs.hasLostReadings() ? 0 : 1;
}
