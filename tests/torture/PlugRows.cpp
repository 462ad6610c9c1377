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

void exchangePlugs(loggersim::SerialLogger &one, loggersim::SerialLogger &other)
{
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
    // Both are out for a while, as long as it takes.
    constexpr int pairs = usbLoggers / 2;
    ComingAndGoing swaps(
        shard, tortured, pairs,
        [&e2e](int logger) {
            e2e.usbLogger(logger).pullOut();
            e2e.usbLogger(logger + pairs).pullOut();
        },
        [&e2e](int logger) { exchangePlugs(e2e.usbLogger(logger), e2e.usbLogger(logger + pairs)); });
    swaps.setTimes(1500, 8000);
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
