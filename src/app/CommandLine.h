#pragma once

#include "app/JournalCommand.h"
#include "app/StartOptions.h"

#include <QCommandLineParser>
#include <QStringList>
#include <optional>

/// The arguments that the station was started with.
class CommandLine
{
public:
    /// @p arguments with the program's own name in front.
    explicit CommandLine(const QStringList &arguments);

    /// Whether the program is asked for its version or its help only, which takes no display. It does not matter then
    /// what else stands on the command line, such as the toolkit's own arguments.
    bool asksForText() const;
    /// Prints that text and ends the program; there must be an application object.
    [[noreturn]] void showText();

    /// The recording that is to be looked through instead of everything else, which takes no display; empty as a rule.
    QString fileToCheck() const;
    /// What is to be done with a journal in place of running the station, which takes no display either; to be asked
    /// for only when there is no error().
    std::optional<JournalCommand> journalCommand() const;

    /// Whether some arguments are the toolkit's. It takes them away when the application object is made; before that
    /// they count as faulty.
    bool hasToolkitOptions() const;

    /// What is wrong with the arguments; empty when nothing is.
    QString error() const { return m_error; }
    /// To be asked for only when there is no error().
    StartOptions startOptions() const;

private:
    QString problem() const;

    QCommandLineParser m_parser;
    QString m_error;
};
