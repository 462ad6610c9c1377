#pragma once

#include "device/ConfiguredDevice.h"

/// A device without an address, whose poll time the test sets; replies are handed in as the link hands them over.
struct ClockedDevice
{
    QDateTime now = QDateTime::fromMSecsSinceEpoch(1700000000000);
    ConfiguredDevice device{QStringLiteral("A1"), NetworkInterface};

    ClockedDevice()
    {
        device.setClock([this] { return now; });
        device.pollForRecord();
    }

    void reply(const QString &text, qint64 msLater = 0)
    {
        now = now.addMSecs(msLater);
        device.pollForRecord();
        device.readData(text);
    }
};
