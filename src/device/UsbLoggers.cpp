#include "device/UsbLoggers.h"

#include "device/DeviceKey.h"
#include "device/Logging.h"

#include <QStringList>

namespace {

/// Letter by letter: the toolkit's own conversion takes a first byte-order mark for itself.
QString textOf(const std::u16string &text)
{
    return QString(reinterpret_cast<const QChar *>(text.data()), int(text.size()));
}

} // namespace

QList<UsbLogger> usableUsbLoggers(const std::vector<FoundUsbLogger> &found)
{
    // The system is asked every second and a half; what it tells again is no news.
    static QStringList refusedBefore;
    QStringList refused;
    QList<UsbLogger> loggers;
    for (const FoundUsbLogger &each : found) {
        const UsbLogger logger{textOf(each.portName), textOf(each.serialNumber)};
        const QString problem = deviceKeyProblem(logger.serialNumber);
        if (problem.isEmpty()) {
            loggers.append(logger);
            continue;
        }
        refused.append(logger.portName + logger.serialNumber);
        if (!refusedBefore.contains(refused.last()))
            warnDevice() << "[ERROR] findUsbLoggers : [" << logger.portName << "] : the serial number " << problem;
    }
    refusedBefore = refused;
    return loggers;
}
