#include "loggersim/Options.h"
#include "loggersim/SignalWatch.h"
#include "loggersim/Simulator.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace loggersim;

namespace {

void print(FILE *stream, const QString &text)
{
    QTextStream(stream) << text << Qt::flush;
}

void complain(const QString &reason)
{
    print(stderr, QStringLiteral("loggersim: %1\n").arg(reason));
}

int run(QCoreApplication &application, const Options &options)
{
    Simulator simulator(options);
    SignalWatch signalWatch;
    QObject::connect(&signalWatch, &SignalWatch::received, &simulator, &Simulator::handleSignal);
    QObject::connect(&simulator, &Simulator::ended, &application, &QCoreApplication::exit, Qt::QueuedConnection);
    QObject::connect(&simulator, &Simulator::ready, &simulator,
                     [&simulator] { print(stdout, simulator.overview() + QStringLiteral("ready\n")); });
    QString error;
    if (const auto failure = simulator.start(&error)) {
        complain(error);
        return *failure;
    }
    const int exitCode = QCoreApplication::exec();
    if (simulator.writeReport(&error))
        return exitCode;
    complain(error);
    return failureCode;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("loggersim"));
    const CommandLine line = readCommandLine(QCoreApplication::arguments());
    if (!line.help.isEmpty()) {
        print(stdout, line.help);
        return 0;
    }
    if (!line.options) {
        complain(line.error + QStringLiteral("\nTry --help."));
        return badOptionsCode;
    }
    return run(application, *line.options);
}
