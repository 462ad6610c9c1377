// Loggers are plugged out and in, change places, and go from and come back to the network, over and over.

#include "ComingAndGoing.h"
#include "Shard.h"
#include "TortureRows.h"
#include "TorturedStation.h"

#include <utility>

namespace {

constexpr int usbLoggers = 8;
constexpr int networkLoggers = 16;

// They tell what is shown.
const QString deviceLines = QStringLiteral("sorvanto.*.debug=false;sorvanto.app.debug=true;sorvanto.device.debug=true");

void swapPlaces(loggersim::SerialLogger &one, loggersim::SerialLogger &other)
{
    one.pullOut();
    other.pullOut();
    const int plug = one.plug();
    one.setPlug(other.plug());
    other.setPlug(plug);
    if (!one.plugIn() || !other.plugIn())
        qFatal("no serial ports left");
}

} // namespace

void runPlugs(Shard &shard)
{
    TorturedStation tortured(shard, 1, usbLoggers);
    E2eFixture &e2e = tortured.e2e();
    e2e.setLogRules(deviceLines);
    ComingAndGoing plugs(
        shard, tortured, usbLoggers, [&e2e](int logger) { e2e.usbLogger(logger).pullOut(); },
        [&e2e](int logger) {
            if (!e2e.usbLogger(logger).plugIn())
                qFatal("no serial port left");
        });
    plugs.run();
}

void runSwaps(Shard &shard)
{
    TorturedStation tortured(shard, 1, usbLoggers);
    E2eFixture &e2e = tortured.e2e();
    e2e.setLogRules(deviceLines);
    // Each exchanges its place with another: a going and a coming at once.
    const auto swap = [&](int logger) {
        const int other = (logger + 1 + shard.below(usbLoggers - 1)) % usbLoggers;
        swapPlaces(e2e.usbLogger(logger), e2e.usbLogger(other));
    };
    ComingAndGoing swaps(shard, tortured, usbLoggers, swap, [](int) {});
    swaps.setTimes(4000, 8000);
    swaps.run();
}

void runVanishing(Shard &shard)
{
    TorturedStation tortured(shard, networkLoggers);
    E2eFixture &e2e = tortured.e2e();
    e2e.setLogRules(deviceLines);
    const auto go = [&](int logger) {
        static const char *const faults[] = {"vanish", "refuse", "vanish"};
        e2e.setFault(logger, QLatin1String(faults[shard.below(3)]));
    };
    ComingAndGoing loggers(shard, tortured, networkLoggers, go,
                           [&e2e](int logger) { e2e.setFault(logger, QStringLiteral("none")); });
    loggers.setTimes(6000, 6000);
    loggers.run();
}
