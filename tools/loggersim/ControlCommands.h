#pragma once

#include <QByteArray>
#include <QStringList>
#include <functional>

namespace loggersim {

class Fleet;

/// What the loggers can be told while they run: one line in, one line out ("ok" or "error …"); questions that have
/// several lines for an answer end it with "end".
class ControlCommands
{
public:
    /// @p fleet is not owned; @p quit is called for the command of that name.
    ControlCommands(Fleet *fleet, std::function<void()> quit);

    /// @p line without its line end; the answer has one.
    QByteArray execute(const QByteArray &line) const;
    /// All commands, one a line with what they do.
    static QString help();

private:
    QByteArray fault(const QStringList &words) const;
    QByteArray counts(const QStringList &words) const;
    QByteArray values(const QStringList &words) const;
    QByteArray offset(const QStringList &words) const;
    QByteArray curve(const QStringList &words) const;
    QByteArray stored(const QStringList &words) const;
    QByteArray commands(const QStringList &words) const;
    QByteArray connections(const QStringList &words) const;
    QByteArray quit(const QStringList &words) const;
    QByteArray helpAnswer(const QStringList &words) const;

    struct Command
    {
        const char *name;
        int words; ///< how many follow the name
        int wordsMax;
        QByteArray (ControlCommands::*run)(const QStringList &words) const;
        const char *help;
    };
    static const QList<Command> &table();

    Fleet *m_fleet;
    std::function<void()> m_quit;
};

} // namespace loggersim
