#pragma once

#include "store/SpoolChange.h"

/// A change as bytes, all of it but takenIn, which no log has to keep.
QByteArray packedChange(const SpoolChange &change);
/// False for bytes that are none.
bool unpackChange(const QByteArray &bytes, SpoolChange *change);
