#pragma once

#include <QString>
#include <optional>

// Numbers as people type or paste them, whatever the locale; blanks around them do not count. Digits are those from 0
// to 9. There is no mark between groups of digits.

/// A comma is a decimal mark as a point is. More decimals than @p decimals are none: who types "1,234" may well mean a
/// thousand.
std::optional<double> typedDecimal(const QString &text, int decimals);
/// Without a sign.
std::optional<int> typedWhole(const QString &text);
