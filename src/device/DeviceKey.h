#pragma once

#include <QString>

/// Why a text from outside cannot be the key of a device: the end of a sentence that begins with what the text is.
/// Empty for every text that is stored, looked up and read back as it came: quotes, blanks and umlauts are no obstacle,
/// an empty text is none either.
QString deviceKeyProblem(const QString &key);
