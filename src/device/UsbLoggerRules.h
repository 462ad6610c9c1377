#pragma once

#include <QString>

// What makes a USB device a logger and how it tells its serial number, the same on every platform.

/// Whether the ids, as hexadecimal text in either case, are those of a logger.
bool isUsbLogger(const QString &vendorId, const QString &productId);
/// The serial number within a USB description; a description without the marker is taken as it is.
QString serialNumberFromDescription(const QString &description);
