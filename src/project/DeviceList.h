#pragma once

#include "project/DeviceEntry.h"

#include <QByteArray>
#include <QList>
#include <optional>

/// The JSON text of a device list. A limit that is not finite is written as 0.
QByteArray encodeDeviceList(const QList<DeviceEntry> &devices);

/// The devices of a JSON text; nothing when it is none. A document without a list of devices has none. Elements without
/// a "DeviceType" are left out; a member that is missing or of no use gets the default of DeviceEntry.
std::optional<QList<DeviceEntry>> decodeDeviceList(const QByteArray &text);
