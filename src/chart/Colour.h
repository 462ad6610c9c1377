#pragma once

#include <QColor>

namespace chart {

/// The colour 0xTTRRGGBB, whose high byte is transparency: 0x00 is opaque, 0xff is clear.
inline QColor colour(quint32 code)
{
    constexpr quint32 byte = 0xff;
    return {int((code >> 16) & byte), int((code >> 8) & byte), int(code & byte), int(byte - (code >> 24))};
}

} // namespace chart
