#include "device/DeviceKey.h"

#include <algorithm>

namespace {

constexpr int longestKey = 255;

bool isControlCharacter(QChar c)
{
    return c.category() == QChar::Other_Control;
}

/// In either byte order: the database takes the one for a mark and turns every character after the other round.
bool isByteOrderMark(QChar c)
{
    return c == QChar(QChar::ByteOrderMark) || c == QChar(QChar::ByteOrderSwapped);
}

} // namespace

QString deviceKeyProblem(const QString &key)
{
    if (key.size() > longestKey)
        return QStringLiteral("is longer than %1 characters").arg(longestKey);
    if (std::any_of(key.cbegin(), key.cend(), isControlCharacter))
        return QStringLiteral("contains a control character");
    if (std::any_of(key.cbegin(), key.cend(), isByteOrderMark))
        return QStringLiteral("contains a byte-order mark");
    if (!key.isValidUtf16())
        return QStringLiteral("contains half a character");
    return {};
}
