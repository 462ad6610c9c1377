#include "app/CheckCommand.h"
#include "app/CommandLine.h"
#include "app/DisplayGuard.h"
#include "app/StartUp.h"

#include <QApplication>
#include <QMessageBox>
#include <cstdio>
#include <optional>

namespace {

constexpr int usageError = 2;

#ifdef Q_OS_WIN
// A program with windows has no console there.
constexpr bool refusalTakesNoDisplay = false;
#else
constexpr bool refusalTakesNoDisplay = true;
#endif

QStringList textsOf(int argc, char **argv)
{
    QStringList texts;
    for (int i = 0; i < argc; ++i)
        texts << QString::fromLocal8Bit(argv[i]);
    return texts;
}

int refuse(const QString &reason)
{
    std::fprintf(stderr, "%s\n", qPrintable(reason));
#ifdef Q_OS_WIN
    QMessageBox::critical(nullptr, QStringLiteral("Sorvanto Lite"), reason);
#endif
    return usageError;
}

} // namespace

int main(int argc, char **argv)
{
    installMessagePattern();
    QCoreApplication::setApplicationVersion(versionText());
    CommandLine early(textsOf(argc, argv));
    if (early.asksForText()) {
        const QCoreApplication application(argc, argv);
        early.showText();
    }
    if (refusalTakesNoDisplay && !early.error().isEmpty() && !early.hasToolkitOptions())
        return refuse(early.error());
    if (early.error().isEmpty() && !early.fileToCheck().isEmpty()) {
        const QCoreApplication application(argc, argv);
        return checkRecordingCommand(early.fileToCheck());
    }
    if (const auto command = early.error().isEmpty() ? early.journalCommand() : std::nullopt) {
        const QCoreApplication application(argc, argv);
        return command->run();
    }
    enableHighDensity();
    std::optional<DisplayGuard> guard(std::in_place);
    QApplication application(argc, argv);
    guard.reset();
    const CommandLine commandLine(QCoreApplication::arguments());
    if (!commandLine.error().isEmpty())
        return refuse(commandLine.error());
    return runStation(application, commandLine.startOptions());
}
