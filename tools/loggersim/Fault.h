#pragma once

#include <QString>
#include <optional>

namespace loggersim {

enum class FaultKind {
    None,
    Silent,
    Slow,
    Split,
    NoEcho,
    Garbage,
    Dashes,
    NotANumber,
    HugeNumbers,
    LargeNumbers,
    Quotes,
    Binary,
    ManyLines,
    Flood,
    Stall,
    CloseAfter,
    Refuse,
    Vanish,
    AlarmError,
    Unplug,
    Replug,
    Swap
};

enum class FaultScope { Any, Network, Usb };

/// What a logger does wrong, and how much of it.
struct Fault
{
    FaultKind kind = FaultKind::None;
    int number = 0; ///< milliseconds, lines, channel or KiB a second, as the fault has it
    QString text;   ///< the other logger of a swap, or the command that is refused
};

/// Reads "name" or "name:argument", e.g. "slow:250". Nothing, and the reason in @p error, when it is none.
std::optional<Fault> parseFault(const QString &text, QString *error);
/// The kind of logger that can have this fault.
FaultScope scopeOf(FaultKind kind);
/// The name without an argument.
QString faultName(FaultKind kind);
/// All faults, one a line with what they do.
QString faultHelp();

} // namespace loggersim
