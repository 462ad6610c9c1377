#pragma once

#include <QByteArray>
#include <QString>

/// What a logger sent, as 8-bit text without carriage returns. The length is given on purpose: left to itself the
/// conversion ends at the first zero byte.
inline QString wireText(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.constData(), bytes.size()).remove(QLatin1Char('\r'));
}
