#include "device/UsbLoggerRules.h"

bool isUsbLogger(const QString &vendorId, const QString &productId)
{
    return vendorId.contains(QLatin1String("04D8"), Qt::CaseInsensitive) &&
           productId.contains(QLatin1String("000A"), Qt::CaseInsensitive);
}

QString serialNumberFromDescription(const QString &description)
{
    QString serialNumber = description;
    return serialNumber.remove(QLatin1String("ZP_SERIES__"));
}
