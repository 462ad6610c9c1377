#pragma once

#include "journal/JournalKind.h"

#include <QDateTime>
#include <optional>

/// Something that has happened, for the journal to keep. What has no answer is absent, which is not the same as empty.
struct JournalEvent
{
    JournalKind kind;
    std::optional<QString> key{}; ///< of the logger
    std::optional<int> channel{}; ///< 1 or 2
    std::optional<double> value{};
    std::optional<double> low{}; ///< the limits in force, both of them
    std::optional<double> high{};
    std::optional<QString> oldText{};
    std::optional<QString> newText{};
    std::optional<QString> text{};
    QDateTime time{}; ///< invalid: now
};
