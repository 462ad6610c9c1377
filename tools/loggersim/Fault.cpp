#include "loggersim/Fault.h"

#include <algorithm>
#include <array>

namespace loggersim {

namespace {

enum class Argument { No, Number, OptionalText, Text };

struct FaultEntry
{
    const char *name;
    FaultKind kind;
    FaultScope scope;
    Argument argument;
    int usual;   ///< the number when none is given
    int highest; ///< bounds what a fault may cost
    const char *help;
};

constexpr int hourMs = 3600 * 1000;

const std::array<FaultEntry, 22> entries{{
    {"none", FaultKind::None, FaultScope::Any, Argument::No, 0, 0, "works again; a USB logger is plugged in again"},
    {"silent", FaultKind::Silent, FaultScope::Any, Argument::No, 0, 0, "reads commands, answers none"},
    {"slow", FaultKind::Slow, FaultScope::Any, Argument::Number, 500, hourMs, "answers N ms late (500)"},
    {"split", FaultKind::Split, FaultScope::Any, Argument::Number, 20, hourMs,
     "answers in several pieces, N ms apart (20)"},
    {"noecho", FaultKind::NoEcho, FaultScope::Any, Argument::No, 0, 0, "leaves the echo out"},
    {"garbage", FaultKind::Garbage, FaultScope::Any, Argument::No, 0, 0, "answers with junk"},
    {"dashes", FaultKind::Dashes, FaultScope::Any, Argument::Number, 0, 2,
     "\"----\" instead of the value of channel N (0: both)"},
    {"nan", FaultKind::NotANumber, FaultScope::Any, Argument::No, 0, 0, "values that are not finite"},
    {"hugenumbers", FaultKind::HugeNumbers, FaultScope::Any, Argument::No, 0, 0, "values with 4,000 digits"},
    {"largenumbers", FaultKind::LargeNumbers, FaultScope::Any, Argument::Number, 64, 1024,
     "N KiB of readings whose values take 309 digits to show (64)"},
    {"quotes", FaultKind::Quotes, FaultScope::Any, Argument::No, 0, 0, "values with quotes and statements in them"},
    {"binary", FaultKind::Binary, FaultScope::Any, Argument::No, 0, 0, "values of every byte there is"},
    {"manylines", FaultKind::ManyLines, FaultScope::Any, Argument::Number, 5000, 100000,
     "N readings in one reply (5000)"},
    {"flood", FaultKind::Flood, FaultScope::Any, Argument::Number, 256, 65536,
     "sends readings unasked, at most N KiB a second (256)"},
    {"stall", FaultKind::Stall, FaultScope::Any, Argument::No, 0, 0,
     "takes connections, then neither reads nor answers"},
    {"closeafter", FaultKind::CloseAfter, FaultScope::Network, Argument::No, 0, 0,
     "closes the connection after each reply"},
    {"refuse", FaultKind::Refuse, FaultScope::Network, Argument::No, 0, 0, "refuses connections, drops those it has"},
    {"vanish", FaultKind::Vanish, FaultScope::Network, Argument::No, 0, 0,
     "gone without a word: connections stay open but dead, new ones get no answer at all"},
    {"err", FaultKind::AlarmError, FaultScope::Network, Argument::OptionalText, 0, 0,
     "\"ERR\" to alarm commands (or to TEXT only, e.g. err:ATBMAX2)"},
    {"unplug", FaultKind::Unplug, FaultScope::Usb, Argument::No, 0, 0, "not plugged in"},
    {"replug", FaultKind::Replug, FaultScope::Usb, Argument::Number, 0, hourMs,
     "pulled out, and plugged in again N ms later (0)"},
    {"swap", FaultKind::Swap, FaultScope::Usb, Argument::Text, 0, 0, "changes ports with the USB logger TEXT"},
}};

const FaultEntry &entryOf(FaultKind kind)
{
    return *std::find_if(entries.begin(), entries.end(), [kind](const FaultEntry &e) { return e.kind == kind; });
}

QString takeArgument(const FaultEntry &entry, const QString &argument, Fault &fault)
{
    const QString name = QLatin1String(entry.name);
    switch (entry.argument) {
    case Argument::No:
        return argument.isNull() ? QString() : QStringLiteral("\"%1\" takes no argument").arg(name);
    case Argument::OptionalText:
    case Argument::Text:
        fault.text = argument;
        return entry.argument == Argument::Text && argument.isEmpty()
                   ? QStringLiteral("\"%1\" needs an argument").arg(name)
                   : QString();
    case Argument::Number:
        break;
    }
    fault.number = entry.usual;
    if (argument.isNull())
        return {};
    bool ok = false;
    fault.number = argument.toInt(&ok);
    if (ok && fault.number >= 0 && fault.number <= entry.highest)
        return {};
    return QStringLiteral("\"%1\" takes a number from 0 to %2, not \"%3\"").arg(name).arg(entry.highest).arg(argument);
}

} // namespace

std::optional<Fault> parseFault(const QString &text, QString *error)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    const QString name = text.left(colon);
    const auto entry = std::find_if(entries.begin(), entries.end(),
                                    [&name](const FaultEntry &e) { return name == QLatin1String(e.name); });
    if (entry == entries.end()) {
        *error = QStringLiteral("there is no fault \"%1\"").arg(name);
        return std::nullopt;
    }
    Fault fault;
    fault.kind = entry->kind;
    *error = takeArgument(*entry, colon < 0 ? QString() : text.mid(colon + 1), fault);
    if (!error->isEmpty())
        return std::nullopt;
    return fault;
}

FaultScope scopeOf(FaultKind kind)
{
    return entryOf(kind).scope;
}

QString faultName(FaultKind kind)
{
    return QLatin1String(entryOf(kind).name);
}

QString faultHelp()
{
    QString help;
    for (const FaultEntry &entry : entries) {
        QString name = QLatin1String(entry.name);
        if (entry.argument == Argument::Number)
            name += QLatin1String("[:N]");
        else if (entry.argument != Argument::No)
            name += entry.argument == Argument::Text ? QLatin1String(":TEXT") : QLatin1String("[:TEXT]");
        const QString scope = entry.scope == FaultScope::Network ? QStringLiteral(" (network only)")
                              : entry.scope == FaultScope::Usb   ? QStringLiteral(" (USB only)")
                                                                 : QString();
        help += QStringLiteral("  %1 %2%3\n").arg(name, -15).arg(QLatin1String(entry.help), scope);
    }
    return help;
}

} // namespace loggersim
