#pragma once

#include "project/DeviceEntry.h"

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <optional>

/// The JSON text of a device list. A limit that is not finite is written as 0. What had to be left out when the list
/// @p before was read is not lost: it stands at the end as it stood there.
QByteArray encodeDeviceList(const QList<DeviceEntry> &devices, const QByteArray &before = {});

/// The devices of a JSON text; nothing when it is none. A document without a list of devices has none. Elements without
/// a "DeviceType" are left out, and so are those whose number cannot be a key; a member that is missing or of no use
/// gets the default of DeviceEntry.
std::optional<QList<DeviceEntry>> decodeDeviceList(const QByteArray &text);

/// Whose number cannot be a key, and why: a sentence for the operator for each device left out for that.
QStringList refusedDevices(const QByteArray &text);
