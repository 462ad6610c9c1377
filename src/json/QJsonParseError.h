#pragma once

#include <QtGlobal>

namespace json {

/// Why and where reading stopped.
struct QJsonParseError
{
    enum Number {
        NoError = 0,
        UnterminatedObject = 1,
        MissingNameSeparator = 2,
        MissingValueSeparator = 4,
        IllegalValue = 5,
        TextEndsInNumber = 6,
        IllegalNumber = 7,
        IllegalEscape = 8,
        UnterminatedString = 10,
        EmptyText = 11,
        DeepNesting = 12,
        TextAfterDocument = 14,
    };

    int number = NoError;
    /// Bytes from the start of the text to the one that could not be accepted; the text's size when it ended too soon.
    qsizetype offset = 0;
};

} // namespace json
