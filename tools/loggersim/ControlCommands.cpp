#include "loggersim/ControlCommands.h"
#include "loggersim/Fleet.h"
#include "loggersim/SimLogger.h"

#include <QtNumeric>
#include <algorithm>

namespace loggersim {

namespace {

const QByteArray done = QByteArrayLiteral("ok\n");

QByteArray failed(const QString &reason)
{
    return "error " + reason.toUtf8() + '\n';
}

/// Two numbers in hundredths; nothing when one of them is none.
std::optional<Reading> readingOf(const QString &temperature, const QString &humidity)
{
    bool ok1 = false;
    bool ok2 = false;
    const double t = temperature.toDouble(&ok1);
    const double h = humidity.toDouble(&ok2);
    constexpr double highest = 1e6;
    if (!ok1 || !ok2 || !(qAbs(t) <= highest) || !(qAbs(h) <= highest))
        return std::nullopt;
    return Reading{qRound(t * 100), qRound(h * 100)};
}

QByteArray listing(const QByteArrayList &lines)
{
    QByteArray answer;
    for (const QByteArray &line : lines)
        answer += line + '\n';
    return answer + "end\n";
}

} // namespace

ControlCommands::ControlCommands(Fleet *fleet, std::function<void()> quit) : m_fleet(fleet), m_quit(std::move(quit)) {}

const QList<ControlCommands::Command> &ControlCommands::table()
{
    using C = ControlCommands;
    static const QList<Command> commands{
        {"counts", 0, 0, &C::counts, "one line a logger: KEY KIND SERVED ADDRESS PORT"},
        {"fault", 2, 2, &C::fault, "KEY FAULT[:ARGUMENT]: what the logger does wrong from now on"},
        {"values", 3, 3, &C::values, "KEY T H: every further reading is this one"},
        {"offset", 3, 3, &C::offset, "KEY DT DH: shifts every further reading by this much"},
        {"curve", 1, 1, &C::curve, "KEY: back to readings of its own"},
        {"stored", 1, 1, &C::stored, "KEY: the alarm limits and buzzer rule it has stored, or \"none\""},
        {"commands", 1, 1, &C::commands, "KEY: the alarm commands it received, in order"},
        {"connections", 1, 1, &C::connections, "KEY: the number of stations connected to it"},
        {"help", 0, 0, &C::helpAnswer, "this list"},
        {"quit", 0, 0, &C::quit, "ends the simulator"},
        {"unplug", 1, 1, &C::fault, "KEY: short for fault KEY unplug"},
        {"plug", 1, 1, &C::fault, "KEY: short for fault KEY none"},
        {"replug", 1, 2, &C::fault, "KEY [MS]: short for fault KEY replug:MS"},
        {"swap", 2, 2, &C::fault, "KEY OTHER: short for fault KEY swap:OTHER"},
    };
    return commands;
}

QString ControlCommands::help()
{
    QString text;
    for (const Command &command : table())
        text += QStringLiteral("  %1 %2\n").arg(QLatin1String(command.name), -12).arg(QLatin1String(command.help));
    return text;
}

QByteArray ControlCommands::execute(const QByteArray &line) const
{
    const QStringList words = QString::fromUtf8(line).simplified().split(QLatin1Char(' '));
    const auto command = std::find_if(table().begin(), table().end(),
                                      [&words](const Command &c) { return words.first() == QLatin1String(c.name); });
    if (command == table().end())
        return failed(QStringLiteral("there is no command \"%1\"").arg(words.first()));
    if (words.size() - 1 < command->words || words.size() - 1 > command->wordsMax)
        return failed(QStringLiteral("usage: %1 %2").arg(words.first(), QLatin1String(command->help)));
    return (this->*command->run)(words);
}

QByteArray ControlCommands::fault(const QStringList &words) const
{
    QString text = words.first();
    if (text == QLatin1String("fault"))
        text = words.at(2);
    else if (text == QLatin1String("plug"))
        text = QStringLiteral("none");
    else if (words.size() > 2)
        text += QLatin1Char(':') + words.at(2);
    QString error;
    return m_fleet->setFault(words.at(1), text, &error) ? done : failed(error);
}

QByteArray ControlCommands::counts(const QStringList &) const
{
    QByteArrayList lines;
    for (const SimLogger *logger : m_fleet->loggers()) {
        const QString address = logger->address().isEmpty() ? QStringLiteral("-") : logger->address();
        lines.append(QByteArrayList{logger->key().toLatin1(), logger->kindText().toLatin1(),
                                    QByteArray::number(logger->served()), address.toLatin1(),
                                    QByteArray::number(logger->port())}
                         .join(' '));
    }
    return listing(lines);
}

QByteArray ControlCommands::values(const QStringList &words) const
{
    QString error;
    SimLogger *logger = m_fleet->find(words.at(1), &error);
    if (!logger)
        return failed(error);
    const auto reading = readingOf(words.at(2), words.at(3));
    if (!reading)
        return failed(QStringLiteral("values takes two numbers"));
    logger->curve().hold(*reading);
    return done;
}

QByteArray ControlCommands::offset(const QStringList &words) const
{
    QString error;
    SimLogger *logger = m_fleet->find(words.at(1), &error);
    if (!logger)
        return failed(error);
    const auto reading = readingOf(words.at(2), words.at(3));
    if (!reading)
        return failed(QStringLiteral("offset takes two numbers"));
    logger->curve().shift(*reading);
    return done;
}

QByteArray ControlCommands::curve(const QStringList &words) const
{
    QString error;
    SimLogger *logger = m_fleet->find(words.at(1), &error);
    if (!logger)
        return failed(error);
    logger->curve().resume();
    return done;
}

QByteArray ControlCommands::stored(const QStringList &words) const
{
    QString error;
    const SimLogger *logger = m_fleet->find(words.at(1), &error);
    if (!logger)
        return failed(error);
    const auto settings = logger->alarms().stored();
    return (settings ? settings->toText() : QByteArrayLiteral("none")) + '\n';
}

QByteArray ControlCommands::commands(const QStringList &words) const
{
    QString error;
    const SimLogger *logger = m_fleet->find(words.at(1), &error);
    return logger ? listing(logger->alarms().received()) : failed(error);
}

QByteArray ControlCommands::connections(const QStringList &words) const
{
    QString error;
    const SimLogger *logger = m_fleet->find(words.at(1), &error);
    return logger ? QByteArray::number(logger->connectionCount()) + '\n' : failed(error);
}

QByteArray ControlCommands::quit(const QStringList &) const
{
    m_quit();
    return done;
}

QByteArray ControlCommands::helpAnswer(const QStringList &) const
{
    return help().toUtf8() + "end\n";
}

} // namespace loggersim
